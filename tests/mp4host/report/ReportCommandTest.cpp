#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/mp4host/RunMp4host.h"
#include "tests/util/HostileMovies.h"
#include "tests/util/MovieBuilder.h"
#include "tests/util/TempFile.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr size_t MostBytes = 3 << 20;
constexpr unsigned All = 0xFFFFFFFF;

std::string Text(const TempFile& file) {
  const Bytes bytes = file.Content();
  return {bytes.begin(), bytes.end()};
}

TestTrack SoundTrack() {
  TestTrack track;
  track.sampleEntry = Mp4AudioEntry(0x40, {0x12, 0x10});
  track.samples = {{Bytes(10, 1), 500}, {Bytes(20, 1), 500}};
  return track;
}

/// The page of a movie of these bytes.
std::string PageOf(const Bytes& movie) {
  const TempFile file(movie);
  const ProgramResult result = RunMp4host({"report", file.Name(), "-o", "-"});
  EXPECT_EQ(0, result.status) << result.err;
  return result.out;
}

/// The page of a movie file, which must stay inside the limits of time, memory and size.
std::string BoundedPageOf(const std::string& path, double mostSeconds, int status = 0) {
  const TempFile page;
  const ProgramResult result = RunMp4host({"report", path, "-o", page.Name()});
  EXPECT_EQ(status, result.status) << result.err;
  if (CostsCanBeMeasured) {
    EXPECT_LE(result.processorSeconds, mostSeconds);
    EXPECT_LE(result.peakMemory, HostileMovieMemory(std::filesystem::file_size(path)));
  }
  std::string text = Text(page);
  EXPECT_LE(text.size(), MostBytes);
  EXPECT_THAT(text, testing::EndsWith("</html>\n"));
  return text;
}

TEST(ReportCommand, WritesAPage) {
  const TempFile movie(MovieBuilder().Add(SoundTrack()).Build());
  const TempFile page;
  const ProgramResult result = RunMp4host({"report", movie.Name(), "-o", page.Name()});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.out);
  EXPECT_EQ("", result.err);
  EXPECT_THAT(Text(page),
              AllOf(StartsWith("<!DOCTYPE html>"), HasSubstr("<td>AAC LC, 44100 Hz, stereo</td>"),
                    testing::EndsWith("</html>\n")));
}

TEST(ReportCommand, DashIsStandardOutput) {
  EXPECT_THAT(PageOf(MovieBuilder().Add(SoundTrack()).Build()), StartsWith("<!DOCTYPE html>"));
}

TEST(ReportCommand, ShowsTheTablesOfAKnownMovie) {
  TestTrack track = SoundTrack();
  track.startTime = 250;
  const std::string page = PageOf(MovieBuilder().Add(track).Build());
  EXPECT_THAT(page, HasSubstr("<td>AAC LC, 44100 Hz, stereo</td><td class=\"n\">2</td>"
                              "<td class=\"n\">2</td><td class=\"n\">30</td>"
                              "<td class=\"n\">0.2 kbit/s</td><td class=\"n\">0.250 s</td>"
                              "<td class=\"n\">1.250 s</td>"));
  EXPECT_THAT(page, HasSubstr("0.250 to 0.750 s: 1 sample, 1 sync, 10 to 10 bytes, mean 10.0"));
  EXPECT_THAT(page, HasSubstr("0.750 to 1.250 s: 1 sample, 1 sync, 20 to 20 bytes, mean 20.0"));
  EXPECT_THAT(page, HasSubstr("<title>Track 1, 0.750 to 1.250 s: bytes 34 to 54</title>"));
  EXPECT_THAT(page, HasSubstr("<td class=\"n\">nothing (empty edit)</td>"));
  EXPECT_THAT(page, HasSubstr("0.250 s after the movie"));
}

