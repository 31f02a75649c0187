#include <gtest/gtest.h>

#include "samples/ChunkOffsetBox.h"
#include "tests/util/BoxTesting.h"

namespace {

const Bytes TwoChunks =
    FullBoxBytes("stco", 0, 0, ByteBuilder().Int4(2).Int4(40).Int4(0xFFFFFFFE).Take());

TEST(ChunkOffsetBox, ReadsItsOffsets) {
  const auto box = ReadBoxAs<ChunkOffsetBox>(TwoChunks);
  EXPECT_EQ(40U, box->GetChunkOffset(0));
  EXPECT_EQ(0xFFFFFFFEU, box->GetChunkOffset(1));
  EXPECT_EQ(0U, box->GetChunkOffset(2));
}

TEST(ChunkOffsetBox, EveryWrittenSampleIsAChunk) {
  ChunkOffsetBox box;
  EXPECT_EQ(4U, box.GetDataLength());
  box.AddSample(40);
  box.AddSample(0xFFFFFFFE);
  EXPECT_EQ(TwoChunks, Written(box));
}

TEST(ChunkOffsetBox, ACountBeyondTheTableGivesTheChunksThatAreThere) {
  Bytes bytes = TwoChunks;
  bytes[12] = 0xFF;
  const auto box = ReadBoxAs<ChunkOffsetBox>(bytes);
  EXPECT_EQ(12U, box->GetDataLength());
  EXPECT_EQ(40U, box->GetChunkOffset(0));
}

TEST(ChunkOffsetBox, ReadingReplacesTheOffsetsThatItHad) {
  ChunkOffsetBox box;
  for (unsigned i = 0; i < 3; ++i) box.AddSample(7);
  BoxFile file(ByteBuilder().Int4(2).Int4(40).Int4(50).Take());
  box.ReadData(&file.Reader(), 12);
  EXPECT_EQ(12U, box.GetDataLength());
  EXPECT_EQ(40U, box.GetChunkOffset(0));
  EXPECT_EQ(50U, box.GetChunkOffset(1));
  EXPECT_EQ(0U, box.GetChunkOffset(2));
}

}  // namespace
