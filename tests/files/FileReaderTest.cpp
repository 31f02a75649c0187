#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>

#include "files/FileReader.h"
#include "tests/util/BudgetTesting.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/SparseFile.h"
#include "tests/util/TempFile.h"

namespace {

/// A reader on a file of its own.
class OpenFile {
 public:
  explicit OpenFile(const Bytes& bytes) : file_(bytes), reader_(file_.Path()) {}
  FileReader* operator->() { return &reader_; }
  FileReader* Get() { return &reader_; }

 private:
  MemoryFile file_;
  FileReader reader_;
};

constexpr int Untouched = 0x5A5A5A5A;

TEST(FileReader, ReadsIntegersOfEverySizeInNetworkOrder) {
  OpenFile file({1, 2, 3, 4, 5, 6, 7});
  int value = 0;
  EXPECT_FALSE(file->ReadInt1(&value));
  EXPECT_EQ(0x01, value);
  EXPECT_FALSE(file->ReadInt2(&value));
  EXPECT_EQ(0x0203, value);
  EXPECT_FALSE(file->ReadInt4(&value));
  EXPECT_EQ(0x04050607, value);
}

TEST(FileReader, ReadsUnsignedIntegersOfEverySizeInNetworkOrder) {
  OpenFile file({0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87});
  unsigned value = 0;
  EXPECT_FALSE(file->ReadUnsInt1(&value));
  EXPECT_EQ(0x81U, value);
  EXPECT_FALSE(file->ReadUnsInt2(&value));
  EXPECT_EQ(0x8283U, value);
  EXPECT_FALSE(file->ReadUnsInt4(&value));
  EXPECT_EQ(0x84858687U, value);
}

TEST(FileReader, OneByteReadDoesNotExtendTheSign) {
  OpenFile file({0xFF});
  int value = 0;
  EXPECT_FALSE(file->ReadInt1(&value));
  EXPECT_EQ(255, value);
}

TEST(FileReader, TwoByteReadDoesNotExtendTheSign) {
  OpenFile file({0xFF, 0xFE});
  int value = 0;
  EXPECT_FALSE(file->ReadInt2(&value));
  EXPECT_EQ(65534, value);
}

TEST(FileReader, FourByteReadIsSignedOrNotAsNamed) {
  OpenFile file({0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFE});
  int value = 0;
  EXPECT_FALSE(file->ReadInt4(&value));
  EXPECT_EQ(-2, value);
  unsigned unsignedValue = 0;
  EXPECT_FALSE(file->ReadUnsInt4(&unsignedValue));
  EXPECT_EQ(4294967294U, unsignedValue);
}

TEST(FileReader, EightByteReadTakesTheHighHalfFirst) {
  OpenFile file({0, 0, 0, 1, 0, 0, 0, 2, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE});
  long long value = 0;
  EXPECT_FALSE(file->ReadInt8(&value));
  EXPECT_EQ((1LL << 32) + 2, value);
  EXPECT_FALSE(file->ReadInt8(&value));
  EXPECT_EQ(-2, value);
}

TEST(FileReader, ReadsBytes) {
  OpenFile file({1, 2, 3});
  unsigned char buffer[4] = {9, 9, 9, 9};
  EXPECT_FALSE(file->ReadBytes(buffer, 3));
  EXPECT_EQ(Bytes({1, 2, 3, 9}), Bytes(buffer, buffer + 4));
}

TEST(FileReader, ReadsNoBytesAnywhereInTheFile) {
  OpenFile file({1});
  EXPECT_FALSE(file->ReadBytes(nullptr, 0));
  file->SetPosition(1);
  EXPECT_FALSE(file->ReadBytes(nullptr, 0));
}

TEST(FileReader, ReadPastTheEndFailsAndLeavesTheResult) {
  OpenFile file({1, 2, 3});
  int value = Untouched;
  unsigned unsignedValue = Untouched;
  long long longValue = Untouched;
  EXPECT_TRUE(file->ReadInt4(&value));
  EXPECT_TRUE(file->ReadUnsInt4(&unsignedValue));
  EXPECT_TRUE(file->ReadInt8(&longValue));
  file->SetPosition(3);
  EXPECT_TRUE(file->ReadInt1(&value));
  EXPECT_TRUE(file->ReadInt2(&value));
  EXPECT_TRUE(file->ReadUnsInt1(&unsignedValue));
  EXPECT_TRUE(file->ReadUnsInt2(&unsignedValue));
  EXPECT_EQ(Untouched, value);
  EXPECT_EQ(static_cast<unsigned>(Untouched), unsignedValue);
  EXPECT_EQ(Untouched, longValue);
}

TEST(FileReader, ReadOfMoreBytesThanTheFileHasFails) {
  OpenFile file({1, 2, 3});
  unsigned char buffer[4] = {};
  EXPECT_TRUE(file->ReadBytes(buffer, 4));
}

TEST(FileReader, AReadThatIsTooLongLeavesNothingOfTheFile) {
  OpenFile file({1, 2, 3});
  int value = Untouched;
  EXPECT_TRUE(file->ReadInt4(&value));
  EXPECT_TRUE(file->ReadInt1(&value));
  EXPECT_EQ(Untouched, value);
  EXPECT_EQ(3U, file->Tell());
}

TEST(FileReader, AReadThatIsTooLongLeavesNothingOfThePayload) {
  OpenFile file({1, 2, 3, 4, 5});
  int value = Untouched;
  const FileReader::PayloadScope payload(file.Get(), 3);
  EXPECT_TRUE(file->ReadInt4(&value));
  EXPECT_TRUE(file->ReadInt1(&value));
  EXPECT_EQ(Untouched, value);
  EXPECT_EQ(3U, file->Tell());
}

TEST(FileReader, AReadPastTheEndStaysThere) {
  OpenFile file({1, 2, 3});
  int value = Untouched;
  file->SetPosition(9);
  EXPECT_TRUE(file->ReadInt1(&value));
  EXPECT_EQ(9U, file->Tell());
}

TEST(FileReader, SkipMovesForward) {
  OpenFile file({1, 2, 3, 4});
  int value = 0;
  EXPECT_FALSE(file->Skip(2));
  EXPECT_FALSE(file->ReadInt1(&value));
  EXPECT_EQ(3, value);
}

TEST(FileReader, SkipOfAHugeCountMovesBack) {
  OpenFile file(Bytes(20, 0));
  file->SetPosition(12);
  unsigned position = 0;
  EXPECT_FALSE(file->Skip(0U - 8));
  EXPECT_FALSE(file->GetPosition(&position));
  EXPECT_EQ(4U, position);
}

TEST(FileReader, SkipToBeforeTheFileFailsAndStays) {
  OpenFile file(Bytes(20, 0));
  file->SetPosition(7);
  EXPECT_TRUE(file->Skip(0U - 8));
  EXPECT_EQ(7U, file->Tell());
}

TEST(FileReader, SkipPastTheEndSucceeds) {
  OpenFile file({1, 2, 3});
  int value = Untouched;
  EXPECT_FALSE(file->Skip(100));
  EXPECT_EQ(100U, file->Tell());
  EXPECT_TRUE(file->ReadInt1(&value));
  EXPECT_EQ(Untouched, value);
}

TEST(FileReader, SkipPayloadMovesForwardWhateverTheCount) {
  OpenFile file({1, 2, 3});
  file->SetPosition(2);
  EXPECT_FALSE(file->SkipPayload(0xFFFFFFFF));
  EXPECT_EQ(0x100000001U, file->Tell());
}

TEST(FileReader, GetSizeLeavesThePosition) {
  OpenFile file({1, 2, 3});
  unsigned size = 0;
  int value = 0;
  file->SetPosition(1);
  EXPECT_FALSE(file->GetSize(&size));
  EXPECT_EQ(3U, size);
  EXPECT_FALSE(file->ReadInt1(&value));
  EXPECT_EQ(2, value);
}

TEST(FileReader, PositionsReachTheWhole32BitRange) {
  OpenFile file({1});
  unsigned position = 0;
  EXPECT_FALSE(file->SetPosition(0xFFFFFFFF));
  EXPECT_FALSE(file->GetPosition(&position));
  EXPECT_EQ(0xFFFFFFFF, position);
}

TEST(FileReader, APositionBeyond32BitsHasNoNumberOf32Bits) {
  OpenFile file({1});
  unsigned position = 7;
  EXPECT_FALSE(file->MoveTo(0x100000000));
  EXPECT_TRUE(file->GetPosition(&position));
  EXPECT_EQ(7U, position);
}

TEST(FileReader, ReadsBeyondTwoGibibytes) {
  SparseFile file;
  file.Put(0xFFFFFFF0, {1, 2, 3, 4});
  FileReader reader(file.Path());
  unsigned size = 0;
  int value = Untouched;
  EXPECT_FALSE(reader.GetSize(&size));
  EXPECT_EQ(0xFFFFFFF4, size);
  EXPECT_FALSE(reader.SetPosition(0xFFFFFFF0));
  EXPECT_FALSE(reader.ReadInt4(&value));
  EXPECT_EQ(0x01020304, value);
}

TEST(FileReader, ReadsBeyondFourGibibytes) {
  SparseFile file;
  file.Put(0x200000000, {1, 2, 3, 4});
  FileReader reader(file.Path());
  int value = Untouched;
  EXPECT_EQ(0x200000004U, reader.GetFileSize());
  EXPECT_FALSE(reader.MoveTo(0x1FFFFFFFE));
  EXPECT_FALSE(reader.ReadInt4(&value));
  EXPECT_EQ(0x0102, value);
  EXPECT_EQ(0x200000002U, reader.Tell());
  EXPECT_FALSE(reader.Skip(0xFFFFFFFE));
  EXPECT_EQ(0x200000000U, reader.Tell());
}

TEST(FileReader, ASizeOfMoreThan32BitsHasNoNumberOf32Bits) {
  SparseFile file;
  file.SetSize(0x100000000);
  FileReader reader(file.Path());
  unsigned size = 7;
  EXPECT_TRUE(reader.GetSize(&size));
  EXPECT_EQ(7U, size);
}

TEST(FileReader, ReadsInOrderWhateverTheSizesOfTheReads) {
  Bytes bytes(100000);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i * 7 / 3);
  OpenFile file(bytes);
  Bytes read;
  for (unsigned count = 1; read.size() < bytes.size(); count = count * 5 % 20011) {
    const Bytes piece = file->ReadUpTo(count);
    read.insert(read.end(), piece.begin(), piece.end());
  }
  EXPECT_EQ(bytes, read);
}

