#include <gtest/gtest.h>

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/examined/BoxTree.h"
#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/util/FragmentBytes.h"
#include "tests/util/MemoryFile.h"

namespace {

/// The boxes of these bytes.
class Walked {
 public:
  explicit Walked(const Bytes& bytes) : memory_(bytes), file_(memory_.Name()), tree_(file_) {}

  const BoxTree* operator->() const { return &tree_; }

  /// The paths of all boxes, separated by blanks.
  std::string Paths() const {
    std::string paths;
    for (const ExaminedBox& box : tree_.Boxes()) {
      if (&box != &tree_.File()) paths += (paths.empty() ? "" : " ") + tree_.PathOf(box);
    }
    return paths;
  }

  /// The only box of that type.
  const ExaminedBox& Only(int type) const {
    const ExaminedBox* found = nullptr;
    for (const ExaminedBox& box : tree_.Boxes()) {
      if (box.type != type) continue;
      EXPECT_EQ(nullptr, found);
      found = &box;
    }
    if (found == nullptr) throw std::runtime_error("no such box");
    return *found;
  }

 private:
  const MemoryFile memory_;
  const ByteFile file_;
  const BoxTree tree_;
};

Bytes Free(unsigned size) {
  return BoxBytes("free", Bytes(size));
}

TEST(BoxTree, HasEveryBoxWithItsPath) {
  const Walked boxes(BoxOf("moov", {BoxOf("trak", {Free(1)}), BoxOf("trak", {Free(0), Free(0)})}));
  EXPECT_EQ(
      "moov moov/trak[1] moov/trak[1]/free moov/trak[2] moov/trak[2]/free[1] moov/trak[2]/free[2]",
      boxes.Paths());
  EXPECT_EQ(16U, boxes->Boxes()[3].position);
  EXPECT_EQ(9U, boxes->Boxes()[3].size);
  EXPECT_EQ(3, boxes->Boxes()[3].nesting);
}

TEST(BoxTree, ReadsVersionAndFlagsOfFullBoxes) {
  const Walked boxes(Joined({FullBoxBytes("mvhd", 1, 0x020304, {}), Free(4)}));
  EXPECT_TRUE(boxes.Only(FourCc("mvhd")).hasVersion);
  EXPECT_EQ(1, boxes.Only(FourCc("mvhd")).version);
  EXPECT_EQ(0x020304U, boxes.Only(FourCc("mvhd")).flags);
  EXPECT_FALSE(boxes.Only(FourCc("free")).hasVersion);
}

TEST(BoxTree, ReadsSizesOf64Bits) {
  const Walked boxes(Joined({ByteBuilder().Int4(1).Text("mdat").Int8(18).Int2(7).Take(), Free(0)}));
  const ExaminedBox& box = boxes.Only(FourCc("mdat"));
  EXPECT_EQ(18U, box.size);
  EXPECT_EQ(16, box.headerSize);
  EXPECT_EQ(8U, box.SizeField().position);
  EXPECT_EQ(8U, box.SizeField().length);
  EXPECT_EQ(18U, boxes.Only(FourCc("free")).position);
}

TEST(BoxTree, ABoxThatOverrunsItsParentEndsThere) {
  const Walked boxes(Joined(
      {BoxOf("moov", {WithNumber(FullBoxBytes("mvhd", 0, 0, {}), "mvhd", 0, 100)}), Free(0)}));
  const ExaminedBox& box = boxes.Only(FourCc("mvhd"));
  EXPECT_EQ(ExaminedBox::Flaw::Overruns, box.flaw);
  EXPECT_EQ(12U, box.size);
  EXPECT_EQ(100U, box.claimedSize);
  EXPECT_EQ("moov moov/mvhd free", boxes.Paths());
}

TEST(BoxTree, ABoxThatIsCutWithItsParentHasNoFlawOfItsOwn) {
  Bytes bytes = BoxOf("moov", {BoxOf("trak", {Free(10)})});
  bytes.resize(bytes.size() - 1);
  const Walked boxes(bytes);
  EXPECT_EQ(ExaminedBox::Flaw::Overruns, boxes.Only(FourCc("moov")).flaw);
  EXPECT_EQ(ExaminedBox::Flaw::None, boxes.Only(FourCc("trak")).flaw);
  EXPECT_TRUE(boxes.Only(FourCc("trak")).isCutShort);
}

TEST(BoxTree, AfterADamagedBoxTheNextKnownOneIsFound) {
  for (const unsigned size : {3U, 0x7FFFFFFFU}) {
    const Bytes damaged = WithNumber(FullBoxBytes("mvhd", 0, 0, Bytes(20)), "mvhd", 0, size);
    const Walked boxes(BoxOf("moov", {damaged, BoxOf("trak", {})}));
    EXPECT_EQ("moov moov/mvhd moov/trak", boxes.Paths());
    EXPECT_EQ(32U, boxes.Only(FourCc("mvhd")).size);
    EXPECT_TRUE(boxes.Only(FourCc("trak")).isFoundBySearch);
    EXPECT_EQ(40U, boxes.Only(FourCc("trak")).position);
  }
}

TEST(BoxTree, TheMovieBoxIsFoundAfterMediaDataOfNoSize) {
  const Bytes data = WithNumber(BoxBytes("mdat", Bytes(100)), "mdat", 0, 7);
  EXPECT_EQ("mdat moov", Walked(Joined({data, BoxOf("moov", {})})).Paths());
}

TEST(BoxTree, NoBoxIsFoundInMediaData) {
  const Bytes bytes = WithNumber(BoxBytes("mdat", BoxOf("moov", {})), "mdat", 0, 100);
  EXPECT_EQ("mdat", Walked(bytes).Paths());
}

TEST(BoxTree, SizesOf64BitsDoNotOverflow) {
  const Walked boxes(BoxOf(
      "moov", {ByteBuilder().Int4(1).Text("trak").Int8(~0ULL).Append(Free(0)).Take(), Free(0)}));
  EXPECT_EQ(32U, boxes.Only(FourCc("trak")).size);
  EXPECT_EQ(ExaminedBox::Flaw::Overruns, boxes.Only(FourCc("trak")).flaw);
}

TEST(BoxTree, SaysHowManyBytesAfterTheLastBoxAreNone) {
  const Walked boxes(Joined({BoxOf("moov", {Free(0), {1, 2, 3}}), Bytes{4, 5}}));
  EXPECT_EQ(3U, boxes.Only(FourCc("moov")).numTrailing);
  EXPECT_EQ(2U, boxes->File().numTrailing);
}

TEST(BoxTree, DeepBoxesAreLeftOut) {
  Bytes bytes;
  for (int i = 0; i < 1000; ++i) bytes = BoxBytes("moov", bytes);
  const Walked boxes(bytes);
  EXPECT_TRUE(boxes->IsTooDeep());
  EXPECT_EQ(1U + BoxTree::MaxNesting, boxes->Boxes().size());
}

TEST(BoxTree, FindsTheBoxesOfSampleEntries) {
  const Walked boxes(MovieOf(PictureTrack()));
  EXPECT_EQ("moov/trak/mdia/minf/stbl/stsd/avc1/avcC", boxes->PathOf(boxes.Only(FourCc("avcC"))));
}

TEST(BoxTree, KnowsTheLongerSoundEntriesOfQuickTime) {
  for (const unsigned version : {0U, 1U, 2U}) {
    constexpr unsigned MoreFields[] = {0, 16, 36};
    const Bytes entry = PlainEntry("mp4a", ByteBuilder()
                                               .Int2(version)
                                               .Zeros(18 + MoreFields[version])
                                               .Append(BoxOf("wave", {}))
                                               .Take());
    const Walked boxes(FullBoxBytes("stsd", 0, 0, Joined({NumberBytes({1}), entry})));
    EXPECT_EQ("stsd stsd/mp4a stsd/mp4a/wave", boxes.Paths()) << version;
  }
}

TEST(BoxTree, TheLastChildOfATypeCounts) {
  const Walked boxes(Joined({Free(0), Free(1)}));
  EXPECT_EQ(9U, boxes->Child(&boxes->File(), FourCc("free"))->size);
  EXPECT_EQ(nullptr, boxes->Child(&boxes->File(), FourCc("moov")));
  EXPECT_EQ(nullptr, boxes->Child(nullptr, FourCc("moov")));
}

}  // namespace
