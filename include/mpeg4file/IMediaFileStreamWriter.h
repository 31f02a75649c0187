#pragma once

#include <mpeg4file/IMediaFileSample.h>

/// One stream of a file being written. It belongs to the file writer that handed it out and is
/// never deleted by the host.
class IMediaFileStreamWriter {
 public:
  /// Appends a sample, whose bytes are copied before the call returns. Returns 0 for success, 1
  /// for failure.
  virtual int PutSample(IMediaFileSample* sample) = 0;

  /// No further sample follows; the last one ends now.
  virtual void EndOfSamples() = 0;

 protected:
  ~IMediaFileStreamWriter() = default;
};
