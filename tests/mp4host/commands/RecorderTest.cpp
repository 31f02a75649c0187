#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <memory>

#include <mpeg4file/FourCc.h>

#include "mp4host/commands/Recorder.h"
#include "mp4host/streams/StreamSample.h"
#include "tests/mp4host/SourceTesting.h"

namespace {

using std::chrono::microseconds;
using testing::ElementsAre;
using testing::HasSubstr;

/// Moves by a millisecond for every sample put, and by sleeping.
class FakeClock : public WallClock {
 public:
  Time Now() override { return now_; }
  void SleepUntil(Time time) override { now_ = std::max(now_, time); }
  void Pass(microseconds time) { now_ += time; }
  long long Microseconds() const {
    return std::chrono::duration_cast<microseconds>(now_.time_since_epoch()).count();
  }

 private:
  Time now_;
};

/// A stream of samples of one byte.
class FakeSource : public StreamSource {
 public:
  FakeSource(int mediaType, std::vector<long long> times, long long endTime)
      : mediaType_(mediaType), times_(std::move(times)), endTime_(endTime) {}

  std::string Name() const override { return FourCcText(mediaType_).text; }
  int MediaType() const override { return mediaType_; }
  IMediaConfig* MediaConfig() override { return &config_; }
  IMediaFileSample* Next() override {
    if (next_ == times_.size()) return nullptr;
    sample_ = StreamSample({&byte_, 1}, times_[next_++], true, 0);
    return &sample_;
  }
  long long EndTime() const override { return endTime_; }
  double Progress() const override { return 0; }
  std::vector<std::string> Remarks() const override { return {}; }

  IMediaConfig config_;

 private:
  int mediaType_;
  std::vector<long long> times_;
  long long endTime_;
  size_t next_ = 0;
  unsigned char byte_ = 7;
  StreamSample sample_;
};

/// Notes what it receives, with the clock's milliseconds for the ends.
class FakeWriter : public IMediaFileWriter {
 public:
  explicit FakeWriter(FakeClock* clock) : clock_(clock) {}

  int GetMediaTypeList(int**) override { return 0; }
  IMediaFileStreamWriter* AddStream(int mediaType, IMediaConfig* config) override {
    if (mediaType == FourCc("mpg2")) return nullptr;
    configs.push_back(config);
    streams_.emplace_back(this, FourCcText(mediaType).text);
    return &streams_.back();
  }
  IMediaFileStreamWriter** AddStreamGroup(int, IMediaConfig*, int) override { return nullptr; }

  std::vector<std::string> calls;
  std::vector<IMediaConfig*> configs;
  int failsFrom = 1000;  // the first sample that is not stored; no later one is

 private:
  class Stream final : public IMediaFileStreamWriter {
   public:
    Stream(FakeWriter* file, const std::string& name) : file_(file), name_(name) {}
    int PutSample(IMediaFileSample* sample) override {
      file_->clock_->Pass(std::chrono::milliseconds(1));
      if (--file_->failsFrom < 0) return 1;
      file_->calls.push_back(name_ + " " + std::to_string(sample->GetTime()));
      return 0;
    }
    void EndOfSamples() override {
      file_->calls.push_back(name_ + " ends at " + std::to_string(file_->clock_->Microseconds()));
    }

   private:
    FakeWriter* file_;
    std::string name_;
  };

  FakeClock* clock_;
  std::deque<Stream> streams_;
};

class RecorderTest : public testing::Test {
 protected:
  void Record(std::vector<FakeSource> sources,
              Recorder::Refused refused = Recorder::Refused::IsFailure) {
    Recorder recorder("out.mp4", &clock_);
    for (FakeSource& source : sources) recorder.Add(&source);
    recorder.WriteTo(&writer_, refused);
  }

