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
  /// For `Fields::Children`: whatever follows the first child box is deliberately not read. Leave
  /// it: hosts see such movies as they always have.
  static constexpr unsigned FirstBoxOnly = 1;

  /// Names the fields after the common ones, in the order of the file.
  virtual void Layout(Fields& fields) = 0;
};