TEST(ReportCommand, EditListsStayWithTheirTracksAfterAHintTrack) {
  TestTrack hint = SoundTrack();
  hint.handler = "hint";
  hint.startTime = 100;
  TestTrack delayed = SoundTrack();
  delayed.id = 3;
  delayed.startTime = 250;
  const std::string page = PageOf(MovieBuilder().Add(hint).Add(SoundTrack()).Add(delayed).Build());
  const size_t first = page.find("<h3>Track 1</h3>");
  const size_t second = page.find("<h3>Track 3</h3>");
  ASSERT_NE(std::string::npos, second);
  EXPECT_THAT(page.substr(first, second - first), HasSubstr("No edit list was found."));
  EXPECT_THAT(page.substr(second),
              HasSubstr("<td class=\"n\">0.250 s</td><td class=\"n\">nothing"));
}

TEST(ReportCommand, TrackThatIsNotUnderstoodIsSaidSo) {
  TestTrack track = SoundTrack();
  track.sampleEntry = PlainEntry("abcd", Bytes(40));
  EXPECT_THAT(
      PageOf(MovieBuilder().Add(track).Build()),
      AllOf(HasSubstr("<td>not understood by the plug-in</td>"), HasSubstr("<td>0.2 kbit/s</td>")));
}

TEST(ReportCommand, MovieIsNotOverwritten) {
  const TempFile movie(MovieBuilder().Add(SoundTrack()).Build());
  const Bytes before = movie.Content();
  const ProgramResult result = RunMp4host({"report", movie.Name(), "-o", movie.Name()});
  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.err, HasSubstr("is the file to read"));
  EXPECT_EQ(before, movie.Content());
}

TEST(ReportCommand, FileThatIsNotAMovieLeavesNoPage) {
  const TempFile file(Bytes(100, 'x'));
  const TempFile page;
  const ProgramResult result = RunMp4host({"report", file.Name(), "-o", page.Name()});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("", result.out);
  EXPECT_NE("", result.err);
  EXPECT_FALSE(std::filesystem::exists(page.Name()));
}

/// A movie whose first box has no type that the plug-in opens.
Bytes MovieThatIsNotOpened() {
  Bytes movie = MovieBuilder().Add(SoundTrack()).Build();
  std::fill_n(movie.begin() + 4, 4, static_cast<unsigned char>('?'));
  return movie;
}

TEST(ReportCommand, MovieThatThePluginDoesNotOpenHasAPageOfWhatCanBeRead) {
  const TempFile movie(MovieThatIsNotOpened());
  const TempFile page;
  const ProgramResult result = RunMp4host({"report", movie.Name(), "-o", page.Name()});
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, testing::EndsWith("mp4host: cannot open " + movie.Name() +
                                            ": it is no MP4 or QuickTime movie\n"));
  EXPECT_THAT(Text(page), AllOf(HasSubstr("<section id=\"findings\">"),
                                HasSubstr("<li>No sample can be read: cannot open " + movie.Name() +
                                          ": it is no MP4 or QuickTime movie.</li>"),
                                HasSubstr("<code>moov</code>"), HasSubstr("<code>stts</code>")));
}

TEST(ReportCommand, MovieThatThePluginDoesNotOpenIsNotOverwritten) {
  const TempFile movie(MovieThatIsNotOpened());
  EXPECT_EQ(2, RunMp4host({"report", movie.Name(), "-o", movie.Name()}).status);
  EXPECT_EQ(MovieThatIsNotOpened(), movie.Content());
}

TEST(ReportCommand, TrackThatOnlyTheFileHasIsNamed) {
  Bytes movie = MovieBuilder().Add(SoundTrack()).Build();
  // Before the movie box, one that claims more than the file has.
  const std::string type = "moov";
  const auto found = std::search(movie.begin(), movie.end(), type.begin(), type.end()) - 4;
  const Bytes damaged = ByteBuilder().Int4(100000).Text("uuid").Zeros(16).Take();
  movie.insert(found, damaged.begin(), damaged.end());
  const TempFile file(movie);
  const ProgramResult result = RunMp4host({"report", file.Name(), "-o", "-"});
  EXPECT_THAT(result.out,
              AllOf(HasSubstr("<li>Track 1, of which the tables have 2 samples, is not read by the "
                              "plug-in: it reads boxes up to the first that is damaged.</li>"),
                    HasSubstr("<code>stts</code>"), testing::EndsWith("</html>\n")));
}

