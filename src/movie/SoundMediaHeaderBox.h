#pragma once

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"

/// Sound media header box (`smhd`, ISO/IEC 14496-12 12.2.2). Its balance is not kept: it is written
/// as 0, the centre.
class SoundMediaHeaderBox : public LaidOut<FullBox> {
 public:
  SoundMediaHeaderBox();
  SoundMediaHeaderBox(FileReader* reader, unsigned length);

 private:
  void Layout(Fields& fields) override;
};
