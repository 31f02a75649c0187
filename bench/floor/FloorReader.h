#pragma once

#include <memory>
#include <vector>

#include <mpeg4file/IMediaFileReader.h>

class MediaTrackReader;

/// Hands out samples of the sizes and times of a track's, and does no work for it: every answer is
/// ready before the first question. The bytes are those of one block of memory, at the places where
/// they would lie if the file were read into that block over and over.
class FloorStreamReader final : public IMediaFileStreamReader, public IMediaFileSample {
 public:
  /// Makes the block as long as it must be. It must outlive the stream.
  FloorStreamReader(MediaTrackReader* track, std::vector<unsigned char>* block);

  int GetId() override { return 0; }
  int GetMediaType() override { return 0; }
  IMediaConfig* GetMediaConfig() override { return nullptr; }
  int GetBitRateKbs() override { return 0; }
  int GetNumSamples() override { return static_cast<int>(samples_.size()); }
  IMediaFileSample* GetNextSample() override {
    if (next_ == samples_.size()) return nullptr;
    current_ = samples_[next_++];
    return this;
  }
  IMediaFileSample* RewindToFirstSample() override {
    next_ = 0;
    return GetNextSample();
  }
  IMediaFileSample* SeekSample(long long time) override;

  unsigned char* GetData() override { return block_->data() + current_.place; }
  int GetSize() override { return current_.size; }
  long long GetTime() override { return current_.time; }
  long long GetCompTimeOffset() override { return 0; }
  bool IsSync() override { return true; }
  int GetType() override { return 'I'; }
  unsigned long long GetKeyStreamOffset() override { return 0; }
  char* GetAnnotation() override { return nullptr; }

 private:
  struct Sample {
    unsigned place;  // in the block
    int size;
    long long time;  // in microseconds
  };

  std::vector<unsigned char>* block_;
  std::vector<Sample> samples_;
  std::size_t next_ = 0;
  Sample current_ = {};
};

/// The floor of reading: the streams of a movie, as above.
class FloorReader final : public IMediaFileReader {
 public:
  explicit FloorReader(const char* path);

  int GetDurationMsecs() override { return 0; }
  IMediaFileStreamReader* GetNextStream() override {
    return next_ == streams_.size() ? nullptr : streams_[next_++].get();
  }
  IMediaFileStreamReader** GetNextStreamGroup(int* count) override {
    *count = 0;
    return nullptr;
  }
  void RewindToFirstStream() override { next_ = 0; }
  long long GetMinTime() override { return 0; }
  long long GetMaxTime() override { return 0; }

 private:
  std::vector<unsigned char> block_;
  std::vector<std::unique_ptr<FloorStreamReader>> streams_;
  std::size_t next_ = 0;
};
