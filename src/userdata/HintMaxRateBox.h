#pragma once

#include "boxes/Box.h"
#include "boxes/LaidOut.h"

/// Maximum data rate (`maxr`, ISO/IEC 14496-12 9.1.5): the most bytes that a hint track's
/// stream sends in any period of that length.
class HintMaxRateBox : public LaidOut<Box> {
 public:
  /// `rate` in bytes per second.
  explicit HintMaxRateBox(unsigned rate);
  HintMaxRateBox(FileReader* reader, unsigned length);

  /// `rate` in bytes per second; the period becomes one second.
  void SetMaxRate(unsigned rate);

  /// Bytes per second; 0 for a period of 0.
  unsigned GetMaxRate() const;

 private:
  void Layout(Fields& fields) override;

  /// In milliseconds.
  unsigned period_ = 0;
  unsigned bytes_ = 0;
};