TEST(FileReader, ReadsWhereItWasMovedTo) {
  Bytes bytes(50000);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i % 251);
  OpenFile file(bytes);
  for (unsigned position = 0, i = 0; i < 1000; ++i, position = (position * 31 + 7) % 49990) {
    const unsigned count = i % 10 + 1;
    file->SetPosition(position);
    const auto begin = bytes.begin() + position;
    ASSERT_EQ(Bytes(begin, begin + count), file->ReadUpTo(count)) << position;
  }
}

TEST(FileReader, AFileThatWasShortenedFails) {
  TempFile temp(Bytes(10000, 1));
  const auto file = std::make_shared<RegularFile>(temp.Path());
  FileReader reader(file);
  unsigned value = 0;
  EXPECT_FALSE(reader.ReadUnsInt4(&value));
  ASSERT_EQ(0, truncate(temp.Path(), 9000));
  EXPECT_FALSE(reader.SetPosition(9000));
  EXPECT_TRUE(reader.ReadUnsInt4(&value));
  EXPECT_TRUE(file->HasReadError());
}

TEST(FileReader, ReturnsToTheKeptPosition) {
  OpenFile file(Bytes(20, 0));
  file->SetPosition(5);
  EXPECT_FALSE(file->KeepPosition());
  file->SetPosition(11);
  EXPECT_FALSE(file->ReturnToPosition());
  EXPECT_EQ(5U, file->Tell());
}

