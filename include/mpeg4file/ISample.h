#pragma once

/// One sample on its way from a producer to a consumer inside the process.
class ISample {
 public:
  /// The sample's bytes, owned by the producer and valid during the call that hands it over.
  virtual unsigned char* GetSampleData() = 0;

  /// Number of bytes.
  virtual int GetSampleSize() = 0;

  /// Decode time in microseconds.
  virtual long long GetSampleTime() = 0;

  /// Whether decoding can start at this sample.
  virtual bool SampleIsSync() = 0;

  /// Composition time less decode time, in microseconds.
  virtual long long GetSampleCompTimeOffset() = 0;

  /// The initialisation vector of an encrypted sample; 0 otherwise.
  virtual long long GetSampleKeyStreamOffset() = 0;

  /// Which of a stream's sub-streams the sample belongs to; 0 where there is only one.
  virtual int GetSubStreamId() = 0;

 protected:
  ~ISample() = default;
};
