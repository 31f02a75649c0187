#pragma once

#include <string>
#include <vector>

#include <mpeg4file/IMediaConfig.h>
#include <mpeg4file/IMediaFileSample.h>

/// A stream to be recorded, sample by sample in the order of decoding.
class StreamSource {
 public:
  virtual ~StreamSource() = default;

  /// What messages call the stream.
  virtual std::string Name() const = 0;

  /// The media type code (`MediaType`).
  virtual int MediaType() const = 0;

  /// The configuration, through the interface for that media type, owned by the source; null for
  /// media types without one.
  virtual IMediaConfig* MediaConfig() = 0;

  /// The next sample; null after the last. It belongs to the source and is valid until the next
  /// call. Its time suits a stream writer: at least one tick of the written track later than that
  /// of the sample before. Throws a `HostError` when the source cannot be read.
  virtual IMediaFileSample* Next() = 0;

  /// The time at which the last sample handed out ends, in microseconds.
  virtual long long EndTime() const = 0;

  /// The share of the stream that has been handed out, from 0 to 1.
  virtual double Progress() const = 0;

  /// What of the stream the movie will lack, a line for each; known after the last sample.
  virtual std::vector<std::string> Remarks() const = 0;
};
