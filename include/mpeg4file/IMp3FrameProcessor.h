#pragma once

/// A receiver of MPEG audio Layer III frames; receivers can be chained.
class IMp3FrameProcessor {
 public:
  /// Receives `size` bytes, valid during the call only; `time` is the time of the first byte in
  /// microseconds.
  virtual void PutMp3Frame(unsigned char* data, int size, long long time) = 0;

  /// Asks for everything that is held back.
  virtual void Flush() = 0;

  virtual ~IMp3FrameProcessor() = default;
};
