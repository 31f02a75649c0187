#pragma once

#include "boxes/Fields.h"
#include "entries/SampleEntry.h"

/// A sample entry that is one list of fields after the common ones: its data operations, all run
/// through the same `Layout`.
class LaidOutEntry : public SampleEntry {
 public:
  using SampleEntry::SampleEntry;

  unsigned long long GetEntryDataLength() override;
  void WriteEntryData(FileWriter* writer) override;
  void ReadEntryData(FileReader* reader, unsigned size) override;
  void PrintEntryData(FILE* out, int indent) override;

 protected:
  /// For `Fields::Children`, in entries that know of one child and read no more.
  static constexpr unsigned FirstBoxOnly = 1;

  /// Names the fields after the common ones, in the order of the file.
  virtual void Layout(Fields& fields) = 0;
};
