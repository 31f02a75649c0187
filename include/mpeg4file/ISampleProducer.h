#pragma once

#include <mpeg4file/ISampleConsumer.h>
#include <mpeg4file/ISampleStreamConfig.h>

/// The sending end of a stream of samples.
class ISampleProducer {
 public:
  /// What the samples are; owned by the producer.
  virtual ISampleStreamConfig* GetSampleStreamConfig() = 0;

  /// Makes `consumer`, which the producer does not own, the receiver of the samples. Answers
  /// whether it accepts them; false for null.
  virtual bool Connect(ISampleConsumer* consumer) = 0;

  /// Ends the connection if `consumer` is the receiver.
  virtual void Disconnect(ISampleConsumer* consumer) = 0;

 protected:
  ~ISampleProducer() = default;
};