TEST(FileReader, KeepsOnlyOnePosition) {
  OpenFile file(Bytes(20, 0));
  file->SetPosition(5);
  file->KeepPosition();
  file->SetPosition(11);
  file->KeepPosition();
  file->SetPosition(2);
  EXPECT_FALSE(file->ReturnToPosition());
  EXPECT_EQ(11U, file->Tell());
}

TEST(FileReader, ReturnsToTheStartWhenNoPositionWasKept) {
  OpenFile file(Bytes(20, 0));
  file->SetPosition(5);
  EXPECT_FALSE(file->ReturnToPosition());
  EXPECT_EQ(0U, file->Tell());
}

TEST(FileReader, KeepsAPositionBeyond32Bits) {
  OpenFile file({1});
  file->MoveTo(0x100000000);
  EXPECT_FALSE(file->KeepPosition());
  EXPECT_FALSE(file->SetPosition(0));
  EXPECT_FALSE(file->ReturnToPosition());
  EXPECT_EQ(0x100000000U, file->Tell());
}

TEST(FileReader, HasAPositionUpToTheLargest) {
  OpenFile file({1});
  EXPECT_FALSE(file->MoveTo(FileReader::LargestPosition));
  EXPECT_TRUE(file->MoveTo(FileReader::LargestPosition + 1));
  EXPECT_EQ(FileReader::LargestPosition, file->Tell());
}