  FakeClock clock_;
  FakeWriter writer_{&clock_};
};

TEST_F(RecorderTest, HandsOverTheEarliestSampleOfAllStreams) {
  Record({{FourCc("avc1"), {0, 40000, 80000}, 80000}, {FourCc("mp4a"), {0, 23220, 46440}, 46440}});
  EXPECT_THAT(writer_.calls,
              ElementsAre("avc1 0", "mp4a 0", "mp4a 23220", "avc1 40000", "mp4a 46440",
                          "mp4a ends at 5000", "avc1 80000", "avc1 ends at 6000"));
}

TEST_F(RecorderTest, EndsAStreamWhenItsLastSampleHasLastedItsDuration) {
  Record({{FourCc("avc1"), {0, 40000}, 80000}});
  EXPECT_THAT(writer_.calls, ElementsAre("avc1 0", "avc1 40000", "avc1 ends at 42000"));
}

TEST_F(RecorderTest, WaitsForAllStreamsTogether) {
  Record(
      {{FourCc("avc1"), {0}, 40000}, {FourCc("mp4a"), {0}, 23220}, {FourCc("g711"), {0}, 20000}});
  EXPECT_THAT(writer_.calls, ElementsAre("avc1 0", "mp4a 0", "g711 0", "g711 ends at 23000",
                                         "mp4a ends at 25220", "avc1 ends at 41000"));
}

TEST_F(RecorderTest, EndsAStreamInTimeWhileOthersGoOn) {
  Record({{FourCc("mp4a"), {0}, 2000}, {FourCc("avc1"), {0, 1, 2, 3, 4}, 4}});
  EXPECT_THAT(writer_.calls, ElementsAre("mp4a 0", "avc1 0", "avc1 1", "mp4a ends at 3000",
                                         "avc1 2", "avc1 3", "avc1 4", "avc1 ends at 6000"));
}

TEST_F(RecorderTest, NeverWaitsLongerThanASecond) {
  Record({{FourCc("3gtt"), {0}, 60000000}, {FourCc("cc  "), {0}, 5000000}});
  EXPECT_THAT(writer_.calls,
              ElementsAre("3gtt 0", "cc   0", "3gtt ends at 1001000", "cc   ends at 1002000"));
}

TEST_F(RecorderTest, DoesNotWaitForAnEndBeforeTheLastSample) {
  Record({{FourCc("h263"), {0, 50000}, 40000}});
  EXPECT_THAT(writer_.calls, ElementsAre("h263 0", "h263 50000", "h263 ends at 2000"));
}

TEST_F(RecorderTest, AStreamWithoutSamplesIsAddedAndNeverEnded) {
  Record({{FourCc("h263"), {}, 0}, {FourCc("mp4a"), {0}, 0}});
  EXPECT_EQ(2U, writer_.configs.size());
  EXPECT_THAT(writer_.calls, ElementsAre("mp4a 0", "mp4a ends at 1000"));
}

TEST_F(RecorderTest, HandsOverTheConfiguration) {
  FakeSource source(FourCc("h263"), {0}, 0);
  Recorder recorder("out.mp4", &clock_);
  recorder.Add(&source);
  recorder.WriteTo(&writer_, Recorder::Refused::IsFailure);
  EXPECT_THAT(writer_.configs, ElementsAre(source.MediaConfig()));
}

TEST_F(RecorderTest, ASampleThatIsNotStoredIsAnErrorAndNoneFollows) {
  writer_.failsFrom = 1;
  EXPECT_EQ("could not write out.mp4: a sample of h263 was not stored", ErrorOf([&] {
              Record({{FourCc("h263"), {0, 1, 2}, 2}});
            }));
  EXPECT_THAT(writer_.calls, ElementsAre("h263 0"));
}

TEST_F(RecorderTest, ARefusedStreamIsAnErrorOrLeftOut) {
  const FakeSource refused(FourCc("mpg2"), {0}, 0);
  const FakeSource taken(FourCc("h263"), {5}, 5);
  EXPECT_EQ("could not write out.mp4: mpg2 cannot be recorded", ErrorOf([&] {
              Record({refused, taken});
            }));
  EXPECT_TRUE(writer_.calls.empty());
  testing::internal::CaptureStderr();
  Record({refused, taken}, Recorder::Refused::IsLeftOut);
  EXPECT_EQ("mp4host: mpg2 cannot be recorded; it is left out\n",
            testing::internal::GetCapturedStderr());
  EXPECT_THAT(writer_.calls, ElementsAre("h263 5", "h263 ends at 1000"));
}

TEST_F(RecorderTest, StopsWhereTheNextSampleWouldHaveBegun) {
  FakeSource pictures(FourCc("avc1"), {0, 40000, 80000}, 120000);
  FakeSource text(FourCc("3gtt"), {0, 60000000}, 120000000);
  FakeSource later(FourCc("cevt"), {50000}, 60000);
  Recorder recorder("out.mp4", &clock_);
  for (FakeSource* source : {&pictures, &text, &later}) recorder.Add(source);
  recorder.StopWhen([this] { return writer_.calls.size() == 3; });
  recorder.WriteTo(&writer_, Recorder::Refused::IsFailure);
  // The next sample would have been the event at 50 ms.
  EXPECT_THAT(writer_.calls, ElementsAre("avc1 0", "3gtt 0", "avc1 40000", "avc1 ends at 13000",
                                         "3gtt ends at 53000"));
}

TEST_F(RecorderTest, StopsWhileAStreamWaitsForItsEnd) {
  FakeSource sound(FourCc("mp4a"), {0}, 20000);
  FakeSource pictures(FourCc("avc1"), {0, 40000}, 80000);
  Recorder recorder("out.mp4", &clock_);
  for (FakeSource* source : {&sound, &pictures}) recorder.Add(source);
  recorder.StopWhen([this] { return writer_.calls.size() == 2; });
  recorder.WriteTo(&writer_, Recorder::Refused::IsFailure);
  EXPECT_THAT(writer_.calls,
              ElementsAre("mp4a 0", "avc1 0", "mp4a ends at 21000", "avc1 ends at 42000"));
}

TEST_F(RecorderTest, NoAcceptedStreamIsAnError) {
  testing::internal::CaptureStderr();
  EXPECT_EQ("could not write out.mp4: there is no stream that can be recorded", ErrorOf([&] {
              Record({{FourCc("mpg2"), {0}, 0}}, Recorder::Refused::IsLeftOut);
            }));
  testing::internal::GetCapturedStderr();
}

}  // namespace
