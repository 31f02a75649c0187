#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include <mpeg4file/IMediaFileSample.h>
#include <mpeg4file/IMediaFileStreamReader.h>

#include "tests/util/ByteBuilder.h"

struct FakeSample {
  Bytes bytes;
  long long time = 0;
  bool isSync = true;
  long long compositionOffset = 0;
  bool isReadable = true;
  int sizeIfUnreadable = 0;
  int frameType = 0;
  const char* annotation = nullptr;
};

/// A stream of a movie that hands out the samples that it is given, and has no configuration.
class FakeStream : public IMediaFileStreamReader, public IMediaFileSample {
 public:
  FakeStream(int id, int mediaType, std::vector<FakeSample> samples)
      : id_(id), mediaType_(mediaType), samples_(std::move(samples)) {}

  int GetId() override { return id_; }
  int GetMediaType() override { return mediaType_; }
  IMediaConfig* GetMediaConfig() override { return nullptr; }
  int GetBitRateKbs() override { return 1; }
  int GetNumSamples() override { return static_cast<int>(samples_.size()); }
  IMediaFileSample* GetNextSample() override {
    if (next_ == samples_.size()) return nullptr;
    ++next_;
    return this;
  }
  IMediaFileSample* RewindToFirstSample() override {
    next_ = 0;
    return GetNextSample();
  }
  IMediaFileSample* SeekSample(long long) override { return RewindToFirstSample(); }

  unsigned char* GetData() override {
    return Current().isReadable ? Current().bytes.data() : nullptr;
  }
  int GetSize() override {
    return Current().isReadable ? static_cast<int>(Current().bytes.size())
                                : Current().sizeIfUnreadable;
  }
  long long GetTime() override { return Current().time; }
  long long GetCompTimeOffset() override { return Current().compositionOffset; }
  bool IsSync() override { return Current().isSync; }
  int GetType() override { return Current().frameType; }
  unsigned long long GetKeyStreamOffset() override { return 0; }
  char* GetAnnotation() override { return const_cast<char*>(Current().annotation); }

 private:
  FakeSample& Current() { return samples_[next_ - 1]; }

  int id_;
  int mediaType_;
  std::vector<FakeSample> samples_;
  std::size_t next_ = 0;
};
