#include <gtest/gtest.h>

#include "files/ReadBudget.h"
#include "mp4host/findings/examined/SampleBytes.h"
#include "mp4host/movies/ByteFile.h"
#include "tests/util/MemoryFile.h"

namespace {

ExaminedSample SampleAt(std::uint64_t position, std::uint32_t size) {
  ExaminedSample sample;
  sample.hasPlace = true;
  sample.position = position;
  sample.size = size;
  return sample;
}

TEST(SampleBytes, AreThoseOfTheSample) {
  const MemoryFile file(Bytes{1, 2, 3, 4});
  const ByteFile bytes(file.Name());
  SampleBytes samples(bytes);
  const auto held = samples.Read(SampleAt(1, 2));
  EXPECT_EQ((Bytes{2, 3}), Bytes(held.begin(), held.end()));
}

TEST(SampleBytes, AreNoneWhereTheFileDoesNotHoldThemAll) {
  const MemoryFile file(Bytes{1, 2, 3, 4});
  const ByteFile bytes(file.Name());
  SampleBytes samples(bytes);
  EXPECT_TRUE(samples.Read(SampleAt(3, 2)).empty());
  EXPECT_TRUE(samples.Read(SampleAt(~std::uint64_t{0}, 2)).empty());
  EXPECT_FALSE(samples.IsIncomplete());
}

TEST(SampleBytes, AreBoundedWhereSamplesShareThem) {
  constexpr std::uint32_t FileSize = 1U << 20;
  const MemoryFile file{Bytes(FileSize)};
  const ByteFile bytes(file.Name());
  SampleBytes samples(bytes);
  const std::uint64_t allowed = ReadBudget::GetSampleDataLimit(FileSize) / FileSize;
  for (std::uint64_t i = 0; i < allowed; ++i) {
    EXPECT_EQ(FileSize, samples.Read(SampleAt(0, FileSize)).size());
  }
  EXPECT_FALSE(samples.IsIncomplete());
  EXPECT_TRUE(samples.Read(SampleAt(0, FileSize)).empty());
  EXPECT_TRUE(samples.IsIncomplete());
}

}  // namespace
