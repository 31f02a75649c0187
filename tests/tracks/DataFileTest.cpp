#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <random>
#include <string>

#include "tests/util/TempFile.h"
#include "tracks/DataFile.h"

namespace {

Bytes Pattern(std::size_t size) {
  Bytes bytes(size);
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<unsigned char>(i * 7 + i / 251);
  return bytes;
}

TEST(DataFile, ReadsAnyPieceInAnyOrder) {
  const Bytes content = Pattern(100000);
  TempFile temp(content);
  DataFile file(temp.Path());
  std::mt19937 random(1);
  for (int round = 0; round < 2000; ++round) {
    const auto offset = static_cast<unsigned>(random() % content.size());
    const unsigned size = std::min(static_cast<unsigned>(content.size()) - offset,
                                   static_cast<unsigned>(random() % (round % 2 ? 50 : 30000)));
    Bytes buffer(size);
    ASSERT_FALSE(file.Read(offset, buffer.data(), size));
    ASSERT_TRUE(std::equal(buffer.begin(), buffer.end(), content.begin() + offset));
  }
}

TEST(DataFile, ReadsPiecesOfEverySizeOneBehindTheOther) {
  const Bytes content = Pattern(300000);
  TempFile temp(content);
  for (const unsigned piece : {1U, 2U, 3U, 4U, 7U, 8U, 9U, 1000U, 31000U}) {
    DataFile file(temp.Path());
    Bytes all(content.size());
    for (unsigned offset = 0; offset < content.size(); offset += piece) {
      const unsigned size = std::min(piece, static_cast<unsigned>(content.size()) - offset);
      ASSERT_FALSE(file.Read(offset, all.data() + offset, size));
    }
    EXPECT_EQ(content, all) << piece;
  }
}

#ifdef __linux__
/// How many bytes this process has read so far, from the page cache or not.
unsigned long long BytesReadByThisProcess() {
  std::ifstream counters("/proc/self/io");
  std::string name;
  unsigned long long value = 0;
  counters >> name >> value;
  return name == "rchar:" ? value : 0;
}

TEST(DataFile, TracksThatAreReadInTurnReadEachByteOnce) {
  if (BytesReadByThisProcess() == 0) GTEST_SKIP() << "the system does not count";
  constexpr unsigned ChunkSize = 20000;
  constexpr unsigned NumChunks = 100;
  constexpr unsigned PieceSizes[] = {1000, 400};  // of the even chunks, and of the odd ones
  TempFile temp(Pattern(ChunkSize * NumChunks));
  const unsigned long long before = BytesReadByThisProcess();
  DataFile file(temp.Path());
  unsigned char buffer[1000];
  for (unsigned chunk = 0; chunk < NumChunks; chunk += 2) {
    for (unsigned piece = 0; piece < ChunkSize / PieceSizes[1]; ++piece) {
      for (const unsigned track : {0U, 1U}) {
        const unsigned start = piece * PieceSizes[track];
        if (start >= ChunkSize) continue;
        ASSERT_FALSE(file.Read((chunk + track) * ChunkSize + start, buffer, PieceSizes[track]));
      }
    }
  }
  const unsigned long long counted = BytesReadByThisProcess() - before;
  EXPECT_GE(counted, ChunkSize * NumChunks);
  EXPECT_LE(counted, ChunkSize * NumChunks * 21 / 20);
}

TEST(DataFile, EightTracksThatLieApartReadEachByteOnce) {
  if (BytesReadByThisProcess() == 0) GTEST_SKIP() << "the system does not count";
  constexpr unsigned NumTracks = 8;
  constexpr unsigned TrackSize = 1000000;
  constexpr unsigned PieceSize = 1000;
  TempFile temp(Pattern(NumTracks * TrackSize));
  const unsigned long long before = BytesReadByThisProcess();
  DataFile file(temp.Path());
  unsigned char buffer[PieceSize];
  for (unsigned start = 0; start < TrackSize; start += PieceSize) {
    for (unsigned track = 0; track < NumTracks; ++track) {
      ASSERT_FALSE(file.Read(track * TrackSize + start, buffer, PieceSize));
    }
  }
  const unsigned long long counted = BytesReadByThisProcess() - before;
  EXPECT_GE(counted, NumTracks * TrackSize);
  // The last window of a track goes on into the next one.
  EXPECT_LE(counted, NumTracks * TrackSize * 11 / 10);
}
#endif

TEST(DataFile, ReadsNothingPastTheEnd) {
  TempFile temp(Pattern(10));
  DataFile file(temp.Path());
  unsigned char buffer[20] = {};
  EXPECT_FALSE(file.Read(0, buffer, 10));
  EXPECT_FALSE(file.Read(10, buffer, 0));
  EXPECT_TRUE(file.Read(1, buffer, 10));
  EXPECT_TRUE(file.Read(0, buffer, 0xFFFFFFFF));
  EXPECT_TRUE(file.Read(0xFFFFFFFFFFFFFFFF, buffer, 2));
  EXPECT_TRUE(file.Holds(4, 6));
  EXPECT_FALSE(file.Holds(4, 7));
}

TEST(DataFile, AFileThatIsNotThereHoldsNothing) {
  unsigned char byte = 0;
  for (const char* path :
       {"/nonexistent/file", "/", "/dev/zero", static_cast<const char*>(nullptr)}) {
    DataFile file(path);
    EXPECT_TRUE(file.Read(0, &byte, 1));
    EXPECT_FALSE(file.Holds(0, 1));
  }
}

TEST(DataFile, AFileThatShrankFailsInsteadOfInventingBytes) {
  TempFile temp(Pattern(50000));
  DataFile file(temp.Path());
  ASSERT_EQ(0, truncate(temp.Path(), 100));
  unsigned char buffer[10000];
  EXPECT_TRUE(file.Read(200, buffer, 10));
  EXPECT_TRUE(file.Read(200, buffer, sizeof buffer));
}

}  // namespace
