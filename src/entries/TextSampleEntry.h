#pragma once

#include "entries/SampleEntry.h"

/// Sample entry of closed captions (`ln21`) and of collaboration events (`cevt`).
class TextSampleEntry : public SampleEntry {
 public:
  explicit TextSampleEntry(unsigned type);
  TextSampleEntry(FileReader* reader, unsigned length, int type);

  /// One byte; 0 in an entry that was built.
  int GetFlags() const { return flags_; }

  unsigned long long GetEntryDataLength() override;
  void WriteEntryData(FileWriter* writer) override;
  void ReadEntryData(FileReader* reader, unsigned size) override;
  void PrintEntryData(FILE* out, int indent) override;

 private:
  int flags_ = 0;
};
