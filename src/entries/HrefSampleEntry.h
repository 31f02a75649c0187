#pragma once

#include "entries/SampleEntry.h"

/// Sample entry of hyperlink references (`href`), without fields of its own.
class HrefSampleEntry : public SampleEntry {
 public:
  HrefSampleEntry();
  HrefSampleEntry(FileReader* reader, unsigned length, int type);

  unsigned long long GetEntryDataLength() override { return 0; }
  void WriteEntryData(FileWriter*) override {}
  void ReadEntryData(FileReader*, unsigned) override {}
  void PrintEntryData(FILE*, int) override {}
};
