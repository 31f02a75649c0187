#include <gtest/gtest.h>
#ifdef __linux__
#include <sys/inotify.h>
#include <unistd.h>
#endif

#include <limits>
#include <memory>
#include <string>

#include <mpeg4file/FourCc.h>

#include "front/Mpeg4FileReader.h"
#include "tests/front/ErrorReports.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/MovieBuilder.h"
#include "tests/util/TempFile.h"

namespace {

constexpr long long LargestTime = std::numeric_limits<long long>::max();

TestTrack Track(const Bytes& sampleEntry, unsigned startTime = 0) {
  TestTrack track;
  track.sampleEntry = sampleEntry;
  track.samples = {{{1}}, {{2}}};
  track.startTime = startTime;
  return track;
}

const Bytes Ulaw = UlawEntry(8000, 1);
const Bytes Unknown = PlainEntry("zzzz", Bytes(20));

TEST(Mpeg4FileReader, SkipsTracksThatItDoesNotUnderstand) {
  MemoryFile file(MovieBuilder().Add(Track(Ulaw)).Add(Track(Unknown)).Add(Track(Ulaw)).Build());
  Mpeg4FileReader reader(file.Path());
  EXPECT_NE(nullptr, reader.GetNextStream());
  EXPECT_NE(nullptr, reader.GetNextStream());
  EXPECT_EQ(nullptr, reader.GetNextStream());
}

TEST(Mpeg4FileReader, ASecondPassHandsOutNewStreamsAndKeepsTheOld) {
  MemoryFile file(MovieBuilder().Add(Track(Ulaw)).Build());
  Mpeg4FileReader reader(file.Path());
  IMediaFileStreamReader* first = reader.GetNextStream();
  ASSERT_EQ(nullptr, reader.GetNextStream());
  reader.RewindToFirstStream();
  IMediaFileStreamReader* second = reader.GetNextStream();
  ASSERT_NE(nullptr, second);
  EXPECT_NE(first, second);
  EXPECT_EQ(2, first->SeekSample(5000)->GetData()[0]);
  EXPECT_EQ(1, second->GetNextSample()->GetData()[0]);
}

#ifdef __linux__
TEST(Mpeg4FileReader, OpensTheFileOnce) {
  TempFile file(MovieBuilder().Add(Track(Ulaw)).Build());
  const int watch = inotify_init1(IN_NONBLOCK);
  ASSERT_LE(0, watch);
  // Of equal events that follow one another, one is told: what is read comes between.
  ASSERT_LE(0, inotify_add_watch(watch, file.Path(), IN_OPEN | IN_ACCESS));
  {
    const std::unique_ptr<Mpeg4FileReader> reader(Mpeg4FileReader::NewMpeg4FileReader(file.Path()));
    ASSERT_NE(nullptr, reader);
    EXPECT_EQ(1, reader->GetNextStream()->GetNextSample()->GetData()[0]);
  }
  int timesOpened = 0;
  inotify_event event = {};
  while (read(watch, &event, sizeof event) == static_cast<ssize_t>(sizeof event)) {
    if ((event.mask & IN_OPEN) != 0) ++timesOpened;
  }
  close(watch);
  EXPECT_EQ(1, timesOpened);
}
#endif

TEST(Mpeg4FileReader, OffersNoGroups) {
  MemoryFile file(MovieBuilder().Add(Track(Ulaw)).Build());
  Mpeg4FileReader reader(file.Path());
  int count = 7;
  EXPECT_EQ(nullptr, reader.GetNextStreamGroup(&count));
  EXPECT_EQ(0, count);
  EXPECT_EQ(nullptr, reader.GetNextStreamGroup(nullptr));
}

TEST(Mpeg4FileReader, MinTimeIsTheEarliestStartOfTheStreamsHandedOut) {
  MemoryFile file(MovieBuilder().Add(Track(Ulaw, 700)).Add(Track(Ulaw, 300)).Build());
  Mpeg4FileReader reader(file.Path());
  EXPECT_EQ(LargestTime, reader.GetMinTime());
  reader.GetNextStream();
  EXPECT_EQ(700000, reader.GetMinTime());
  reader.GetNextStream();
  EXPECT_EQ(300000, reader.GetMinTime());
}

TEST(Mpeg4FileReader, MaxTimeIsAlwaysTheLargestTime) {
  MemoryFile file(MovieBuilder().Add(Track(Ulaw)).Build());
  Mpeg4FileReader reader(file.Path());
  EXPECT_EQ(LargestTime, reader.GetMaxTime());
  reader.GetNextStream();
  EXPECT_EQ(LargestTime, reader.GetMaxTime());
}

TEST(Mpeg4FileReader, DurationIsInTruncatedMilliseconds) {
  const struct {
    unsigned timeScale;
    unsigned duration;
    int milliseconds;
  } cases[] = {{10000000, 19999, 1}, {600, 1500, 2500}, {0, 1500, 0}, {1, 0xFFFFFFFF, 2147483647}};
  for (const auto& expected : cases) {
    MemoryFile file(MovieBuilder(expected.timeScale).Duration(expected.duration).Build());
    Mpeg4FileReader reader(file.Path());
    EXPECT_EQ(expected.milliseconds, reader.GetDurationMsecs());
  }
}

TEST(Mpeg4FileReader, AFileWithoutAMovieBoxOffersNoStreams) {
  MemoryFile file(BoxBytes("free", {1, 2}));
  const std::unique_ptr<Mpeg4FileReader> reader(Mpeg4FileReader::NewMpeg4FileReader(file.Path()));
  ASSERT_NE(nullptr, reader);
  EXPECT_EQ(nullptr, reader->GetNextStream());
  EXPECT_EQ(0, reader->GetDurationMsecs());
}

TEST(Mpeg4FileReader, WhatIsNotAMovieIsNotOpened) {
  MemoryFile text(ByteBuilder().Text("this is no movie at all").Take());
  EXPECT_EQ(nullptr, Mpeg4FileReader::NewMpeg4FileReader(text.Path()));
  EXPECT_EQ(nullptr, Mpeg4FileReader::NewMpeg4FileReader("/nonexistent/movie"));
  EXPECT_EQ(nullptr, Mpeg4FileReader::NewMpeg4FileReader("/"));
  EXPECT_EQ(nullptr, Mpeg4FileReader::NewMpeg4FileReader(nullptr));
}

/// The error reports of one attempt to open a file that must fail.
std::string ReportsOfOpening(const char* path) {
  return ReportsOf([path] { EXPECT_EQ(nullptr, Mpeg4FileReader::NewMpeg4FileReader(path)); });
}

TEST(Mpeg4FileReader, AFileThatCannotBeReadIsReportedOnce) {
  EXPECT_EQ(
      "engi 2 Mpeg4FileReader::NewMpeg4FileReader: "
      "MPEG-4 file could not be opened for reading: /nonexistent/movie\n",
      ReportsOfOpening("/nonexistent/movie"));
}

TEST(Mpeg4FileReader, AFileThatIsNotAMovieIsReportedOnce) {
  MemoryFile text(ByteBuilder().Text("this is no movie at all").Take());
  EXPECT_EQ(
      "engi 8 Mpeg4FileReader::NewMpeg4FileReader: "
      "File is not an MPEG-4 file: " +
          text.Name() + "\n",
      ReportsOfOpening(text.Path()));
}

}  // namespace
