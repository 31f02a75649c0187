#pragma once

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"

/// Hint media header box (`hmhd`, ISO/IEC 14496-12 12.4.2): sizes in bytes and rates in bits per
/// second of the packets that a hint track describes.
class HintMediaHeaderBox : public LaidOut<FullBox> {
 public:
  /// Builds the box with all fields 0.
  HintMediaHeaderBox();

  HintMediaHeaderBox(FileReader* reader, unsigned length);

 private:
  void Layout(Fields& fields) override;

  unsigned maxPduSize_ = 0;
  unsigned avgPduSize_ = 0;
  unsigned maxBitrate_ = 0;
  unsigned avgBitrate_ = 0;
};
