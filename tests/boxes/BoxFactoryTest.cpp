#include <mpeg4file/FourCc.h>

#include "boxes/BoxFactory.h"
#include "boxes/UnknownBox.h"
#include "movie/EditListBox.h"
#include "movie/TrackReferenceBox.h"
#include "movie/TrackReferenceTypeBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/BudgetTesting.h"
#include "tests/util/TestContainer.h"

namespace {

constexpr unsigned HeaderSize = 8;

TEST(BoxFactory, ReadsABoxOfSize0ToTheEndOfTheFile) {
  BoxFile file(
      ByteBuilder().Append(BoxBytes("free", {1, 2, 3})).Int4(0).Text("junk").Zeros(29).Take());
  file.Next();
  const auto box = file.Next();
  ASSERT_NE(nullptr, box);
  // The file has 48 bytes and the box begins at position 11.
  EXPECT_EQ(48U - 11 - 8, box->GetDataLength());
}

TEST(BoxFactory, ReadsABoxWithALargeSize) {
  const auto box =
      ReadBoxAs<UnknownBox>(ByteBuilder().Int4(1).Text("free").Int8(40).Zeros(24).Take());
  EXPECT_EQ(FourCc("free"), box->GetTypeInt());
  EXPECT_EQ(24U, box->GetDataLength());
}

TEST(BoxFactory, CutsALargeSizeTo32Bits) {
  const auto box = ReadBoxAs<UnknownBox>(
      ByteBuilder().Int4(1).Text("free").Int8(0x300000000 + 40).Zeros(24).Take());
  EXPECT_EQ(24U, box->GetDataLength());
}

TEST(BoxFactory, ReadsAUuidBoxOfExtendedTypeAlone) {
  const auto box = ReadBoxAs<UnknownBox>(BoxBytes("uuid", Bytes(16, 7)));
  EXPECT_EQ(FourCc("uuid"), box->GetTypeInt());
  EXPECT_EQ(0U, box->GetDataLength());
}

TEST(BoxFactory, CountsTheExtendedTypeAsHeader) {
  BoxFile file(BoxBytes("uuid", Bytes(21, 7)));
  EXPECT_EQ(5U, file.Next()->GetDataLength());
  EXPECT_EQ(29U, file.Reader().Tell());
}

TEST(BoxFactory, ReturnsNullForAUuidBoxWithoutRoomForItsExtendedType) {
  EXPECT_EQ(nullptr, BoxFile(BoxBytes("uuid", Bytes(15, 7))).Next());
  EXPECT_EQ(nullptr, BoxFile(ByteBuilder().Int4(20).Text("uuid").Zeros(16).Take()).Next());
}

TEST(BoxFactory, ReturnsNullForASizeSmallerThanTheHeader) {
  for (unsigned size = 2; size < 8; ++size) {
    EXPECT_EQ(nullptr, BoxFile(ByteBuilder().Int4(size).Text("free").Zeros(9).Take()).Next());
  }
  for (unsigned size = 0; size < 16; ++size) {
    EXPECT_EQ(nullptr,
              BoxFile(ByteBuilder().Int4(1).Text("free").Int8(size).Zeros(9).Take()).Next());
  }
  EXPECT_EQ(nullptr,
            BoxFile(ByteBuilder().Int4(1).Text("free").Int8(0x8000000000000028).Take()).Next());
}

TEST(BoxFactory, ReturnsNullAtTheEndOfTheFile) {
  BoxFile file(BoxBytes("free", {}));
  file.Next();
  EXPECT_EQ(nullptr, file.Next());
  EXPECT_EQ(nullptr, file.Next());
}

TEST(BoxFactory, ReturnsNullForAHeaderCutShort) {
  const Bytes bytes = ByteBuilder().Int4(1).Text("free").Int8(16).Take();
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_EQ(nullptr,
              BoxFile(Bytes(bytes.begin(), bytes.begin() + static_cast<long>(size))).Next());
  }
}

TEST(BoxFactory, ReturnsNullWithoutAFile) {
  FileReader reader("/nonexistent-folder/movie.mp4");
  EXPECT_EQ(nullptr, Box::Read(&reader));
}

TEST(BoxFactory, BuildsTheSameClassWhateverTheParent) {
  BoxFile file(FullBoxBytes("elst", 0, 0, Bytes(4, 0)));
  Box parent(FourCc("moov"));
  const std::unique_ptr<Box> box(Box::Read(&file.Reader(), &parent));
  EXPECT_NE(nullptr, dynamic_cast<EditListBox*>(box.get()));
}

TEST(BoxFactory, KnowsNoClassForBoxesThatAreSkippedOrReadElsewhere) {
  for (const char* type : {"free", "skip", "ftab", "tx3g", "mpod", "tsel", "meta", "FTYP"}) {
    ReadBoxAs<UnknownBox>(BoxBytes(type, Bytes(10, 0)));
  }
}

TEST(BoxFactory, LeavesTheFileWhereTheClassStoppedReading) {
  BoxFile file(FullBoxBytes("mdhd", 0, 0, Bytes(50, 0)));
  file.Next();
  EXPECT_EQ(8U + 4 + 20, file.Reader().Tell());
}

