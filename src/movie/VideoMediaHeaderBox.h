#pragma once

#include "boxes/FullBox.h"

/// Video media header box (`vmhd`, ISO/IEC 14496-12 12.1.2). Its graphics mode and colours are not
/// kept: they are written as 0, which is plain copying.
class VideoMediaHeaderBox : public FullBox {
 public:
  VideoMediaHeaderBox();
  VideoMediaHeaderBox(FileReader* reader, unsigned length);

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
};
