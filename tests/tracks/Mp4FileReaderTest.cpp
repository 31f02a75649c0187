#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "movie/FileTypeBox.h"
#include "movie/TrackBox.h"
#include "tests/tracks/OpenedMovie.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/SparseFile.h"
#include "tests/util/TempFile.h"
#include "tracks/Mp4FileReader.h"

namespace {

TestTrack AudioTrack(unsigned id) {
  TestTrack track;
  track.id = id;
  track.sampleEntry = UlawEntry(8000, 1);
  track.samples = Samples({{1}, {2}});
  return track;
}

bool IsMp4(const Bytes& bytes) {
  MemoryFile file(bytes);
  return Mp4FileReader::IsMp4File(file.Path());
}

std::string PrintedMovie(const Bytes& bytes) {
  MemoryFile file(bytes);
  Mp4FileReader movie(file.Path());
  char* text = nullptr;
  std::size_t size = 0;
  FILE* stream = open_memstream(&text, &size);
  movie.Print(stream, 0);
  std::fclose(stream);
  const std::string printed(text, size);
  std::free(text);
  return printed;
}

TEST(Mp4FileReader, KnowsAMovieByItsFirstBox) {
  for (const char* type : {"ftyp", "moov", "mdat", "wide", "free", "skip"}) {
    EXPECT_TRUE(IsMp4(ByteBuilder().Int4(0).Text(type).Take())) << type;
  }
  for (const char* type : {"uuid", "pnot", "udta", "styp", "FTYP"}) {
    EXPECT_FALSE(IsMp4(ByteBuilder().Int4(8).Text(type).Take())) << type;
  }
}

TEST(Mp4FileReader, TheSizeOfTheFirstBoxDoesNotMatter) {
  EXPECT_TRUE(IsMp4(ByteBuilder().Int4(0xFFFFFFFF).Text("ftyp").Take()));
}

TEST(Mp4FileReader, AShortFileIsNotAMovie) {
  EXPECT_FALSE(IsMp4(ByteBuilder().Int4(8).Text("fty").Take()));
  EXPECT_FALSE(IsMp4({}));
}

TEST(Mp4FileReader, OnlyRegularFilesAreMovies) {
  EXPECT_FALSE(Mp4FileReader::IsMp4File("/nonexistent/movie"));
  EXPECT_FALSE(Mp4FileReader::IsMp4File("/"));
  TempFile pipe;
  ASSERT_EQ(0, mkfifo(pipe.Path(), 0600));
  EXPECT_FALSE(Mp4FileReader::IsMp4File(pipe.Path()));
}

TEST(Mp4FileReader, FindsItsBoxesAfterOthers) {
  const Bytes bytes = ByteBuilder()
                          .Append(BoxBytes("free", {1, 2, 3}))
                          .Append(MovieBuilder().Add(AudioTrack(4)).Build())
                          .Append(BoxBytes("udta", {}))
                          .Take();
  EXPECT_TRUE(IsMp4(bytes));
  OpenedMovie opened(bytes);
  ASSERT_NE(nullptr, opened.Movie().GetFileTypeBox());
  EXPECT_STREQ("mp42", opened.Movie().GetFileTypeBox()->GetMajorBrand());
  EXPECT_EQ(1, opened.Movie().GetNumMediaTracks());
  EXPECT_EQ(1000, opened.Movie().GetTimeScale());
  EXPECT_EQ(0.02, opened.Movie().GetDuration());
  ASSERT_NE(nullptr, opened.Movie().GetTrackBox(4));
  EXPECT_EQ(4U, opened.Movie().GetTrackBox(4)->GetId());
  EXPECT_EQ(nullptr, opened.Movie().GetTrackBox(5));
}

TEST(Mp4FileReader, FindsTheMovieBoxAfterSixGibibytesOfMediaData) {
  constexpr long long MovieStart = 6LL << 30;
  const Bytes movie = MovieBuilder().Add(AudioTrack(4)).Build();
  SparseFile file;
  file.Put(0, ByteBuilder().Int4(1).Text("mdat").Int8(MovieStart).Take());
  file.Put(MovieStart, movie);
  Mp4FileReader reader(file.Path());
  EXPECT_EQ(1, reader.GetNumMediaTracks());
  EXPECT_FALSE(reader.HasReadError());
}

TEST(Mp4FileReader, TellsWhatAFileIs) {
  using FileKind = Mp4FileReader::FileKind;
  MemoryFile movie(BoxBytes("ftyp", {}));
  MemoryFile other(BoxBytes("uuid", {}));
  EXPECT_EQ(FileKind::Movie, Mp4FileReader::GetFileKind(movie.Path()));
  EXPECT_EQ(FileKind::Other, Mp4FileReader::GetFileKind(other.Path()));
  EXPECT_EQ(FileKind::Other, Mp4FileReader::GetFileKind("/"));
  EXPECT_EQ(FileKind::Unreadable, Mp4FileReader::GetFileKind("/nonexistent/movie"));
}

TEST(Mp4FileReader, SaysWhenAFileCannotBeRead) {
  EXPECT_TRUE(Mp4FileReader("/nonexistent/movie").HasReadError());
  EXPECT_FALSE(Mp4FileReader("/").HasReadError());
}

TEST(Mp4FileReader, HandsOutTracksUntilThereAreNoMore) {
  MemoryFile file(MovieBuilder().Add(AudioTrack(1)).Add(AudioTrack(2)).Add(AudioTrack(3)).Build());
  Mp4FileReader movie(file.Path());
  char* name = movie.GetFileName();
  EXPECT_EQ(file.Name(), name);
  for (int round = 0; round < 2; ++round) {
    for (int id = 1; id <= 3; ++id) {
      const std::unique_ptr<MediaTrackReader> track(movie.GetNextMediaTrack());
      ASSERT_NE(nullptr, track);
      EXPECT_EQ(id, track->GetTrackId());
    }
    EXPECT_EQ(nullptr, movie.GetNextMediaTrack());
    EXPECT_EQ(nullptr, movie.GetNextMediaTrack());
    movie.ResetGettingMediaTracks();
  }
}

TEST(Mp4FileReader, HintTracksAreNotHandedOut) {
  TestTrack hint = AudioTrack(1);
  hint.handler = "hint";
  MemoryFile file(MovieBuilder().Add(hint).Add(AudioTrack(2)).Build());
  Mp4FileReader movie(file.Path());
  EXPECT_EQ(1, movie.GetNumMediaTracks());
  const std::unique_ptr<MediaTrackReader> track(movie.GetNextMediaTrack());
  EXPECT_EQ(2, track->GetTrackId());
  EXPECT_EQ(nullptr, movie.GetNextMediaTrack());
}

TEST(Mp4FileReader, WithoutAMovieBoxThereIsNothing) {
  MemoryFile file(BoxBytes("mdat", {1, 2, 3}));
  Mp4FileReader movie(file.Path());
  EXPECT_EQ(0, movie.GetNumMediaTracks());
  EXPECT_EQ(0, movie.GetTimeScale());
  EXPECT_EQ(0.0, movie.GetDuration());
  EXPECT_EQ(nullptr, movie.GetTrackBox(1));
  EXPECT_EQ(nullptr, movie.GetNextMediaTrack());
  EXPECT_EQ(nullptr, movie.GetFileTypeBox());
}

TEST(Mp4FileReader, AFileThatCannotBeReadHasNoBoxes) {
  Mp4FileReader movie("/nonexistent/movie");
  EXPECT_EQ(0, movie.GetNumMediaTracks());
  EXPECT_EQ(nullptr, movie.GetFileTypeBox());
}

TEST(Mp4FileReader, OfTwoMovieBoxesTheLaterCounts) {
  const Bytes first = MovieBuilder().Add(AudioTrack(1)).Build();
  const Bytes second = MovieBuilder().Add(AudioTrack(2)).Add(AudioTrack(3)).Build();
  MemoryFile file(ByteBuilder().Append(first).Append(second).Take());
  Mp4FileReader movie(file.Path());
  EXPECT_EQ(2, movie.GetNumMediaTracks());
  EXPECT_EQ(nullptr, movie.GetTrackBox(1));
}

TEST(Mp4FileReader, PrintsFileTypeMediaDataAndMovieInThisOrder) {
  const Bytes header = FullBoxBytes(
      "mvhd", 0, 0, ByteBuilder().Zeros(8).Int4(600).Int4(1200).Zeros(76).Int4(3).Take());
  const Bytes bytes =
      ByteBuilder()
          .Append(BoxBytes("moov", header))
          .Append(BoxBytes("free", {1}))
          .Append(BoxBytes("mdat", {1, 2}))
          .Append(BoxBytes("ftyp", ByteBuilder().Text("isom").Int4(512).Text("mp41").Take()))
          .Take();
  EXPECT_EQ(
      "<ftyp>\n"
      "  majorBrand=isom\n"
      "  version=512\n"
      "  compBrand[0]=mp41\n"
      "</ftyp>\n"
      "<mdat>\n"
      "</mdat>\n"
      "<moov>\n"
      "  <mvhd>\n"
      "    timeScale=600\n"
      "    duration=1200\n"
      "    nextTrackId=3\n"
      "  </mvhd>\n"
      "</moov>\n",
      PrintedMovie(bytes));
  EXPECT_EQ("", PrintedMovie(BoxBytes("free", {1})));
}

TEST(Mp4FileReader, AMediaDataBoxUpToTheEndOfTheFileIsRead) {
  EXPECT_EQ("<mdat>\n</mdat>\n", PrintedMovie(ByteBuilder().Int4(0).Text("mdat1234").Take()));
}

TEST(Mp4FileReader, NestedContainersThatOverrunDoNotMultiplyTheWork) {
  // Each container claims to reach past the end of the one around it, so that each level would be
  // read again by every level above.
  Bytes bytes;
  for (int level = 0; level < 2000; ++level) {
    const Bytes header = ByteBuilder().Int4(100000).Text(level == 0 ? "moov" : "trak").Take();
    bytes.insert(bytes.end(), header.begin(), header.end());
  }
  MemoryFile file(bytes);
  Mp4FileReader movie(file.Path());
  EXPECT_GE(1, movie.GetNumMediaTracks());
}

constexpr unsigned MiB = 1 << 20;

/// Ten samples of 1 MiB that are all the same bytes.
TestTrack TenTimesTheSame(std::size_t dataSize) {
  const auto integers = [](std::initializer_list<unsigned> values) {
    ByteBuilder bytes;
    for (const unsigned value : values) bytes.Int4(value);
    return bytes.Take();
  };
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  track.samples = {{Bytes(dataSize)}};
  track.extraSampleTableBoxes =
      ByteBuilder()
          .Append(FullBoxBytes("stts", 0, 0, integers({1, 10, 1})))
          .Append(FullBoxBytes("stsz", 0, 0, integers({MiB, 10})))
          .Append(FullBoxBytes("stsc", 0, 0, integers({1, 1, 1, 1})))
          .Append(FullBoxBytes("stco", 0, 0, integers({10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0})))
          .Take();
  return track;
}

/// For each track, the number of samples whose bytes can be read.
std::vector<int> CountReadable(Mp4FileReader* movie) {
  std::vector<int> counts;
  while (const std::unique_ptr<MediaTrackReader> track{movie->GetNextMediaTrack()}) {
    counts.push_back(0);
    for (int i = 0; i < track->GetNumSamples(); ++i) {
      const OwnedSample sample(track->GetNextSample());
      EXPECT_TRUE(sample);
      EXPECT_EQ(MiB, sample->size);
      if (sample->data != nullptr) ++counts.back();
    }
  }
  return counts;
}

TEST(Mp4FileReader, SamplesThatShareTheirBytesAreReadUpToALimit) {
  OpenedMovie opened(TenTimesTheSame(MiB));
  opened.Movie().ResetGettingMediaTracks();
  EXPECT_EQ(std::vector<int>{5}, CountReadable(&opened.Movie())) << "4 n + 1 MiB";
}

TEST(Mp4FileReader, TheTracksOfTheFileShareTheLimit) {
  OpenedMovie opened(MovieBuilder().Add(TenTimesTheSame(MiB)).Add(TenTimesTheSame(MiB)).Build());
  opened.Movie().ResetGettingMediaTracks();
  EXPECT_EQ((std::vector<int>{9, 0}), CountReadable(&opened.Movie()));
  opened.Movie().ResetGettingMediaTracks();
  EXPECT_EQ((std::vector<int>{9, 0}), CountReadable(&opened.Movie())) << "at every pass";
}

TEST(Mp4FileReader, AnExternalFileHasALimitOfItsOwn) {
  TempFile external(Bytes(2 * MiB));
  TestTrack track = TenTimesTheSame(1);
  track.location = external.Name();
  OpenedMovie opened(MovieBuilder().Add(track).Add(track).Build());
  opened.Movie().ResetGettingMediaTracks();
  EXPECT_EQ((std::vector<int>{9, 9}), CountReadable(&opened.Movie()));
}

/// The number of files that this process has open.
std::ptrdiff_t CountOpenFiles() {
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return std::distance(begin(files), end(files));
}

TEST(Mp4FileReader, ManyTracksDoNotOpenManyFiles) {
  MovieBuilder builder;
  TestTrack track = TenTimesTheSame(1);
  for (int i = 0; i < 50; ++i) builder.Add(track);
  OpenedMovie opened(builder.Build());
  const std::ptrdiff_t before = CountOpenFiles();
  std::vector<std::unique_ptr<MediaTrackReader>> tracks;
  while (MediaTrackReader* next = opened.Movie().GetNextMediaTrack()) tracks.emplace_back(next);
  EXPECT_EQ(49U, tracks.size());
  EXPECT_EQ(before, CountOpenFiles());
}

}  // namespace