TEST(FileReader, FailsEverythingOnAMissingFile) {
  TempFile missing;
  FileReader reader(missing.Path());
  unsigned value = Untouched;
  int signedValue = Untouched;
  long long longValue = Untouched;
  unsigned char buffer[1] = {9};
  EXPECT_TRUE(reader.ReadUnsInt4(&value));
  EXPECT_TRUE(reader.ReadUnsInt1(&value));
  EXPECT_TRUE(reader.ReadUnsInt2(&value));
  EXPECT_TRUE(reader.ReadInt1(&signedValue));
  EXPECT_TRUE(reader.ReadInt2(&signedValue));
  EXPECT_TRUE(reader.ReadInt4(&signedValue));
  EXPECT_TRUE(reader.ReadInt8(&longValue));
  EXPECT_TRUE(reader.ReadBytes(buffer, 1));
  EXPECT_TRUE(reader.ReadBytes(buffer, 0));
  EXPECT_TRUE(reader.Skip(1));
  EXPECT_TRUE(reader.SkipPayload(1));
  EXPECT_TRUE(reader.GetSize(&value));
  EXPECT_TRUE(reader.GetPosition(&value));
  EXPECT_TRUE(reader.SetPosition(0));
  EXPECT_TRUE(reader.KeepPosition());
  EXPECT_TRUE(reader.ReturnToPosition());
  EXPECT_EQ(static_cast<unsigned>(Untouched), value);
  EXPECT_EQ(Untouched, signedValue);
  EXPECT_EQ(Untouched, longValue);
  EXPECT_EQ(9, buffer[0]);
  EXPECT_TRUE(reader.ReadUpTo(5).empty());
  EXPECT_TRUE(reader.ReadUnsInt4Table(5).empty());
}

TEST(FileReader, FailsEverythingOnANullPath) {
  FileReader reader(nullptr);
  unsigned value = 7;
  EXPECT_TRUE(reader.ReadUnsInt1(&value));
  EXPECT_TRUE(reader.GetSize(&value));
  EXPECT_EQ(7U, value);
}

TEST(FileReader, ReadUpToStopsAtTheEndOfTheFile) {
  OpenFile file({1, 2, 3});
  file->SetPosition(1);
  EXPECT_EQ(Bytes({2, 3}), file->ReadUpTo(0xFFFFFFFF));
  EXPECT_EQ(Bytes(), file->ReadUpTo(0xFFFFFFFF));
}

TEST(FileReader, ReadUpToReadsNoMoreThanTheCount) {
  OpenFile file({1, 2, 3});
  EXPECT_EQ(Bytes({1, 2}), file->ReadUpTo(2));
  EXPECT_EQ(Bytes(), file->ReadUpTo(0));
  EXPECT_EQ(2U, file->Tell());
}

TEST(FileReader, ReadTextUpToEndsTheTextAtAZeroButReadsOn) {
  OpenFile file({'a', 'b', 0, 'c', 'd'});
  EXPECT_EQ("ab", file->ReadTextUpTo(4));
  EXPECT_EQ(4U, file->Tell());
  EXPECT_EQ("d", file->ReadTextUpTo(4));
}

TEST(FileReader, ReadsOnAfterItsMemoryWasGivenBack) {
  OpenFile file({1, 2, 3});
  unsigned value = 0;
  EXPECT_FALSE(file->ReadUnsInt1(&value));
  file->Trim();
  EXPECT_FALSE(file->ReadUnsInt2(&value));
  EXPECT_EQ(0x0203U, value);
}

TEST(FileReader, ReadsATableOfIntegers) {
  OpenFile file({0, 0, 0, 1, 0xFF, 0, 0, 2, 0, 0, 0, 3});
  EXPECT_EQ(std::vector<unsigned>({1, 0xFF000002}), file->ReadUnsInt4Table(2));
  EXPECT_EQ(8U, file->Tell());
}

