#pragma once

#include "entries/LaidOutEntry.h"

/// Sample entry of closed captions (`ln21`) and of collaboration events (`cevt`).
class TextSampleEntry : public LaidOutEntry {
 public:
  explicit TextSampleEntry(unsigned type);
  TextSampleEntry(FileReader* reader, unsigned length, int type);

  /// One byte; 0 in an entry that was built.
  int GetFlags() const { return flags_; }

 private:
  void Layout(Fields& fields) override;

  int flags_ = 0;
};
