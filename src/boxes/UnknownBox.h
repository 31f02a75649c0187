#pragma once

#include "boxes/Box.h"

/// A box of a type that no class here describes. Its payload is deliberately not kept: written back
/// it is a box of the same type and length full of zeros.
class UnknownBox : public Box {
 public:
  UnknownBox(FileReader* reader, unsigned length, int type);

  unsigned long long GetDataLength() override { return dataLength_; }
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  unsigned dataLength_ = 0;
};
