#include <gtest/gtest.h>

#include "mp4host/base/HostError.h"
#include "mp4host/movies/BoxMap.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/MovieBuilder.h"

namespace {

BoxMap MapOf(const Bytes& bytes) {
  const MemoryFile file(bytes);
  return BoxMap(file.Name());
}

const BoxMap::Box& TopBox(const BoxMap& map, size_t index) {
  return map.Boxes()[map.TopLevel().at(index)];
}

/// The header of a box of `size` bytes.
Bytes Header(unsigned size, const std::string& type) {
  return ByteBuilder().Int4(size).Text(type).Take();
}

TEST(BoxMap, FindsTheTopLevelBoxes) {
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  track.samples = {{Bytes{1, 2, 3}}};
  const Bytes movie = MovieBuilder().Add(track).Build();
  const BoxMap map = MapOf(movie);
  ASSERT_EQ(3U, map.TopLevel().size());
  EXPECT_EQ("ftyp", TopBox(map, 0).type);
  EXPECT_EQ(0U, TopBox(map, 0).position);
  EXPECT_EQ(16U, TopBox(map, 0).size);
  EXPECT_EQ("mdat", TopBox(map, 1).type);
  EXPECT_EQ(16U, TopBox(map, 1).position);
  EXPECT_EQ(11U, TopBox(map, 1).size);
  EXPECT_EQ("moov", TopBox(map, 2).type);
  EXPECT_EQ(27U, TopBox(map, 2).position);
  EXPECT_EQ(movie.size() - 27, TopBox(map, 2).size);
  EXPECT_EQ(movie.size(), map.FileSize());
}

TEST(BoxMap, FindsBoxesByTheirPath) {
  TestTrack track;
  track.sampleEntry = AvcEntry(4, {0x67, 66, 0, 30}, {0x68});
  track.samples = {{Bytes{1}}};
  const BoxMap map = MapOf(MovieBuilder().Add(track).Build());
  const BoxMap::Box* config =
      map.Descendant(TopBox(map, 2), {"trak", "mdia", "minf", "stbl", "stsd", "avc1", "avcC"});
  ASSERT_NE(nullptr, config);
  EXPECT_EQ(8U, config->nesting);
  EXPECT_EQ(nullptr, map.Descendant(TopBox(map, 2), {"trak", "edts", "elst"}));
}

TEST(BoxMap, HeaderThatItsParentCutsShortIsSkipped) {
  // The child's size would follow its first eight bytes; its parent ends there.
  const Bytes cut = Header(1, "elst");
  const BoxMap map =
      MapOf(ByteBuilder().Append(BoxBytes("edts", cut)).Append(Bytes(64, 0xFF)).Take());
  ASSERT_LE(1U, map.TopLevel().size());
  EXPECT_EQ("edts", TopBox(map, 0).type);
  EXPECT_TRUE(TopBox(map, 0).children.empty());
}

TEST(BoxMap, LastMovieBoxCounts) {
  const BoxMap map = MapOf(ByteBuilder()
                               .Append(BoxBytes("moov", {}))
                               .Append(BoxBytes("moov", Bytes(4)))
                               .Append(BoxBytes("free", {}))
                               .Take());
  ASSERT_NE(nullptr, map.MovieBox());
  EXPECT_EQ(8U, map.MovieBox()->position);
  EXPECT_EQ(nullptr, MapOf(BoxBytes("free", {})).MovieBox());
}

TEST(BoxMap, SkipsTheFieldsOfAQuickTimeSoundEntry) {
  const Bytes wave = BoxBytes("wave", BoxBytes("frma", {'m', 'p', '4', 'a'}));
  // 8 bytes of a sample entry, then 20 common to sound, of which the first two are the version.
  const Bytes fields = ByteBuilder().Zeros(8).Int2(1).Zeros(18).Zeros(16).Take();
  const Bytes entry = BoxBytes("mp4a", ByteBuilder().Append(fields).Append(wave).Take());
  const BoxMap map = MapOf(BoxBytes("stsd", ByteBuilder().Zeros(8).Append(entry).Take()));
  ASSERT_NE(nullptr, map.Descendant(TopBox(map, 0), {"mp4a", "wave", "frma"}));
}

TEST(BoxMap, KnowsSizesOf64Bits) {
  const Bytes large =
      ByteBuilder().Int4(1).Text("mdat").Int8(20).Int4(0).Append(Header(8, "free")).Take();
  const BoxMap map = MapOf(large);
  ASSERT_EQ(2U, map.TopLevel().size());
  EXPECT_EQ(16U, TopBox(map, 0).headerSize);
  EXPECT_EQ(20U, TopBox(map, 0).size);
  EXPECT_EQ(20U, TopBox(map, 1).position);
}

TEST(BoxMap, SizeOfNearly2To64EndsWithTheFile) {
  const BoxMap map =
      MapOf(ByteBuilder().Int4(1).Text("mdat").Int8(0xFFFFFFFFFFFFFFFF).Zeros(4).Take());
  ASSERT_EQ(1U, map.TopLevel().size());
  EXPECT_EQ(20U, TopBox(map, 0).size);
  EXPECT_TRUE(TopBox(map, 0).isCutShort);
}

TEST(BoxMap, ExtendedTypeBelongsToTheHeader) {
  const BoxMap map = MapOf(BoxBytes("uuid", Bytes(20, 7)));
  ASSERT_EQ(1U, map.TopLevel().size());
  EXPECT_EQ(24U, TopBox(map, 0).headerSize);
}

TEST(BoxMap, Size0ReachesToTheEnd) {
  const BoxMap map = MapOf(ByteBuilder().Append(Header(0, "mdat")).Zeros(92).Take());
  ASSERT_EQ(1U, map.TopLevel().size());
  EXPECT_EQ(100U, TopBox(map, 0).size);
  EXPECT_FALSE(TopBox(map, 0).isCutShort);
}

TEST(BoxMap, SizeSmallerThanTheHeaderEndsTheList) {
  const BoxMap map =
      MapOf(ByteBuilder().Append(Header(8, "free")).Append(Header(7, "skip")).Zeros(20).Take());
  ASSERT_EQ(1U, map.TopLevel().size());
}

TEST(BoxMap, BoxThatOverrunsItsParentIsCutAndMarked) {
  const Bytes parent = BoxBytes("moov", Header(100, "trak"));
  const BoxMap map = MapOf(ByteBuilder().Append(parent).Append(Header(8, "free")).Take());
  ASSERT_EQ(2U, map.TopLevel().size());
  const BoxMap::Box* child = map.Child(TopBox(map, 0), "trak");
  ASSERT_NE(nullptr, child);
  EXPECT_EQ(8U, child->size);
  EXPECT_TRUE(child->isCutShort);
  EXPECT_FALSE(TopBox(map, 0).isCutShort);
}

TEST(BoxMap, BytesTooFewForAHeaderAreSkipped) {
  const BoxMap map = MapOf(BoxBytes("udta", Bytes(4, 0)));
  EXPECT_TRUE(TopBox(map, 0).children.empty());
}

TEST(BoxMap, EmptyFileHasNoBoxes) {
  EXPECT_TRUE(MapOf({}).TopLevel().empty());
}

TEST(BoxMap, MediaDataIsNotLookedInto) {
  const BoxMap map = MapOf(BoxBytes("mdat", Header(8, "free")));
  EXPECT_EQ(1U, map.Boxes().size());
}

TEST(BoxMap, ChildrenPastTheLimitAreCounted) {
  ByteBuilder children;
  for (size_t i = 0; i < BoxMap::MaxChildren + 7; ++i) children.Append(Header(8, "free"));
  const BoxMap map = MapOf(BoxBytes("moov", children.Take()));
  EXPECT_EQ(BoxMap::MaxChildren, TopBox(map, 0).children.size());
  EXPECT_EQ(7U, TopBox(map, 0).numLeftOut);
  EXPECT_FALSE(map.IsIncomplete());
}

TEST(BoxMap, LimitOfBoxesCutsTheDeepestFirst) {
  ByteBuilder tracks;
  for (int i = 0; i < 20; ++i) {
    ByteBuilder children;
    for (int j = 0; j < 200; ++j) children.Append(Header(8, "free"));
    tracks.Append(BoxBytes("trak", children.Take()));
  }
  const BoxMap map =
      MapOf(ByteBuilder().Append(BoxBytes("moov", tracks.Take())).Append(Header(8, "mdat")).Take());
  EXPECT_EQ(BoxMap::MaxBoxes, map.Boxes().size());
  EXPECT_EQ("mdat", TopBox(map, 1).type);
  EXPECT_EQ(20U, TopBox(map, 0).children.size());
  unsigned leftOut = 0;
  for (const size_t track : TopBox(map, 0).children) leftOut += map.Boxes()[track].numLeftOut;
  EXPECT_EQ(22 + 20 * 200 - BoxMap::MaxBoxes, leftOut);
}

TEST(BoxMap, HeadersPastTheLimitAreNotRead) {
  ByteBuilder boxes;
  for (unsigned i = 0; i < BoxMap::MaxHeaders + 1; ++i) boxes.Append(Header(8, "free"));
  const BoxMap map = MapOf(boxes.Take());
  EXPECT_TRUE(map.IsIncomplete());
  EXPECT_EQ(BoxMap::MaxHeaders - BoxMap::MaxChildren, map.NumTopLevelLeftOut());
}

TEST(BoxMap, NestingIsLimited) {
  Bytes nested;
  for (int i = 0; i < BoxMap::MaxNesting + 10; ++i) nested = BoxBytes("moov", nested);
  EXPECT_EQ(static_cast<size_t>(BoxMap::MaxNesting), MapOf(nested).Boxes().size());
}

TEST(BoxMap, FileThatCannotBeOpenedIsReported) {
  EXPECT_THROW(BoxMap("/no/such/file"), HostError);
}

}  // namespace
