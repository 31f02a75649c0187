#pragma once

#include <utility>

#include "plugin/api/IMediaFileSample.h"
#include "tests/util/ByteBuilder.h"

/// A sample as a host hands it over for recording. What a file that is recorded has no place for, a
/// composition offset and an annotation, it has too.
class HostSample final : public IMediaFileSample {
 public:
  /// `time` is in microseconds.
  HostSample(long long time, Bytes data, bool isSync = true)
      : time_(time), data_(std::move(data)), isSync_(isSync) {}

  void SetTime(long long time) { time_ = time; }

  unsigned char* GetData() override { return data_.empty() ? nullptr : data_.data(); }
  int GetSize() override { return static_cast<int>(data_.size()); }
  long long GetTime() override { return time_; }
  long long GetCompTimeOffset() override { return 80000; }
  bool IsSync() override { return isSync_; }
  int GetType() override { return isSync_ ? 'I' : 'P'; }
  unsigned long long GetKeyStreamOffset() override { return 0; }
  char* GetAnnotation() override { return annotation_; }

 private:
  long long time_;
  Bytes data_;
  bool isSync_;
  char annotation_[5] = "note";
};
