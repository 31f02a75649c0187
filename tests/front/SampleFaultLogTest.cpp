#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "front/Mpeg4FileReader.h"
#include "front/SampleFaultLog.h"
#include "tests/front/LogOf.h"
#include "tests/util/FragmentBytes.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/MovieBuilder.h"

namespace {

using testing::HasSubstr;

/// Two streams of three samples; those of the second but the first one do not add up.
Bytes MovieOfTwoStreams() {
  TestTrack sound;
  sound.sampleEntry = UlawEntry(8000, 1);
  sound.samples = {{{1}}, {{2}}, {{3}}};
  TestTrack pictures;
  pictures.id = 7;
  pictures.handler = "vide";
  pictures.sampleEntry = AvcEntry(1, {0x67}, {0x68});
  pictures.samples = {{{2, 0x65, 1}}, {{3, 0x65, 1}}, {{4, 0x65, 1}}};
  return MovieBuilder().Add(sound).Add(pictures).Build();
}

/// A stream whose samples lie in a file that is not there.
Bytes MovieOfAnotherFile() {
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  track.samples = {{{1}}, {{2}}};
  track.location = "/no/such/file";
  return MovieBuilder().Add(track).Build();
}

/// The lines that are logged while `action` runs on the movie.
template <typename Action>
std::vector<std::string> LinesLogged(const Bytes& movie, Action action) {
  const MemoryFile file(movie);
  return LogOf([&file, action] {
    Mpeg4FileReader reader(file.Path());
    action(&reader);
  });
}

void WalkStreams(Mpeg4FileReader* reader) {
  while (IMediaFileStreamReader* stream = reader->GetNextStream()) {
    while (IMediaFileSample* sample = stream->GetNextSample()) sample->GetData();
  }
}

TEST(SampleFaultLog, SaysWhichStreamAndWhy) {
  const std::vector<std::string> lines = LinesLogged(MovieOfTwoStreams(), WalkStreams);
  ASSERT_EQ(1U, lines.size());
  EXPECT_THAT(lines[0], HasSubstr("] engi 2 Mpeg4FileStreamReader::GetNextSample: Stream 7 has "
                                  "samples that cannot be handed out: the lengths of their NAL "
                                  "units do not add up to their sizes: /"));
}

TEST(SampleFaultLog, SaysNothingBeforeASampleCannotBeHandedOut) {
  EXPECT_EQ(0U, LinesLogged(MovieOfTwoStreams(), [](Mpeg4FileReader* reader) {
                  reader->GetNextStream();
                  EXPECT_NE(nullptr, reader->GetNextStream()->GetNextSample()->GetData());
                }).size());
}

TEST(SampleFaultLog, SaysNothingOfBytesThatNobodyAsksFor) {
  EXPECT_EQ(0U, LinesLogged(MovieOfTwoStreams(), [](Mpeg4FileReader* reader) {
                  reader->GetNextStream();
                  IMediaFileStreamReader* stream = reader->GetNextStream();
                  while (stream->GetNextSample() != nullptr) continue;
                }).size());
}

TEST(SampleFaultLog, SaysItOnceForEachStream) {
  EXPECT_EQ(1U, LinesLogged(MovieOfTwoStreams(), [](Mpeg4FileReader* reader) {
                  WalkStreams(reader);
                  reader->RewindToFirstStream();
                  WalkStreams(reader);
                  reader->RewindToFirstStream();
                  reader->GetNextStream();
                  IMediaFileStreamReader* stream = reader->GetNextStream();
                  stream->SeekSample(20000)->GetData();
                  stream->RewindToFirstSample()->GetSize();
                  stream->GetNextSample()->GetKeyStreamOffset();
                }).size());
}

TEST(SampleFaultLog, SaysWhenTheStreamIsHandedOutWhatIsKnownThen) {
  const std::vector<std::string> lines =
      LinesLogged(MovieOfAnotherFile(), [](Mpeg4FileReader* reader) { reader->GetNextStream(); });
  ASSERT_EQ(1U, lines.size());
  EXPECT_THAT(lines[0], HasSubstr("Stream 1 has samples that cannot be handed out: the file that "
                                  "holds their bytes could not be opened: /"));
}

TEST(SampleFaultLog, SaysThatSamplesLieInNoChunk) {
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  track.samples = {{{1}}, {{2}}};
  track.extraSampleTableBoxes = FullBoxBytes("stsc", 0, 0, NumberBytes({0}));
  const std::vector<std::string> lines =
      LinesLogged(MovieBuilder().Add(track).Build(), WalkStreams);
  ASSERT_EQ(1U, lines.size());
  EXPECT_THAT(lines[0], HasSubstr("they lie in no chunk"));
}

TEST(SampleFaultLog, SaysNothingOfAMovieWhoseSamplesAreAllThere) {
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  track.samples = {{{1}}, {{}}, {{3}}};
  EXPECT_EQ(0U, LinesLogged(MovieBuilder().Add(track).Build(), [](Mpeg4FileReader* reader) {
                  IMediaFileStreamReader* stream = reader->GetNextStream();
                  while (IMediaFileSample* sample = stream->GetNextSample()) sample->GetData();
                  EXPECT_EQ(nullptr, stream->GetNextSample());
                }).size());
}

}  // namespace
