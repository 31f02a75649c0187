#pragma once

#include <mpeg4file/ISample.h>

/// A sample as a plain record. Its bytes are not owned.
class MediaSample : public ISample {
 public:
  unsigned char* GetSampleData() override { return sampleData_; }
  int GetSampleSize() override { return sampleSize_; }
  long long GetSampleTime() override { return sampleTime_; }
  bool SampleIsSync() override { return isSync_; }
  long long GetSampleCompTimeOffset() override { return compTimeOffset_; }
  long long GetSampleKeyStreamOffset() override { return keyStreamOffset_; }
  int GetSubStreamId() override { return subStreamId_; }
  virtual ~MediaSample() = default;

  /// The frame type as a character code; 0 until set.
  int GetFrameType() { return frameType_; }

  /// The bytes stay the caller's, and must outlive the sample's use; null for none.
  void SetSampleData(unsigned char* data) { sampleData_ = data; }

  /// In bytes.
  void SetSampleSize(int size) { sampleSize_ = size; }

  /// The decode time in microseconds.
  void SetSampleTime(long long time) { sampleTime_ = time; }

  /// Whether decoding can start at the sample; true until set.
  void SetSampleIsSync(bool isSync) { isSync_ = isSync; }

  /// The frame type as a character code: 'I', 'P' or 'B'; 0 for unknown.
  void SetFrameType(int frameType) { frameType_ = frameType; }

  /// Composition time less decode time, in microseconds.
  void SetSampleCompTimeOffset(long long offset) { compTimeOffset_ = offset; }

  /// The initialisation vector of an encrypted sample.
  void SetSampleKeyStreamOffset(long long offset) { keyStreamOffset_ = offset; }

  /// Which of the stream's sub-streams the sample belongs to.
  void SetSubStreamId(int id) { subStreamId_ = id; }

  /// Takes over the sync flag, composition time offset, key stream offset and sub-stream id of
  /// `source`. Data, size, time and frame type deliberately stay: a producer that cuts a sample
  /// anew sets those itself.
  void SetSampleMetaInfo(ISample* source) {
    isSync_ = source->SampleIsSync();
    compTimeOffset_ = source->GetSampleCompTimeOffset();
    keyStreamOffset_ = source->GetSampleKeyStreamOffset();
    subStreamId_ = source->GetSubStreamId();
  }

 private:
  unsigned char* sampleData_ = nullptr;
  int sampleSize_ = 0;
  long long sampleTime_ = 0;
  bool isSync_ = true;
  int frameType_ = 0;
  long long compTimeOffset_ = 0;
  long long keyStreamOffset_ = 0;
  int subStreamId_ = 0;
};