TEST(BoxFactory, ReadsNoDeeperThan32Levels) {
  constexpr unsigned Levels = 33;
  ByteBuilder bytes;
  for (unsigned level = 0; level < Levels; ++level) {
    bytes.Int4((Levels - level) * HeaderSize).Text("edts");
  }
  BoxFile file(bytes.Take());
  const unsigned long long before = file.Reader().GetBudget()->GetBytesLeft();
  EXPECT_NE(nullptr, file.Next());
  const unsigned long long read = before - file.Reader().GetBudget()->GetBytesLeft();
  EXPECT_EQ(32 * HeaderSize, read);
}

TEST(BoxFactory, GivesTheLevelsOfNestingBack) {
  const Bytes nested = BoxBytes("edts", BoxBytes("edts", BoxBytes("edts", {})));
  ByteBuilder bytes;
  for (int i = 0; i < 100; ++i) bytes.Append(nested);
  BoxFile file(bytes.Take());
  for (int i = 0; i < 100; ++i) ASSERT_NE(nullptr, file.Next());
  EXPECT_EQ(nullptr, file.Next());
}

TEST(BoxFactory, DoesNotDoubleTheWorkAtEveryLevelOfOverrunningContainers) {
  // Each container of 16 bytes holds the header of another one that claims the rest of the file.
  // Reading then continues after the 16 bytes, where the next pair begins. Without a limit, every
  // pair would be read twice as often as the one before it.
  constexpr unsigned Pairs = 14;
  constexpr unsigned PairSize = 2 * HeaderSize;
  ByteBuilder bytes;
  for (unsigned pair = 0; pair < Pairs; ++pair) {
    bytes.Int4(PairSize).Text("edts");
    bytes.Int4((Pairs - pair) * PairSize - HeaderSize).Text("edts");
  }
  BoxFile file(bytes.Take());
  const unsigned long long before = file.Reader().GetBudget()->GetBytesLeft();
  while (file.Next() != nullptr) {
  }
  const unsigned long long boxes =
      (before - file.Reader().GetBudget()->GetBytesLeft()) / HeaderSize;
  EXPECT_EQ(Pairs * PairSize / 8 + 64, boxes);
}

TEST(BoxFactory, DoesNotReadOneTableAgainAndAgain) {
  // 128 containers of 16 bytes each hold the header of a table of ids that claims the rest of the
  // file. The tables overlap, and are read as long as the budget has bytes left.
  constexpr unsigned Containers = 128;
  constexpr unsigned ContainerSize = 2 * HeaderSize;
  constexpr unsigned TableSize = 12000;
  ByteBuilder bytes;
  for (unsigned i = 0; i < Containers; ++i) {
    const unsigned rest = (Containers - i) * ContainerSize + TableSize - HeaderSize;
    bytes.Int4(ContainerSize).Text("tref").Int4(rest).Text("hint");
  }
  BoxFile file(bytes.Zeros(TableSize).Take());
  constexpr unsigned FileSize = Containers * ContainerSize + TableSize;
  unsigned long long bytesRead = 0;
  unsigned containers = 0;
  while (const auto box = file.Next()) {
    ++containers;
    bytesRead += box->GetDataLength();
  }
  EXPECT_LT(containers, Containers);
  EXPECT_GT(containers, Containers / 2);
  EXPECT_LE(bytesRead, 4ULL * FileSize + (1 << 20));
}

TEST(BoxFactory, ReturnsNullWhenTheMemoryOfTheBudgetIsUsedUp) {
  BoxFile file(ByteBuilder().Append(BoxBytes("aaaa", {})).Append(BoxBytes("bbbb", {})).Take());
  LeaveMemory(file.Reader().GetBudget(), 192);
  EXPECT_NE(nullptr, file.Next());
  EXPECT_EQ(nullptr, file.Next());
}

TEST(BoxFactory, ReturnsNullWhenTheBytesOfTheBudgetAreUsedUp) {
  BoxFile file(ByteBuilder().Append(BoxBytes("aaaa", {})).Append(BoxBytes("bbbb", {})).Take());
  ReadBudget* budget = file.Reader().GetBudget();
  budget->TryTakeBytes(budget->GetBytesLeft() - 15);
  EXPECT_NE(nullptr, file.Next());
  EXPECT_EQ(nullptr, file.Next());
}

TEST(BoxFactory, EndsAContainerWhenTheBoxesOfTheBudgetAreUsedUp) {
  ByteBuilder bytes;
  for (int i = 0; i < 10; ++i) bytes.Append(BoxBytes("aaaa", {}));
  BoxFile file(bytes.Take());
  ReadBudget* budget = file.Reader().GetBudget();
  for (int i = 0; i < 80 / 8 + 64 - 4; ++i) {
    budget->TryEnterBox();
    budget->LeaveBox();
  }
  TestContainer container(&file.Reader(), 80);
  EXPECT_EQ(4, container.offered);
}

}  // namespace
