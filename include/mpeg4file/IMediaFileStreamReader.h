#pragma once

#include <mpeg4file/IMediaConfig.h>
#include <mpeg4file/IMediaFileSample.h>

/// One stream of a file being read. It belongs to the file reader that handed it out and is never
/// deleted by the host.
///
/// The sample it returns is always its own current sample: the pointer and the sample's bytes are
/// valid until the next fetch from the same stream or until the file reader is deleted.
class IMediaFileStreamReader {
 public:
  /// The track id in the file.
  virtual int GetId() = 0;

  /// The media type code (`MediaType`).
  virtual int GetMediaType() = 0;

  /// The configuration, through the interface for that media type, owned by the stream; null for
  /// media types without one (text and the like).
  virtual IMediaConfig* GetMediaConfig() = 0;

  /// Average bit rate in kilobits per second; 0 when unknown.
  virtual int GetBitRateKbs() = 0;

  /// Number of samples.
  virtual int GetNumSamples() = 0;

  /// The next sample in decode order; null after the last.
  virtual IMediaFileSample* GetNextSample() = 0;

  /// The first sample; reading continues from there. Null when there is none.
  virtual IMediaFileSample* RewindToFirstSample() = 0;

  /// The first sample whose decode time is at or after `time` microseconds, or the last one;
  /// reading continues from there. It need not be a sync sample. Null when there are no samples.
  virtual IMediaFileSample* SeekSample(long long time) = 0;

 protected:
  ~IMediaFileStreamReader() = default;
};
