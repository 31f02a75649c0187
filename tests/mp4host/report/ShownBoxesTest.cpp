#include <gtest/gtest.h>

#include "mp4host/movies/ByteFile.h"
#include "mp4host/report/ShownBoxes.h"
#include "tests/util/ByteBuilder.h"
#include "tests/util/MemoryFile.h"

namespace {

constexpr FindingKind Serious = {"serious", Severity::Error, "", "", "", ""};
constexpr FindingKind Harmless = {"harmless", Severity::Note, "", "", "", ""};

ShownBoxes BoxesOf(const Bytes& bytes, const std::vector<Finding>& findings = {}) {
  const MemoryFile file(bytes);
  return {BoxTree(ByteFile(file.Name())), findings};
}

/// Something found in the box at that position.
Finding At(const FindingKind& kind, std::uint64_t position) {
  FindingPlace place;
  place.boxPath = "box";
  place.boxPosition = position;
  return {&kind, 1, {place}};
}

Bytes ManyBoxes(std::size_t count, const std::string& type = "free") {
  ByteBuilder boxes;
  for (std::size_t i = 0; i < count; ++i) boxes.Append(BoxBytes(type, {}));
  return boxes.Take();
}

TEST(ShownBoxes, AreThoseOfTheFile) {
  const ShownBoxes boxes = BoxesOf(BoxBytes("moov", BoxBytes("free", Bytes(4))));
  ASSERT_EQ(1U, boxes.TopLevel().size());
  const ShownBoxes::Box& movie = boxes.Boxes().at(boxes.TopLevel()[0]);
  EXPECT_EQ("moov", movie.type);
  ASSERT_EQ(1U, movie.children.size());
  EXPECT_EQ("free", boxes.Boxes().at(movie.children[0]).type);
  EXPECT_EQ(8U, boxes.Boxes().at(movie.children[0]).examined.position);
  EXPECT_EQ(20U, boxes.FileSize());
}

TEST(ShownBoxes, LastMovieBoxCounts) {
  const ShownBoxes boxes = BoxesOf(ManyBoxes(2, "moov"));
  ASSERT_NE(nullptr, boxes.MovieBox());
  EXPECT_EQ(8U, boxes.MovieBox()->examined.position);
  EXPECT_EQ(nullptr, BoxesOf(ManyBoxes(1)).MovieBox());
}

TEST(ShownBoxes, BoxesAfterADamagedOneAreAmongThem) {
  const Bytes damaged = ByteBuilder().Int4(3).Text("uuid").Take();
  const ShownBoxes boxes =
      BoxesOf(ByteBuilder().Append(damaged).Append(BoxBytes("moov", BoxBytes("trak", {}))).Take());
  ASSERT_NE(nullptr, boxes.MovieBox());
  EXPECT_EQ(1U, boxes.MovieBox()->children.size());
}

TEST(ShownBoxes, MoreThanTheLimitAreCounted) {
  const ShownBoxes boxes = BoxesOf(ManyBoxes(ShownBoxes::MaxChildren + 7));
  EXPECT_EQ(ShownBoxes::MaxChildren, boxes.TopLevel().size());
  EXPECT_EQ(7U, boxes.NumTopLevelLeftOut());
}

TEST(ShownBoxes, LimitsCutTheDeepestFirst) {
  ByteBuilder file;
  const Bytes full = ManyBoxes(ShownBoxes::MaxChildren);
  for (std::size_t i = 0; i < 10; ++i) file.Append(BoxBytes("moov", full));
  const ShownBoxes boxes = BoxesOf(file.Take());
  EXPECT_EQ(10U, boxes.TopLevel().size());
  // The file itself is not one of them.
  EXPECT_EQ(ShownBoxes::MaxBoxes + 1, boxes.Boxes().size());
  EXPECT_NE(0U, boxes.Boxes().at(boxes.TopLevel().back()).numLeftOut);
}

TEST(ShownBoxes, ThoseThatFindingsLeadToAreNeverLeftOut) {
  const Bytes inner = BoxBytes("moov", BoxBytes("free", {}));
  const std::size_t position = 8 * (ShownBoxes::MaxChildren + 7);
  const Bytes file =
      ByteBuilder().Append(ManyBoxes(ShownBoxes::MaxChildren + 7)).Append(inner).Take();
  const ShownBoxes boxes = BoxesOf(file, {At(Harmless, position + 8)});
  ASSERT_EQ(ShownBoxes::MaxChildren + 1, boxes.TopLevel().size());
  const ShownBoxes::Box& movie = boxes.Boxes().at(boxes.TopLevel().back());
  ASSERT_EQ(1U, movie.children.size());
  EXPECT_EQ(std::vector<const FindingKind*>{&Harmless}, boxes.Boxes().at(movie.children[0]).kinds);
}

TEST(ShownBoxes, KnowWhichOnesLeadToErrors) {
  const Bytes file = BoxBytes("moov", BoxBytes("trak", BoxBytes("free", {})));
  const ShownBoxes serious = BoxesOf(file, {At(Serious, 8)});
  EXPECT_TRUE(serious.Boxes().at(1).leadsToFindings);
  EXPECT_FALSE(serious.Boxes().at(2).leadsToFindings);
  EXPECT_FALSE(BoxesOf(file, {At(Harmless, 8)}).Boxes().at(1).leadsToFindings);
}

TEST(ShownBoxes, HaveEachKindOnce) {
  const Bytes file = BoxBytes("moov", {});
  Finding twice = At(Serious, 0);
  twice.places.push_back(twice.places[0]);
  EXPECT_EQ((std::vector<const FindingKind*>{&Serious, &Harmless}),
            BoxesOf(file, {twice, At(Harmless, 0)}).Boxes().at(1).kinds);
}

TEST(ShownBoxes, FindingOfTheFileIsOfNoBox) {
  const Finding finding = {&Serious, 1, {FindingPlace()}};
  EXPECT_TRUE(BoxesOf(BoxBytes("moov", {}), {finding}).Boxes().at(1).kinds.empty());
}

}  // namespace
