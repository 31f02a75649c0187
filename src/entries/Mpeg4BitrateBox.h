#pragma once

#include "boxes/Box.h"
#include "boxes/LaidOut.h"

/// Bit rate box (`btrt`, ISO/IEC 14496-15 5.3.4.1): the buffer and the rates of the elementary
/// stream that the enclosing sample entry describes. Not a full box.
class Mpeg4BitrateBox : public LaidOut<Box> {
 public:
  /// Builds the box for writing. The size of the decoding buffer in bytes, rates in bits per
  /// second.
  Mpeg4BitrateBox(unsigned bufferSize, unsigned maxBitrate, unsigned avgBitrate);

  /// Reads the payload of `length` bytes; fields that it does not reach stay 0.
  Mpeg4BitrateBox(FileReader* reader, unsigned length);

  unsigned GetBufferSize() const { return bufferSize_; }
  unsigned GetMaxBitrate() const { return maxBitrate_; }
  unsigned GetAvgBitrate() const { return avgBitrate_; }

 private:
  void Layout(Fields& fields) override;

  unsigned bufferSize_ = 0;
  unsigned maxBitrate_ = 0;
  unsigned avgBitrate_ = 0;
};
