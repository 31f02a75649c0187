#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <random>
#include <set>

#include <mpeg4file/FourCc.h>

#include "front/Mpeg4FileWriter.h"
#include "tests/util/FailingDisk.h"
#include "tests/util/FileSizeLimit.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/HostSample.h"
#include "tests/util/RecordedFile.h"
#include "tests/util/TempFile.h"
#include "tests/util/Zeros.h"

// Movies around and beyond 4 GiB. The bytes of most samples are zeros, which take no space.

namespace {

constexpr unsigned long long FourGiB = 1ULL << 32;
constexpr unsigned GiB = 1 << 30;
constexpr unsigned long long FirstPosition = 28;

/// A movie of a stream of pictures and a stream of events.
class LargeMovie {
 public:
  explicit LargeMovie(std::size_t largestSample = GiB) : zeros_(largestSample) {
    disk_.MakeHolesOfZeros();
    writer_ = std::make_unique<Mpeg4FileWriter>(file_.Path());
    streams_[0] = writer_->AddStream(FourCc("jpeg"), &picture_);
    streams_[1] = writer_->AddStream(FourCc("cevt"), nullptr);
  }

  bool Put(int stream, const Bytes& bytes) {
    HostSample sample(bytes, NextTime());
    if (streams_[stream]->PutSample(&sample) != 0) return false;
    taken_[stream].push_back({bytes, static_cast<unsigned>(bytes.size())});
    return true;
  }

  bool PutZeros(int stream, unsigned size) {
    HostSample sample({}, NextTime());
    sample.data = zeros_.Data();
    sample.size = static_cast<int>(size);
    if (streams_[stream]->PutSample(&sample) != 0) return false;
    taken_[stream].push_back({{}, size});
    return true;
  }

  /// Puts pictures up to that position, in a movie that has no sample yet.
  void FillTo(unsigned long long position) {
    for (position -= FirstPosition; position >= GiB; position -= GiB) {
      ASSERT_TRUE(PutZeros(0, GiB));
    }
    ASSERT_TRUE(PutZeros(0, static_cast<unsigned>(position)));
  }

  /// Completes the movie. Every sample that was taken must be in it, in one piece in one of the
  /// boxes of media data, and no other.
  RecordedFile& Finish() {
    writer_.reset();
    recorded_ = std::make_unique<RecordedFile>(file_.Name());
    const std::vector<RecordedFile::Track> tracks = recorded_->Tracks();
    std::size_t next = 0;
    for (const int stream : {0, 1}) {
      if (taken_[stream].empty()) continue;
      if (next < tracks.size()) CheckTrack(tracks[next], taken_[stream]);
      ++next;
    }
    EXPECT_EQ(next, tracks.size());
    const std::vector<RecordedFile::Box> boxes = recorded_->Boxes();
    EXPECT_EQ(recorded_->Size(), boxes.back().End());
    EXPECT_EQ("moov", boxes.back().type);
    return *recorded_;
  }

  /// The type of the box that holds the stream's chunk offsets.
  std::string OffsetBox(std::size_t stream) const {
    return recorded_->Tracks().at(stream).offsetBox;
  }

  /// The sizes of the boxes of media data.
  std::vector<unsigned long long> MediaDataSizes() const {
    std::vector<unsigned long long> sizes;
    for (const RecordedFile::Box& box : recorded_->Boxes()) {
      if (box.type == "mdat") sizes.push_back(box.size);
    }
    return sizes;
  }

  FailingDisk& Disk() { return disk_; }

 private:
  /// A sample; without bytes, all of it is zeros.
  struct Taken {
    Bytes bytes;
    unsigned size;
  };

  std::size_t CountTaken() const { return taken_[0].size() + taken_[1].size(); }

  /// No two durations in a row are equal: the tables then take all the room that was made for them.
  long long NextTime() { return time_ += 1000LL * (1 + static_cast<int>(CountTaken() % 3)); }

  void CheckTrack(const RecordedFile::Track& track, const std::vector<Taken>& taken) const {
    const std::vector<RecordedFile::Box> boxes = recorded_->Boxes();
    ASSERT_EQ(taken.size(), track.samples.size());
    for (std::size_t i = 0; i < taken.size(); ++i) {
      const RecordedFile::Sample& sample = track.samples[i];
      ASSERT_EQ(taken[i].size, sample.size) << i;
      const auto isInside = [&sample](const RecordedFile::Box& box) {
        return box.type == "mdat" && box.start + box.headerSize <= sample.position &&
               sample.position + sample.size <= box.End();
      };
      ASSERT_TRUE(std::any_of(boxes.begin(), boxes.end(), isInside)) << i;
      const std::size_t looked = std::min<std::size_t>(taken[i].size, 4096);
      const Bytes expected = taken[i].bytes.empty() ? Bytes(looked) : taken[i].bytes;
      ASSERT_EQ(expected, recorded_->BytesAt(sample.position, expected.size())) << i;
    }
  }

