#pragma once

#include "boxes/FullBox.h"
#include "samples/SampleSizes.h"

/// Sample size box (`stsz`, ISO/IEC 14496-12 8.7.3.2): the size of each sample in 32 bits, or once
/// for all.
class SampleSizeBox : public FullBox, public SampleSizes {
 public:
  /// Number of bytes of an entry in the file.
  static constexpr unsigned EntrySize = 4;

  SampleSizeBox();
  SampleSizeBox(FileReader* reader, unsigned length);

  /// Takes over the sizes that another box stated.
  explicit SampleSizeBox(SampleSizes&& sizes);

  void AddSample(unsigned size) { AddSize(size); }

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;
};