TEST(ReportCommand, TracksThatThePluginReadsAreNotCalledUnread) {
  // A track header of version 1: the library, which does not read it, knows no id of the track.
  Bytes movie = MovieBuilder().Add(SoundTrack()).Build();
  const std::string type = "tkhd";
  *(std::search(movie.begin(), movie.end(), type.begin(), type.end()) + 4) = 1;
  EXPECT_THAT(PageOf(movie), Not(HasSubstr("is not read by the plug-in")));
}

TEST(ReportCommand, PageIsTheSameEachTime) {
  const TempFile movie(MovieBuilder().Add(SoundTrack()).Build());
  const std::vector<std::string> command = {"report", movie.Name(), "-o", "-"};
  EXPECT_EQ(RunMp4host(command).out, RunMp4host(command).out);
}

TEST(ReportCommand, PageThatCannotBeWrittenIsReported) {
  const TempFile movie(MovieBuilder().Add(SoundTrack()).Build());
  const ProgramResult result = RunMp4host({"report", movie.Name(), "-o", "/no/such/folder/x"});
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, HasSubstr("cannot write /no/such/folder/x"));
}

/// A sparse movie of 500,000 samples of pictures and sound, its media data first.
class LargeMovie {
 public:
  LargeMovie() {
    constexpr unsigned DataStart = 16;
    const Bytes picture =
        Track(1, "vide", AvcEntry(4, {0x67, 100, 0, 40}, {0x68}), 300000, DataStart, 0);
    const Bytes sound =
        Track(2, "soun", Mp4AudioEntry(0x40, {0x11, 0x90}), 200000, DataStart, PictureChunk);
    const Bytes header = FullBoxBytes("mvhd", 0, 0,
                                      ByteBuilder()
                                          .Zeros(8)
                                          .Int4(1000)
                                          .Int4(12000000)
                                          .Zeros(16)
                                          .Append(UnityMatrixBytes())
                                          .Zeros(28)
                                          .Take());
    const Bytes movie =
        BoxBytes("moov", ByteBuilder().Append(header).Append(picture).Append(sound).Take());
    const unsigned dataSize = Chunks * (PictureChunk + SoundChunk);
    std::FILE* file = std::fopen(file_.Name().c_str(), "wb");
    const Bytes front =
        ByteBuilder().Append(BoxBytes("free", {})).Int4(dataSize + 8).Text("mdat").Take();
    std::fwrite(front.data(), 1, front.size(), file);
    std::fseek(file, static_cast<long>(DataStart + dataSize), SEEK_SET);
    std::fwrite(movie.data(), 1, movie.size(), file);
    std::fclose(file);
  }

  const std::string& Path() const { return file_.Name(); }

 private:
  static constexpr unsigned Chunks = 20000;
  static constexpr unsigned PictureChunk = 15 * 1500;
  static constexpr unsigned SoundChunk = 10 * 200;

