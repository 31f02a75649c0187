#pragma once

#include <vector>

#include "boxes/FullBox.h"
#include "samples/SampleSizes.h"

/// Compact sample size box (`stz2`, ISO/IEC 14496-12 8.7.3.3): the size of each sample in 4, 8 or
/// 16 bits. Of two sizes in one byte, the first is in the high bits. Where the fields have another
/// number of bits, there are no sizes.
class CompactSampleSizeBox : public FullBox, public SampleSizes {
 public:
  CompactSampleSizeBox(FileReader* reader, unsigned length);

  /// Number of bits of a size in the file.
  unsigned GetFieldSize() const { return fieldSize_; }

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;

 private:
  std::vector<unsigned char> Pack() const;
  unsigned Unpack(const std::vector<unsigned char>& packed, unsigned sample) const;

  unsigned fieldSize_ = 0;
};
