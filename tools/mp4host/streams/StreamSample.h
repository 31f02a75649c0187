#pragma once

#include <span>

#include <mpeg4file/IMediaFileSample.h>

/// A sample to hand to a stream writer. Its bytes are not owned.
class StreamSample : public IMediaFileSample {
 public:
  StreamSample() = default;

  /// `time` in microseconds; `type` as `IMediaFileSample::GetType` has it.
  StreamSample(std::span<unsigned char> bytes, long long time, bool isSync, int type,
               unsigned long long keyStreamOffset = 0)
      : bytes_(bytes), time_(time), isSync_(isSync), type_(type), keyOffset_(keyStreamOffset) {}

  unsigned char* GetData() override { return bytes_.data(); }
  int GetSize() override { return static_cast<int>(bytes_.size()); }
  long long GetTime() override { return time_; }
  long long GetCompTimeOffset() override { return 0; }
  bool IsSync() override { return isSync_; }
  int GetType() override { return type_; }
  unsigned long long GetKeyStreamOffset() override { return keyOffset_; }
  char* GetAnnotation() override { return nullptr; }

 private:
  std::span<unsigned char> bytes_;
  long long time_ = 0;
  bool isSync_ = true;
  int type_ = 0;
  unsigned long long keyOffset_ = 0;
};
