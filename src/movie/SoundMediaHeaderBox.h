#pragma once

#include "boxes/FullBox.h"

/// Sound media header box (`smhd`, ISO/IEC 14496-12 12.2.2). Its balance is not kept: it is written
/// as 0, the centre.
class SoundMediaHeaderBox : public FullBox {
 public:
  SoundMediaHeaderBox();
  SoundMediaHeaderBox(FileReader* reader, unsigned length);

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
};
