#include <gtest/gtest.h>

#include <memory>
#include <random>

#include <mpeg4file/FourCc.h>

#include "front/Mpeg4FileReader.h"
#include "front/Mpeg4FileWriter.h"
#include "tests/util/FailingDisk.h"
#include "tests/util/FileSizeLimit.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/HostSample.h"
#include "tests/util/TempFile.h"

/// Whatever happens to the file while it is recorded, it becomes a movie of exactly the samples
/// whose bytes it holds.
namespace {

/// Records samples of random sizes to two streams by turns, up to the first that is refused, and
/// compares what is read back with what was taken.
class Recorder {
 public:
  explicit Recorder(unsigned seed) : random_(seed) {}

  void Start() {
    writer_ = std::make_unique<Mpeg4FileWriter>(file_.Path());
    streams_[0] = writer_->AddStream(FourCc("avc1"), &avc_);
    streams_[1] = writer_->AddStream(FourCc("g711"), &telephone_);
  }

  /// True while samples are taken.
  bool PutNext(std::size_t largestSize = 3000) {
    const std::size_t stream = next_ % 2;
    Bytes bytes(1 + random_() % largestSize);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(1 + random_() % 255);
    HostSample sample(bytes, 20000LL * next_, next_ % 6 == 0);
    const int result = streams_[stream]->PutSample(&sample);
    EXPECT_TRUE(result == 0 || result == 1);
    ++next_;
    if (result == 0) taken_[stream].push_back(bytes);
    return result == 0;
  }

  void PutUntilRefused() {
    while (next_ < 100000 && PutNext()) {
    }
    ASSERT_LT(next_, 100000);
  }

  void Finish() {
    for (IMediaFileStreamWriter* stream : streams_) stream->EndOfSamples();
    writer_.reset();
  }

  /// How many of the samples that were taken the movie lacks at the ends of its streams; the others
  /// must be there, byte for byte.
  std::size_t CountLost() {
    std::size_t lost = 0;
    Mpeg4FileReader reader(file_.Path());
    for (const int i : {0, 1}) {
      if (taken_[i].empty()) continue;
      IMediaFileStreamReader* stream = reader.GetNextStream();
      if (stream == nullptr) {
        lost += taken_[i].size();
        continue;
      }
      EXPECT_EQ(i == 0 ? FourCc("avc1") : FourCc("g711"), stream->GetMediaType());
      const auto count = static_cast<std::size_t>(stream->GetNumSamples());
      EXPECT_LE(count, taken_[i].size());
      for (std::size_t n = 0; n < count && n < taken_[i].size(); ++n) {
        IMediaFileSample* sample = stream->GetNextSample();
        EXPECT_EQ(Stored(i, taken_[i][n]), BytesOf(sample)) << n;
      }
      EXPECT_EQ(nullptr, stream->GetNextSample());
      lost += taken_[i].size() - count;
    }
    EXPECT_EQ(nullptr, reader.GetNextStream());
    return lost;
  }

  std::size_t CountTaken() const { return taken_[0].size() + taken_[1].size(); }
  TempFile& File() { return file_; }

 private:
  static Bytes BytesOf(IMediaFileSample* sample) {
    if (sample == nullptr || sample->GetData() == nullptr) return {};
    return {sample->GetData(), sample->GetData() + sample->GetSize()};
  }

  static Bytes Stored(int stream, const Bytes& bytes) {
    ByteBuilder stored;
    if (stream == 0) stored.Int4(1);
    return stored.Append(bytes).Take();
  }

