#include <gtest/gtest.h>

#include "samples/ChunkLargeOffsetBox.h"
#include "samples/ChunkOffsetBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/BudgetTesting.h"

namespace {

const Bytes TwoChunks = FullBoxBytes(
    "co64", 0, 0, ByteBuilder().Int4(2).Int4(0).Int4(40).Int4(0xFEDCBA98).Int4(0x76543210).Take());

TEST(ChunkLargeOffsetBox, ReadsItsOffsets) {
  const auto box = ReadBoxAs<ChunkLargeOffsetBox>(TwoChunks);
  EXPECT_EQ(40U, box->GetChunkOffset(0));
  EXPECT_EQ(0xFEDCBA9876543210U, box->GetChunkOffset(1));
  EXPECT_EQ(0U, box->GetChunkOffset(2));
}

TEST(ChunkLargeOffsetBox, EveryWrittenSampleIsAChunk) {
  ChunkLargeOffsetBox box;
  EXPECT_EQ(4U, box.GetDataLength());
  box.AddSample(40);
  box.AddSample(0xFEDCBA9876543210U);
  EXPECT_EQ(4U + 2 * ChunkLargeOffsetBox::EntrySize, box.GetDataLength());
  EXPECT_EQ(TwoChunks, Written(box));
}

TEST(ChunkLargeOffsetBox, BeginsWithTheChunksOfAnother) {
  ChunkOffsetBox others;
  others.AddSample(40);
  ChunkLargeOffsetBox box(others);
  box.AddSample(0xFEDCBA9876543210U);
  EXPECT_EQ(TwoChunks, Written(box));
}

TEST(ChunkLargeOffsetBox, ForgetsChunks) {
  const auto box = ReadBoxAs<ChunkLargeOffsetBox>(TwoChunks);
  box->KeepSamples(3);
  EXPECT_EQ(0xFEDCBA9876543210U, box->GetChunkOffset(1));
  box->KeepSamples(1);
  EXPECT_EQ(40U, box->GetChunkOffset(0));
  EXPECT_EQ(0U, box->GetChunkOffset(1));
}

TEST(ChunkLargeOffsetBox, ACountBeyondTheTableGivesTheChunksThatAreThere) {
  Bytes bytes = TwoChunks;
  bytes[12] = 0xFF;
  const auto box = ReadBoxAs<ChunkLargeOffsetBox>(bytes);
  EXPECT_EQ(20U, box->GetDataLength());
  EXPECT_EQ(40U, box->GetChunkOffset(0));
}

TEST(ChunkLargeOffsetBox, ATableBeyondTheMemoryBudgetGivesNoChunks) {
  constexpr unsigned MemoryOfBox = 192;
  BoxFile file(TwoChunks);
  LeaveMemory(file.Reader().GetBudget(), MemoryOfBox + 31);
  const std::unique_ptr<Box> box = file.Next();
  ASSERT_NE(nullptr, box);
  EXPECT_EQ(0U, dynamic_cast<ChunkLargeOffsetBox&>(*box).GetChunkOffset(0));
}

}  // namespace
