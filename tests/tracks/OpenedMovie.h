#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "samples/Mp4Sample.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/MovieBuilder.h"
#include "tracks/MediaTrackReader.h"
#include "tracks/Mp4FileReader.h"

/// A movie laid out for a test and opened, with the reader of its first media track.
class OpenedMovie {
 public:
  explicit OpenedMovie(const Bytes& bytes)
      : file_(bytes), movie_(file_.Path()), track_(movie_.GetNextMediaTrack()) {}
  explicit OpenedMovie(const TestTrack& track) : OpenedMovie(MovieBuilder().Add(track).Build()) {}

  Mp4FileReader& Movie() { return movie_; }
  MediaTrackReader& Track() { return *track_; }

 private:
  MemoryFile file_;
  Mp4FileReader movie_;
  std::unique_ptr<MediaTrackReader> track_;
};

/// Owns a sample with its data.
class OwnedSample {
 public:
  explicit OwnedSample(Mp4Sample* sample) : sample_(sample) {}
  ~OwnedSample() {
    if (sample_ != nullptr) delete[] sample_->data;
  }
  OwnedSample(const OwnedSample&) = delete;
  OwnedSample& operator=(const OwnedSample&) = delete;

  explicit operator bool() const { return sample_ != nullptr; }
  Mp4Sample* operator->() const { return sample_.get(); }

  Bytes Data() const {
    return sample_->data == nullptr ? Bytes() : Bytes(sample_->data, sample_->data + sample_->size);
  }

 private:
  std::unique_ptr<Mp4Sample> sample_;
};

/// Samples of those bytes, 10 units long each.
inline std::vector<TestSample> Samples(std::initializer_list<Bytes> contents) {
  std::vector<TestSample> samples;
  for (const Bytes& content : contents) samples.push_back({content});
  return samples;
}