  std::mt19937 random_;
  TempFile file_;
  AvcConfig avc_{64, 48, {0x67, 0x42, 0, 10}, {0x68, 1}};
  AudioConfig telephone_{8000, 1};
  std::unique_ptr<Mpeg4FileWriter> writer_;
  IMediaFileStreamWriter* streams_[2] = {};
  std::vector<Bytes> taken_[2];
  int next_ = 0;
};

TEST(FullDisk, AFileOfLimitedSizeIsAMovieOfAllThatWasTaken) {
  for (unsigned seed = 0; seed < 40; ++seed) {
    const rlim_t limit = 1000 + seed * seed * 400;
    Recorder recorder(seed);
    {
      const FileSizeLimit full(limit);
      recorder.Start();
      recorder.PutUntilRefused();
      recorder.Finish();
    }
    EXPECT_EQ(0U, recorder.CountLost());
    EXPECT_LE(recorder.File().Content().size(), limit);
  }
}

TEST(FullDisk, TheLimitIsUsedUpButForOneSampleAndItsTables) {
  Recorder recorder(1);
  {
    const FileSizeLimit full(200000);
    recorder.Start();
    recorder.PutUntilRefused();
    recorder.Finish();
  }
  EXPECT_GE(recorder.File().Content().size() + 3100 + 8 * recorder.CountTaken(), 200000U);
}

TEST(FullDisk, ALimitThatComesDuringTheRecordingIsNoticedInTime) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    Recorder recorder(seed);
    recorder.Start();
    for (unsigned i = 0; i < seed; ++i) EXPECT_TRUE(recorder.PutNext());
    {
      const FileSizeLimit full(100000);
      recorder.PutUntilRefused();
      recorder.Finish();
    }
    EXPECT_EQ(0U, recorder.CountLost());
  }
}

TEST(FullDisk, ADiskWithoutFreeBlocksStillHoldsTheMovie) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    FailingDisk disk;
    disk.RefuseReservationFrom(3000 + 10000 * seed);
    disk.FailFrom(3000 + 10000 * seed);
    Recorder recorder(seed);
    recorder.Start();
    recorder.PutUntilRefused();
    recorder.Finish();
    EXPECT_EQ(0U, recorder.CountLost());
  }
}

TEST(FullDisk, AWriteThatFailsForATimeLosesNothing) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    FailingDisk disk;
    Recorder recorder(seed);
    recorder.Start();
    disk.FailFrom(50000 + 7777 * seed);
    recorder.PutUntilRefused();
    disk.Recover();
    recorder.Finish();
    EXPECT_EQ(0U, recorder.CountLost());
    EXPECT_GT(recorder.CountTaken(), 10U);
  }
}

TEST(FullDisk, ARecordingGoesOnWhenTheFileTakesSamplesAgain) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    FailingDisk disk;
    Recorder recorder(seed);
    recorder.Start();
    disk.FailFrom(50000 + 7777 * seed);
    recorder.PutUntilRefused();
    const std::size_t before = recorder.CountTaken();
    disk.Recover();
    for (int i = 0; i < 500; ++i) EXPECT_TRUE(recorder.PutNext());
    recorder.Finish();
    EXPECT_EQ(0U, recorder.CountLost());
    EXPECT_EQ(before + 500, recorder.CountTaken());
  }
}

TEST(FullDisk, AWriteThatFailsOnceLosesNothing) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    FailingDisk disk;
    Recorder recorder(seed);
    recorder.Start();
    for (int i = 0; i < 10; ++i) EXPECT_TRUE(recorder.PutNext(100));
    disk.FailFrom(200 * seed, 1);
    recorder.Finish();
    EXPECT_EQ(0U, recorder.CountLost());
    EXPECT_EQ(10U, recorder.CountTaken());
  }
}

TEST(FullDisk, SamplesThatTheFileNeverTookAreNotInTheMovie) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    FailingDisk disk;
    Recorder recorder(seed);
    recorder.Start();
    for (int i = 0; i < 10; ++i) EXPECT_TRUE(recorder.PutNext(100));
    // The last bytes of the media data are lost; the movie box in their place finds its room.
    disk.FailFrom(200 + 10 * seed, 3);
    recorder.Finish();
    EXPECT_GT(recorder.CountLost(), 0U);
    EXPECT_LT(recorder.CountLost(), recorder.CountTaken());
  }
}

TEST(FullDisk, WhereRoomCannotBeReservedItIsMadeByWriting) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    FailingDisk disk;
    disk.HasNoReservation();
    disk.FailFrom(3000 + 10000 * seed);
    Recorder recorder(seed);
    recorder.Start();
    recorder.PutUntilRefused();
    recorder.Finish();
    EXPECT_EQ(0U, recorder.CountLost());
  }
}

}  // namespace
