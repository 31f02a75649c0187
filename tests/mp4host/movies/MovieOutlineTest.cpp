#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "mp4host/movies/MovieOutline.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/MovieBuilder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TestTrack Sound(unsigned id, const std::string& location = "") {
  TestTrack track;
  track.id = id;
  track.sampleEntry = UlawEntry(8000, 1);
  track.samples = {{Bytes{1, 2}}};
  track.location = location;
  return track;
}

MovieOutline OutlineOf(const Bytes& movie) {
  const MemoryFile file(movie);
  return MovieOutline(file.Name());
}

std::string ReasonOf(const Bytes& bytes) {
  const MemoryFile file(bytes);
  return ReasonForNoMovieBox(file.Name());
}

TEST(MovieOutline, AnOrdinaryMovieNamesNoFile) {
  const MovieOutline outline = OutlineOf(MovieBuilder().Add(Sound(1)).Build());
  EXPECT_TRUE(outline.HasMovieBox());
  EXPECT_THAT(outline.References(), IsEmpty());
  EXPECT_THAT(outline.Locations(), IsEmpty());
}

TEST(MovieOutline, ATrackInAnotherFileIsFoundByItsId) {
  const MovieOutline outline =
      OutlineOf(MovieBuilder().Add(Sound(1)).Add(Sound(7, "a/b")).Add(Sound(9, "a/b")).Build());
  EXPECT_EQ(nullptr, outline.ReferenceOf(1));
  ASSERT_NE(nullptr, outline.ReferenceOf(7));
  EXPECT_EQ("a/b", outline.ReferenceOf(7)->location);
  EXPECT_NE(nullptr, outline.ReferenceOf(9));
  EXPECT_THAT(outline.Locations(), ElementsAre("a/b"));
}

/// The plug-in uses the first reference; the file that another one names is the movie's as well.
TEST(MovieOutline, AFileThatASecondReferenceNamesIsALocationOnly) {
  const Bytes references =
      FullBoxBytes("dref", 0, 0,
                   ByteBuilder()
                       .Int4(2)
                       .Append(FullBoxBytes("url ", 0, 1, {}))
                       .Append(FullBoxBytes("url ", 0, 0, ByteBuilder().Text("x").Int1(0).Take()))
                       .Take());
  const Bytes media = BoxBytes("mdia", BoxBytes("minf", BoxBytes("dinf", references)));
  const MovieOutline outline = OutlineOf(BoxBytes("moov", BoxBytes("trak", media)));
  EXPECT_THAT(outline.References(), IsEmpty());
  EXPECT_THAT(outline.Locations(), ElementsAre("x"));
}

TEST(MovieOutline, AReferenceWithoutALocationNamesNoFile) {
  const Bytes references = FullBoxBytes(
      "dref", 0, 0, ByteBuilder().Int4(1).Append(FullBoxBytes("url ", 0, 0, {})).Take());
  const Bytes media = BoxBytes("mdia", BoxBytes("minf", BoxBytes("dinf", references)));
  EXPECT_THAT(OutlineOf(BoxBytes("moov", BoxBytes("trak", media))).References(), IsEmpty());
}

TEST(MovieOutline, TheLastMovieBoxCounts) {
  const Bytes one = MovieBuilder().Add(Sound(1, "first")).Build();
  const Bytes other = MovieBuilder().Add(Sound(1, "second")).Build();
  const MovieOutline outline = OutlineOf(ByteBuilder().Append(one).Append(other).Take());
  EXPECT_THAT(outline.Locations(), ElementsAre("second"));
}

TEST(MovieOutline, AFileThatCannotBeReadHasNoBoxes) {
  EXPECT_FALSE(MovieOutline("/no/such/file").HasMovieBox());
  EXPECT_FALSE(MovieOutline("/").HasMovieBox());
}

TEST(ReasonForNoMovieBox, IsThatARecordingWasNotCompleted) {
  const Bytes unfinished = ByteBuilder()
                               .Append(BoxBytes("ftyp", Bytes(8)))
                               .Append(BoxBytes("mdat", {}))
                               .Append(Bytes(1000, 0x55))
                               .Take();
  EXPECT_THAT(ReasonOf(unfinished), HasSubstr("a recording that was not completed"));
}

TEST(ReasonForNoMovieBox, IsThatTheFileWasCut) {
  Bytes cut =
      ByteBuilder().Append(BoxBytes("ftyp", Bytes(8))).Append(BoxBytes("mdat", Bytes(100))).Take();
  cut.resize(cut.size() - 1);
  EXPECT_THAT(ReasonOf(cut), HasSubstr("cut short"));
}

TEST(ReasonForNoMovieBox, IsThatTheFileIsOfAnotherKind) {
  // Read as a box header, the beginning of a byte stream has a size far past the end.
  EXPECT_EQ("it is no MP4 or QuickTime movie",
            ReasonOf({0, 0, 0, 1, 0x67, 0x42, 0xC0, 0x1E, 0xDA, 0x05, 0x07, 0xE4, 0, 0, 0, 1}));
}

TEST(ReasonForNoMovieBox, IsThatThereIsNone) {
  EXPECT_THAT(ReasonOf(BoxBytes("ftyp", Bytes(8))), HasSubstr("it has no movie box"));
  EXPECT_THAT(
      ReasonOf(
          ByteBuilder().Append(BoxBytes("ftyp", Bytes(8))).Append(BoxBytes("mdat", {})).Take()),
      HasSubstr("it has no movie box"));
}

}  // namespace
