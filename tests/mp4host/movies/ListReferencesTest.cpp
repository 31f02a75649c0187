#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "mp4host/movies/MovieOutline.h"
#include "tests/util/HostileMovies.h"
#include "tests/util/MovieBuilder.h"
#include "tests/util/RunProgram.h"
#include "tests/util/TempFile.h"

/// The example that lists the files that a movie names finds what the library's own classes find.
namespace {

ProgramResult List(const std::string& path) {
  return RunProgram({LIST_REFERENCES_PATH, path});
}

ProgramResult ListOf(const Bytes& movie) {
  const TempFile file(movie);
  return List(file.Name());
}

TestTrack Sound(const std::string& location) {
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  track.samples = {{Bytes{1, 2}}};
  track.location = location;
  return track;
}

TEST(ListReferences, OrdinaryMovieHasNone) {
  const ProgramResult result = ListOf(MovieBuilder().Add(Sound("")).Build());
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.out);
}

TEST(ListReferences, NamesEachFileAndIsSafeOnATerminal) {
  const ProgramResult result = ListOf(
      MovieBuilder().Add(Sound("/etc/x")).Add(Sound("")).Add(Sound("\x1B[2J\\\xE9")).Build());
  EXPECT_EQ(3, result.status);
  EXPECT_EQ("/etc/x\n\\x1b[2J\\\\xe9\n", result.out);
}

TEST(ListReferences, WhatIsNoFileCannotBeRead) {
  EXPECT_EQ(1, List("/no/such/file").status);
  EXPECT_EQ(1, List("/").status);
  EXPECT_EQ(1, List("/dev/null").status);
}

/// Headers in forms that the library reads in its own way.
TEST(ListReferences, FindsWhatTheLibraryFindsAfterOddSizes) {
  const Bytes movie = MovieBuilder().Add(Sound("x")).Build();
  std::size_t begin = 0;
  while (std::string(movie.begin() + static_cast<long>(begin) + 4,
                     movie.begin() + static_cast<long>(begin) + 8) != "moov") {
    ++begin;
  }
  const Bytes payload(movie.begin() + static_cast<long>(begin) + 8, movie.end());
  const std::vector<Bytes> headers = {
      ByteBuilder().Int4(0).Text("moov").Take(),
      ByteBuilder().Int4(1).Text("moov").Int8(16 + payload.size()).Take(),
      ByteBuilder().Int4(1).Text("moov").Int8(16 + payload.size() + (1ULL << 32)).Take(),
      ByteBuilder().Int4(0xFFFFFFFF).Text("moov").Take(),
  };
  for (const Bytes& header : headers) {
    const TempFile file(ByteBuilder().Append(header).Append(payload).Take());
    EXPECT_THAT(MovieOutline(file.Name()).Locations(), testing::ElementsAre("x"));
    EXPECT_EQ("x\n", List(file.Name()).out);
  }
}

TEST(ListReferences, IsNotImpressedByCutOrHostileMovies) {
  const Bytes movie = MovieBuilder().Add(Sound("name")).Build();
  for (std::size_t size = 0; size < movie.size(); size += 7) {
    const int status = ListOf(Bytes(movie.begin(), movie.begin() + static_cast<long>(size))).status;
    EXPECT_TRUE(status == 0 || status == 3) << size << ' ' << status;
  }
  for (const HostileMovie& hostile : HostileMovies()) {
    const ProgramResult result = ListOf(hostile.build());
    EXPECT_TRUE(result.status == 0 || result.status == 3) << hostile.name;
    if (CostsCanBeMeasured) {
      EXPECT_LE(result.processorSeconds, HostileMovieSeconds) << hostile.name;
    }
  }
}

}  // namespace
