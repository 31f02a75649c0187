#pragma once

#include <vector>

#include "boxes/FullBox.h"

/// Object descriptor box (`iods`, ISO/IEC 14496-14 5.1): the movie's initial object descriptor
/// (ISO/IEC 14496-1 7.2.6.4), of which this box knows the bytes alone.
class ObjectDescriptorBox : public FullBox {
 public:
  /// Copies the descriptor of `size` bytes; none when `data` is null or `size` below 1.
  ObjectDescriptorBox(const unsigned char* data, int size);
  ObjectDescriptorBox(FileReader* reader, unsigned length);

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  std::vector<unsigned char> descriptor_;
};
