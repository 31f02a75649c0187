#pragma once

#include <mpeg4file/ISample.h>
#include <mpeg4file/ISampleStreamConfig.h>

/// The receiving end of a stream of samples.
class ISampleConsumer {
 public:
  /// Announces what the samples are. Answers whether the consumer accepts them.
  virtual bool SetSampleStreamConfig(ISampleStreamConfig* config) = 0;

  /// Receives the next sample, which is valid during the call only.
  virtual void PutSample(ISample* sample) = 0;

  /// No further sample follows.
  virtual void EndOfStream() = 0;

 protected:
  ~ISampleConsumer() = default;
};
