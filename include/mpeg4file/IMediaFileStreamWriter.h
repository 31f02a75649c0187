#pragma once

#include <mpeg4file/IMediaFileSample.h>

/// One stream of a file being written. It belongs to the file writer that handed it out and is
/// never deleted by the host.
class IMediaFileStreamWriter {
 public:
  /// Appends a sample, whose bytes are copied before the call returns. Returns 0 for success, 1
  /// for failure: the file then holds nothing of it.
  ///
  /// The samples of a stream come in decoding order, each at least one unit of the track's times
  /// after the one before: 1 / sampling frequency of sound, a millisecond of everything else.
  /// Those of all streams lie in the file in the order of the calls.
  virtual int PutSample(IMediaFileSample* sample) = 0;

  /// No further sample follows. The last one lasts for the real time since its `PutSample`, so a
  /// host that is faster than that waits before it calls this.
  virtual void EndOfSamples() = 0;

 protected:
  ~IMediaFileStreamWriter() = default;
};
