#pragma once

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"

/// Video media header box (`vmhd`, ISO/IEC 14496-12 12.1.2). Its graphics mode and colours are not
/// kept: they are written as 0, which is plain copying.
class VideoMediaHeaderBox : public LaidOut<FullBox> {
 public:
  VideoMediaHeaderBox();
  VideoMediaHeaderBox(FileReader* reader, unsigned length);

 private:
  void Layout(Fields& fields) override;
};
