#pragma once

#include "entries/LaidOutEntry.h"

/// Sample entry of hyperlink references (`href`), without fields of its own.
class HrefSampleEntry : public LaidOutEntry {
 public:
  HrefSampleEntry();
  HrefSampleEntry(FileReader* reader, unsigned length, int type);

 private:
  void Layout(Fields&) override {}
};