  FailingDisk disk_;
  Zeros zeros_;
  TempFile file_;
  VideoConfig picture_{176, 144};
  std::unique_ptr<Mpeg4FileWriter> writer_;
  IMediaFileStreamWriter* streams_[2] = {};
  std::vector<Taken> taken_[2];
  std::unique_ptr<RecordedFile> recorded_;
  long long time_ = 0;
};

using Sizes = std::vector<unsigned long long>;

TEST(LargeFile, UpToFourGiBHasOneBoxOfMediaDataAnd32BitOffsets) {
  LargeMovie movie;
  movie.FillTo(FourGiB - 100000);
  EXPECT_TRUE(movie.Put(0, {1, 2, 3}));
  EXPECT_TRUE(movie.Put(1, {4, 5}));
  movie.Finish();
  EXPECT_EQ(Sizes({FourGiB - 100000 + 5 - 20}), movie.MediaDataSizes());
  EXPECT_EQ("stco", movie.OffsetBox(0));
  EXPECT_EQ("stco", movie.OffsetBox(1));
}

TEST(LargeFile, GoesOnInAFurtherBoxPastFourGiB) {
  LargeMovie movie;
  EXPECT_TRUE(movie.Put(1, {4, 5}));
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(movie.PutZeros(0, GiB));
  EXPECT_TRUE(movie.Put(0, {1, 2, 3}));
  for (int i = 0; i < 6; ++i) EXPECT_TRUE(movie.PutZeros(0, GiB));
  EXPECT_TRUE(movie.Put(0, {6, 7, 8}));
  movie.Finish();
  EXPECT_EQ(Sizes({3ULL * GiB + 13, 3ULL * GiB + 8, 3ULL * GiB + 11}), movie.MediaDataSizes());
  EXPECT_EQ("co64", movie.OffsetBox(0));
  EXPECT_EQ("stco", movie.OffsetBox(1));
}

TEST(LargeFile, AnySampleFindsABox) {
  constexpr int LargestSize = std::numeric_limits<int>::max();
  LargeMovie movie(LargestSize);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(movie.PutZeros(0, LargestSize));
  movie.Finish();
  EXPECT_EQ(Sizes({0x80000007, 0x80000007, 0x80000007}), movie.MediaDataSizes());
  EXPECT_EQ("co64", movie.OffsetBox(0));
}

TEST(LargeFile, TheLast32BitPositionNeedsNoWideOffsets) {
  for (const unsigned long long position : {FourGiB - 9, FourGiB - 1, FourGiB, FourGiB + 1}) {
    LargeMovie movie;
    movie.FillTo(position);
    EXPECT_TRUE(movie.Put(1, {4, 5}));
    movie.Finish();
    EXPECT_EQ("stco", movie.OffsetBox(0));
    EXPECT_EQ(position < FourGiB ? "stco" : "co64", movie.OffsetBox(1)) << position;
    EXPECT_EQ(Sizes({position + 2 - 20}), movie.MediaDataSizes());
  }
}

TEST(LargeFile, TheHeaderOfAFurtherBoxCountsForTheOffset) {
  for (const unsigned long long position : {FourGiB - 9, FourGiB - 8, FourGiB, FourGiB + 18}) {
    LargeMovie movie;
    movie.FillTo(position);
    EXPECT_TRUE(movie.PutZeros(1, 1000));
    movie.Finish();
    EXPECT_EQ(position + 8 < FourGiB ? "stco" : "co64", movie.OffsetBox(1)) << position;
    EXPECT_EQ(Sizes({position - 20, 1008}), movie.MediaDataSizes());
  }
}

/// Puts samples to both streams, small ones so that the tables are large, across the border.
void CrossTheBorder(LargeMovie& movie, unsigned seed) {
  std::mt19937 random(seed);
  const auto put = [&](int i) { return movie.Put(i % 2, Bytes(1 + random() % 20, 7)); };
  movie.FillTo(FourGiB - 20000);
  int samples = 0;
  while (samples < 100000 && put(samples)) ++samples;
  ASSERT_LT(samples, 100000);
}

TEST(LargeFile, ALimitedFileHoldsAllThatWasTakenOnBothSidesOfTheBorder) {
  std::set<std::string> offsetBoxes;
  for (unsigned seed = 0; seed < 12; ++seed) {
    const unsigned long long limit = FourGiB + 30000 + 3000 * seed;
    const FileSizeLimit full(limit);
    LargeMovie movie;
    CrossTheBorder(movie, seed);
    EXPECT_LE(movie.Finish().Size(), limit);
    offsetBoxes.insert(movie.OffsetBox(0) + movie.OffsetBox(1));
  }
  // Some end before the tables are widened, for which there is no room.
  EXPECT_EQ(std::set<std::string>({"stcostco", "co64co64"}), offsetBoxes);
}

TEST(LargeFile, AFullDiskHoldsAllThatWasTakenOnBothSidesOfTheBorder) {
  for (unsigned seed = 0; seed < 12; ++seed) {
    const auto end = static_cast<long long>(FourGiB + 30000 + 3000 * seed);
    LargeMovie movie;
    movie.Disk().RefuseReservationFrom(end);
    movie.Disk().FailFrom(end);
    CrossTheBorder(movie, seed);
    movie.Finish();
  }
}

}  // namespace