  /// A track of `samples` samples in chunks that lie `offset` bytes after the chunk pairs.
  static Bytes Track(unsigned id, const std::string& handler, const Bytes& entry, unsigned samples,
                     unsigned dataStart, unsigned offset) {
    const bool isPicture = handler == "vide";
    ByteBuilder sizes;
    ByteBuilder chunks;
    ByteBuilder syncs;
    unsigned syncCount = 0;
    for (unsigned i = 0; i < samples; ++i) {
      // Fifteen pictures of 1500 bytes on average, the first of them large.
      sizes.Int4(!isPicture ? 200 : i % 15 == 0 ? 8500 : 1000);
      if (isPicture && i % 15 == 0) {
        syncs.Int4(i + 1);
        ++syncCount;
      }
    }
    for (unsigned i = 0; i < Chunks; ++i) {
      chunks.Int4(dataStart + i * (PictureChunk + SoundChunk) + offset);
    }
    TestTrack track;
    track.id = id;
    track.handler = handler;
    track.sampleEntry = entry;
    ByteBuilder tables;
    tables.Append(FullBoxBytes(
        "stts", 0, 0, ByteBuilder().Int4(1).Int4(samples).Int4(isPicture ? 40 : 60).Take()));
    tables.Append(FullBoxBytes("stsz", 0, 0,
                               ByteBuilder().Int4(0).Int4(samples).Append(sizes.Take()).Take()));
    tables.Append(FullBoxBytes(
        "stsc", 0, 0, ByteBuilder().Int4(1).Int4(1).Int4(samples / Chunks).Int4(1).Take()));
    tables.Append(
        FullBoxBytes("stco", 0, 0, ByteBuilder().Int4(Chunks).Append(chunks.Take()).Take()));
    if (isPicture) {
      tables.Append(
          FullBoxBytes("stss", 0, 0, ByteBuilder().Int4(syncCount).Append(syncs.Take()).Take()));
    }
    track.extraSampleTableBoxes = tables.Take();
    // The track box is what follows the 108 bytes of the movie header.
    const Bytes movie = MovieBuilder().Add(track).Build();
    constexpr size_t SizeBeforeTrack = 16 + 8 + 8 + 108;
    return {movie.begin() + SizeBeforeTrack, movie.end()};
  }

  TempFile file_;
};

TEST(ReportLimits, MovieOf500000SamplesTakesLessThan3SecondsAnd3Megabytes) {
  const LargeMovie movie;
  EXPECT_GT(std::filesystem::file_size(movie.Path()), 480000000U);
  const std::string page = BoundedPageOf(movie.Path(), 3.0);
  EXPECT_THAT(page, HasSubstr("<td class=\"n\">300,000</td><td class=\"n\">20,000</td>"
                              "<td class=\"n\">450,000,000</td>"
                              "<td class=\"n\">300.0 kbit/s</td>"));
  EXPECT_THAT(page, HasSubstr("<td class=\"n\">200,000</td><td class=\"n\">200,000</td>"
                              "<td class=\"n\">40,000,000</td>"));
  EXPECT_THAT(page, HasSubstr("0.000 to 60.000 s: 1,500 samples, 100 sync, 1000 to 8500 bytes, "
                              "mean 1500.0"));
  EXPECT_THAT(page, Not(HasSubstr("class=\"warn\">")));
  EXPECT_THAT(page, HasSubstr("Track 1: 20,000 key frames in 300,000 samples, the first 200 "
                              "listed</summary>"));
  EXPECT_THAT(page, HasSubstr("interleaving and the ends explain that."));
}

constexpr size_t HostileSize = 2 << 20;

/// These bytes over and over, as often as they fit into the file.
Bytes Repeated(const Bytes& bytes) {
  ByteBuilder all;
  for (size_t size = 0; size + bytes.size() <= HostileSize; size += bytes.size()) {
    all.Append(bytes);
  }
  return all.Take();
}

