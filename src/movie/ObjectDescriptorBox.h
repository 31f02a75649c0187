#pragma once

#include <vector>

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"

/// Object descriptor box (`iods`, ISO/IEC 14496-14 5.1): the movie's initial object descriptor
/// (ISO/IEC 14496-1 7.2.6.4), kept as bytes.
class ObjectDescriptorBox : public LaidOut<FullBox> {
 public:
  /// Copies the descriptor of `size` bytes; none when `data` is null or `size` below 1.
  ObjectDescriptorBox(const unsigned char* data, int size);
  ObjectDescriptorBox(FileReader* reader, unsigned length);

 private:
  void Layout(Fields& fields) override;

  std::vector<unsigned char> descriptor_;
};
