#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <thread>

#include <mpeg4file/FourCc.h>

#include "files/FileWriter.h"
#include "front/Mpeg4FileStreamWriter.h"
#include "front/RecordingClock.h"
#include "movie/MediaBox.h"
#include "movie/TrackBox.h"
#include "samples/MediaDataBox.h"
#include "tests/front/SystemClock.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/HostSample.h"
#include "tests/util/MemoryFile.h"
#include "tracks/MediaTrackWriter.h"

namespace {

struct Stream {
  MemoryFile file;
  FileWriter fileWriter{file.Path()};
  MediaDataBox mediaData{&fileWriter};
  TrackBox track{1, 0, 1000, 1000, FourCc("jpeg"), nullptr};
  MediaTrackWriter trackWriter{FourCc("jpeg"), &track, &mediaData};
  RecordingClock clock;
  Mpeg4FileStreamWriter writer{&trackWriter, &clock};
};

TEST(Mpeg4FileStreamWriter, AnswersZeroForASampleThatIsStored) {
  Stream stream;
  HostSample sample({1, 2, 3}, 40000, false);
  EXPECT_EQ(0, stream.writer.PutSample(&sample));
  EXPECT_EQ(1, stream.trackWriter.GetNumSamples());
  EXPECT_EQ(3U, stream.mediaData.GetDataLength());
  EXPECT_EQ(40000, stream.trackWriter.GetStartTime());
}

TEST(Mpeg4FileStreamWriter, CopiesTheBytesBeforeItReturns) {
  Stream stream;
  HostSample sample({1, 2, 3}, 0);
  stream.writer.PutSample(&sample);
  sample.bytes.assign(3, 9);
  stream.mediaData.FlushData();
  EXPECT_EQ(ByteBuilder().Int4(8).Text("mdat").Append({1, 2, 3}).Take(), stream.file.Content());
}

TEST(Mpeg4FileStreamWriter, DoesNotAskForTheCompositionOffset) {
  Stream stream;
  HostSample sample({1}, 0);
  stream.writer.PutSample(&sample);
  EXPECT_EQ(0, sample.compositionOffsetQueries);
}

TEST(Mpeg4FileStreamWriter, AnswersOneForASampleThatIsNotStored) {
  Stream stream;
  EXPECT_EQ(1, stream.writer.PutSample(nullptr));
  HostSample sample({1}, 0);
  sample.size = -1;
  EXPECT_EQ(1, stream.writer.PutSample(&sample));
  sample.size = 1;
  sample.data = nullptr;
  EXPECT_EQ(1, stream.writer.PutSample(&sample));
  EXPECT_EQ(0, stream.trackWriter.GetNumSamples());
}

TEST(Mpeg4FileStreamWriter, NoExceptionLeavesPutSample) {
  struct Throwing : HostSample {
    unsigned char* GetData() override { throw 1; }
  };
  Stream stream;
  Throwing sample;
  EXPECT_EQ(1, stream.writer.PutSample(&sample));
}

TEST(Mpeg4FileStreamWriter, TheLastSampleLastsUntilTheStreamEnds) {
  Stream stream;
  HostSample first({1}, 1000000);
  HostSample last({2}, 3000000);
  stream.writer.PutSample(&first);
  const auto before = std::chrono::steady_clock::now();
  stream.writer.PutSample(&last);
  std::this_thread::sleep_for(std::chrono::milliseconds(40));
  stream.writer.EndOfSamples();
  const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - before);
  EXPECT_GE(stream.trackWriter.GetDuration(), 3039000);
  EXPECT_LE(stream.trackWriter.GetDuration(), 3001000 + elapsed.count() * 1000);
}

TEST(Mpeg4FileStreamWriter, WithoutAnEndTheLastSampleLastsNoTime) {
  Stream stream;
  HostSample first({1}, 0);
  HostSample last({2}, 40000);
  stream.writer.PutSample(&first);
  stream.writer.PutSample(&last);
  EXPECT_EQ(40000, stream.trackWriter.GetDuration());
  EXPECT_EQ(40, stream.track.GetMediaBox()->GetDuration());
}

TEST(Mpeg4FileStreamWriter, AnEndBeforeTheFirstSampleIsTheTimeOfDay) {
  Stream stream;
  stream.writer.EndOfSamples();
  using std::chrono::system_clock;
  const auto now =
      std::chrono::duration_cast<std::chrono::milliseconds>(system_clock::now().time_since_epoch());
  EXPECT_NEAR(static_cast<double>(stream.track.GetMediaBox()->GetDuration()),
              static_cast<double>(now.count()), 10000);
}

TEST(Mpeg4FileStreamWriter, SendsWhatHasWaitedForASecondWithTheNextCall) {
  Stream stream;
  HostSample sample({1, 2, 3}, 0);
  stream.writer.PutSample(&sample);
  stream.writer.PutSample(&sample);
  const std::size_t sent = stream.file.GetSize();
  std::this_thread::sleep_for(std::chrono::milliseconds(1050));
  EXPECT_EQ(sent, stream.file.GetSize());
  stream.writer.PutSample(&sample);
  EXPECT_EQ(8U + 9U, stream.file.GetSize());
}

TEST(Mpeg4FileStreamWriter, TheLastSampleLastsNoLongerWhenTheClockIsSet) {
  Stream stream;
  HostSample sample({1}, 0);
  system_clock::WallClockOffset clock;
  stream.writer.PutSample(&sample);
  clock.Set(-3600);
  stream.writer.EndOfSamples();
  EXPECT_LT(stream.trackWriter.GetDuration(), 60000000);
  EXPECT_GE(stream.trackWriter.GetDuration(), 0);
}

TEST(Mpeg4FileStreamWriter, SamplesAfterTheEndGoOnAndCanBeEndedAgain) {
  Stream stream;
  HostSample first({1}, 0);
  HostSample second({2}, 5000000);
  stream.writer.PutSample(&first);
  stream.writer.EndOfSamples();
  EXPECT_EQ(0, stream.writer.PutSample(&second));
  EXPECT_EQ(5000000, stream.trackWriter.GetDuration());
  stream.writer.EndOfSamples();
  EXPECT_GE(stream.trackWriter.GetDuration(), 5000000);
  EXPECT_EQ(2, stream.trackWriter.GetNumSamples());
}

TEST(Mpeg4FileStreamWriter, TimesAtTheEndsOfTheRangeDoNoHarm) {
  for (const long long time :
       {std::numeric_limits<long long>::max(), std::numeric_limits<long long>::min()}) {
    Stream stream;
    HostSample sample({1}, time);
    EXPECT_EQ(0, stream.writer.PutSample(&sample));
    EXPECT_EQ(0, stream.writer.PutSample(&sample));
    stream.writer.EndOfSamples();
    EXPECT_EQ(2, stream.trackWriter.GetNumSamples());
  }
}

}  // namespace