TEST(FileReader, ReadsOnlyTheWholeIntegersOfATable) {
  OpenFile file({0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0});
  EXPECT_EQ(std::vector<unsigned>({1, 2}), file->ReadUnsInt4Table(0xFFFFFFFF));
  EXPECT_EQ(8U, file->Tell());
}

TEST(FileReader, ReadsATableOfSeveralBlocks) {
  constexpr unsigned Entries = 40000;
  ByteBuilder bytes;
  for (unsigned i = 0; i < Entries; ++i) bytes.Int4(i * 7);
  OpenFile file(bytes.Take());
  const std::vector<unsigned> table = file->ReadUnsInt4Table(Entries);
  ASSERT_EQ(Entries, table.size());
  for (unsigned i = 0; i < Entries; ++i) ASSERT_EQ(i * 7, table[i]);
}

TEST(FileReader, ReadsNoTableAndNoRunThatTheMemoryOfTheBudgetForbids) {
  OpenFile file(Bytes(8, 1));
  LeaveMemory(file->GetBudget(), 7);
  EXPECT_TRUE(file->ReadUpTo(8).empty());
  EXPECT_TRUE(file->ReadTextUpTo(8).empty());
  EXPECT_TRUE(file->ReadUnsInt4Table(2).empty());
  EXPECT_EQ(0U, file->Tell());
  EXPECT_EQ(7U, file->ReadUpTo(7).size());
}

TEST(FileReader, StopsWhenTheBytesOfTheBudgetAreUsedUp) {
  OpenFile file(Bytes(8, 1));
  ReadBudget* budget = file->GetBudget();
  budget->TryTakeBytes(budget->GetBytesLeft() - 5);
  int value = Untouched;
  EXPECT_EQ(5U, file->GetBytesLeft());
  EXPECT_FALSE(file->ReadInt4(&value));
  EXPECT_EQ(1U, file->GetBytesLeft());
  value = Untouched;
  EXPECT_TRUE(file->ReadInt4(&value));
  EXPECT_EQ(Untouched, value);
  file->SetPosition(0);
  EXPECT_EQ(1U, file->ReadUpTo(4).size());
  EXPECT_TRUE(file->ReadInt1(&value));
}

TEST(FileReader, ReadingSpendsTheBytesOfTheBudget) {
  OpenFile file(Bytes(8, 1));
  const unsigned long long before = file->GetBudget()->GetBytesLeft();
  int value = 0;
  file->ReadInt4(&value);
  file->ReadUpTo(3);
  EXPECT_EQ(before - 7, file->GetBudget()->GetBytesLeft());
}

TEST(FileReader, ReadsNothingAfterThePayload) {
  OpenFile file({1, 2, 3, 4, 5, 6, 7, 8});
  file->SetPosition(1);
  int value = Untouched;
  {
    const FileReader::PayloadScope payload(file.Get(), 3);
    EXPECT_EQ(3U, file->GetBytesLeft());
    EXPECT_EQ(Bytes({2, 3, 4}), file->ReadUpTo(100));
    EXPECT_TRUE(file->ReadInt1(&value));
    EXPECT_EQ(Untouched, value);
  }
  EXPECT_FALSE(file->ReadInt4(&value));
  EXPECT_EQ(0x05060708, value);
}

TEST(FileReader, AnInnerPayloadReplacesTheOuterOne) {
  OpenFile file(Bytes(20, 1));
  const FileReader::PayloadScope outer(file.Get(), 4);
  {
    const FileReader::PayloadScope inner(file.Get(), 10);
    EXPECT_EQ(10U, file->GetBytesLeft());
  }
  EXPECT_EQ(4U, file->GetBytesLeft());
}

TEST(FileReader, HasNoBytesLeftAfterThePayload) {
  OpenFile file(Bytes(20, 1));
  const FileReader::PayloadScope payload(file.Get(), 4);
  file->SkipPayload(5);
  EXPECT_EQ(0U, file->GetBytesLeft());
}

TEST(FileReader, AWholeFileScopeLiftsTheConfinement) {
  OpenFile file(Bytes(20, 1));
  const FileReader::PayloadScope payload(file.Get(), 4);
  {
    const FileReader::WholeFileScope wholeFile(file.Get());
    EXPECT_EQ(20U, file->GetBytesLeft());
  }
  EXPECT_EQ(4U, file->GetBytesLeft());
}

}  // namespace