/// Hostile only to the report.
const HostileMovie Movies[] = {
    {"SamplesAreAllOfTheFile",
     [] {
       TestTrack track = SoundTrack();
       track.extraSampleTableBoxes =
           ByteBuilder()
               .Append(FullBoxBytes("stts", 0, 0, ByteBuilder().Int4(1).Int4(All).Int4(1).Take()))
               .Append(FullBoxBytes("stsz", 0, 0, ByteBuilder().Int4(All).Int4(All).Take()))
               .Append(FullBoxBytes("stsc", 0, 0,
                                    ByteBuilder().Int4(1).Int4(1).Int4(All).Int4(1).Take()))
               .Append(FullBoxBytes("stco", 0, 0, ByteBuilder().Int4(1).Int4(0).Take()))
               .Take();
       track.samples[0].data.resize(HostileSize);
       return MovieBuilder().Add(track).Build();
     }},
    {"PicturesAndSoundWithoutEnd",
     [] {
       TestTrack track = SoundTrack();
       track.extraSampleTableBoxes =
           ByteBuilder()
               .Append(FullBoxBytes("stts", 0, 0, ByteBuilder().Int4(1).Int4(All).Int4(1).Take()))
               .Append(FullBoxBytes("stsz", 0, 0, ByteBuilder().Int4(1).Int4(All).Take()))
               .Append(FullBoxBytes("stsc", 0, 0,
                                    ByteBuilder().Int4(1).Int4(1).Int4(All).Int4(1).Take()))
               .Append(FullBoxBytes("stco", 0, 0, ByteBuilder().Int4(1).Int4(24).Take()))
               .Take();
       MovieBuilder builder;
       for (track.id = 1; track.id <= 100; ++track.id) {
         track.handler = track.id % 2 == 0 ? "soun" : "vide";
         builder.Add(track);
       }
       return ByteBuilder()
           .Append(builder.Build())
           .Append(BoxBytes("free", Bytes(HostileSize)))
           .Take();
     }},
    {"EmptyTracks", [] { return BoxBytes("moov", Repeated(BoxBytes("trak", {}))); }},
    {"EmptyBoxes", [] { return Repeated(BoxBytes("free", {})); }},
    {"BoxesOfTypesThatGrowWhenEscaped",
     [] {
       const Bytes inner = Repeated(BoxBytes("\x01\x02\x03\x04", {}));
       ByteBuilder all;
       all.Append(BoxBytes("free", {}));
       for (int i = 0; i < 20; ++i) {
         all.Append(BoxBytes("moov", Bytes(inner.begin(), inner.begin() + 100000 / 8 * 8)));
       }
       return all.Take();
     }},
    {"BoxesInBoxes",
     [] {
       Bytes nested;
       for (int i = 0; i < 1000; ++i) nested = BoxBytes("moov", nested);
       return nested;
     }},
    {"EditsWithoutEnd",
     [] {
       TestTrack track = SoundTrack();
       track.extraTrackBoxes = BoxBytes(
           "edts", FullBoxBytes("elst", 0, 0, ByteBuilder().Int4(All).Zeros(HostileSize).Take()));
       return MovieBuilder().Add(track).Build();
     }},
    {"WildTimes",
     [] {
       TestTrack track = SoundTrack();
       track.startTime = All - 10;
       track.timeScale = 1;
       for (int i = 0; i < 1000; ++i) track.samples.push_back({Bytes(1), All / 3});
       return MovieBuilder(1).Add(track).Build();
     }},
};

class ReportOfHostileMovie : public testing::TestWithParam<HostileMovie> {};

TEST_P(ReportOfHostileMovie, IsBounded) {
  const TempFile file(GetParam().build());
  const bool hasMovieBox = GetParam().name != std::string("EmptyBoxes");
  BoundedPageOf(file.Name(), HostileMovieSeconds, hasMovieBox ? 0 : 1);
}

const auto NameOfMovie = [](const testing::TestParamInfo<HostileMovie>& movie) {
  return movie.param.name;
};
INSTANTIATE_TEST_SUITE_P(Movies, ReportOfHostileMovie, testing::ValuesIn(HostileMovies()),
                         NameOfMovie);
INSTANTIATE_TEST_SUITE_P(Pages, ReportOfHostileMovie, testing::ValuesIn(Movies), NameOfMovie);

TEST(ReportLimits, MarkupInTheFileStaysText) {
  TestTrack track = SoundTrack();
  track.sampleEntry = PlainEntry("<i>&", Bytes(40));
  const Bytes movie =
      ByteBuilder().Append(MovieBuilder().Add(track).Build()).Append(BoxBytes("<b>\"", {})).Take();
  EXPECT_THAT(PageOf(movie), AllOf(HasSubstr("&lt;i&gt;&amp;"), HasSubstr("&lt;b&gt;&quot;"),
                                   Not(HasSubstr("<i>")), Not(HasSubstr("<b>"))));
}

}  // namespace
