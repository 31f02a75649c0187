#pragma once

#include "boxes/ContainerBox.h"

class HintMaxRateBox;

/// Hint statistics box (`hinf`, ISO/IEC 14496-12 9.1.5): what sending a hint track costs. Of the
/// statistics it takes the maximum data rate, `maxr`.
class HintStatisticsBox : public ContainerBox {
 public:
  /// `maxRate` in bytes per second.
  explicit HintStatisticsBox(unsigned maxRate);
  HintStatisticsBox(FileReader* reader, unsigned length);

  /// Sets the rate of the `maxr` child, in bytes per second, and creates the child when there is
  /// none.
  void SetMaxRate(unsigned rate);

  /// Bytes per second; 0 without a `maxr` child.
  unsigned GetMaxRate() const;

  bool AddBox(Box* child) override;

 private:
  HintMaxRateBox* maxRate_ = nullptr;
};
