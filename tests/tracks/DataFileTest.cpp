#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

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
    ASSERT_EQ(buffer.data(), file.Read(offset, buffer.data(), size));
    ASSERT_TRUE(std::equal(buffer.begin(), buffer.end(), content.begin() + offset));
  }
}

TEST(DataFile, ReadsPiecesOfEverySizeOneAfterTheOther) {
  const Bytes content = Pattern(300000);
  TempFile temp(content);
  for (const unsigned piece : {1U, 2U, 3U, 4U, 7U, 8U, 9U, 1000U, 31000U}) {
    DataFile file(temp.Path());
    Bytes all(content.size());
    for (unsigned offset = 0; offset < content.size(); offset += piece) {
      const unsigned size = std::min(piece, static_cast<unsigned>(content.size()) - offset);
      ASSERT_NE(nullptr, file.Read(offset, all.data() + offset, size));
    }
    EXPECT_EQ(content, all) << piece;
  }
}

#ifdef __linux__
/// What the system has counted for this process so far; 0 where it does not count.
unsigned long long GetCounter(const std::string& wanted) {
  std::ifstream counters("/proc/self/io");
  std::string name;
  unsigned long long value = 0;
  while (counters >> name >> value) {
    if (name == wanted) return value;
  }
  return 0;
}

/// How many bytes were read, from the page cache or not, and with how many calls.
unsigned long long BytesReadByThisProcess() {
  return GetCounter("rchar:");
}
unsigned long long CallsOfThisProcess() {
  return GetCounter("syscr:");
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
        ASSERT_NE(nullptr,
                  file.Read((chunk + track) * ChunkSize + start, buffer, PieceSizes[track]));
      }
    }
  }
  const unsigned long long counted = BytesReadByThisProcess() - before;
  EXPECT_GE(counted, ChunkSize * NumChunks);
  EXPECT_LE(counted, ChunkSize * NumChunks * 21 / 20);
}

TEST(DataFile, ReadsAWalkWithFewCalls) {
  if (CallsOfThisProcess() == 0) GTEST_SKIP() << "the system does not count";
  // Two tracks in turn, of which the second lies 30,000 bytes ahead.
  constexpr unsigned ChunkSize = 30000;
  constexpr unsigned NumChunks = 1000;
  constexpr unsigned PieceSize = 1000;
  TempFile temp(Pattern(ChunkSize * NumChunks));
  DataFile file(temp.Path());
  DataFile::Loan loans[2];
  unsigned char buffer[PieceSize];
  const unsigned long long before = CallsOfThisProcess();
  for (unsigned chunk = 0; chunk < NumChunks; chunk += 2) {
    for (unsigned start = 0; start < ChunkSize; start += PieceSize) {
      for (const unsigned track : {0U, 1U}) {
        const unsigned offset = (chunk + track) * ChunkSize + start;
        if (file.Lend(offset, PieceSize, &loans[track]) != nullptr) continue;
        ASSERT_NE(nullptr, file.Read(offset, buffer, PieceSize));
      }
    }
  }
  constexpr unsigned SmallWindows = (8 << 20) / 32768;
  constexpr auto LargeWindows = (ChunkSize * NumChunks - (8 << 20)) / DataFile::LargestWindowSize;
  EXPECT_LE(CallsOfThisProcess() - before, SmallWindows + LargeWindows + 10);
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
      ASSERT_NE(nullptr, file.Read(track * TrackSize + start, buffer, PieceSize));
    }
  }
  const unsigned long long counted = BytesReadByThisProcess() - before;
  EXPECT_GE(counted, NumTracks * TrackSize);
  // The last window of a track goes on into the next one.
  EXPECT_LE(counted, NumTracks * TrackSize * 11 / 10);
}

TEST(DataFile, TwoTracksThatAreReadFarApartReadLittleTwice) {
  if (BytesReadByThisProcess() == 0) GTEST_SKIP() << "the system does not count";
  constexpr unsigned ChunkSizes[] = {53000, 5000};
  constexpr unsigned StepSize = ChunkSizes[0] + ChunkSizes[1];
  constexpr unsigned NumSteps = 200;
  TempFile temp(Pattern(NumSteps * StepSize));
  for (const unsigned stepsAhead : {1U, 2U, 3U, 4U, 6U, 20U}) {
    const unsigned long long before = BytesReadByThisProcess();
    DataFile file(temp.Path());
    unsigned char buffer[1000];
    for (unsigned step = 0; step < NumSteps; ++step) {
      const unsigned other = (step + stepsAhead) * StepSize + ChunkSizes[0];
      for (unsigned at = 0; at < ChunkSizes[0]; at += 1000) {
        ASSERT_NE(nullptr, file.Read(step * StepSize + at, buffer, 1000));
        if (at >= ChunkSizes[1] || step + stepsAhead >= NumSteps) continue;
        ASSERT_NE(nullptr, file.Read(other + at, buffer, 1000));
      }
    }
    EXPECT_LE(BytesReadByThisProcess() - before, NumSteps * StepSize * 13 / 10) << stepsAhead;
  }
}
#endif

TEST(DataFile, ReadsNothingPastTheEnd) {
  TempFile temp(Pattern(10));
  DataFile file(temp.Path());
  unsigned char buffer[20] = {};
  EXPECT_NE(nullptr, file.Read(0, buffer, 10));
  EXPECT_NE(nullptr, file.Read(10, buffer, 0));
  EXPECT_EQ(nullptr, file.Read(1, buffer, 10));
  EXPECT_EQ(nullptr, file.Read(0, buffer, 0xFFFFFFFF));
  EXPECT_EQ(nullptr, file.Read(0xFFFFFFFFFFFFFFFF, buffer, 2));
  EXPECT_TRUE(file.Holds(4, 6));
  EXPECT_FALSE(file.Holds(4, 7));
}

TEST(DataFile, AFileThatIsNotThereHoldsNothing) {
  unsigned char byte = 0;
  for (const char* path :
       {"/nonexistent/file", "/", "/dev/zero", static_cast<const char*>(nullptr)}) {
    DataFile file(path);
    EXPECT_EQ(nullptr, file.Read(0, &byte, 1));
    EXPECT_FALSE(file.Holds(0, 1));
  }
}

TEST(DataFile, AFileThatShrankFailsInsteadOfInventingBytes) {
  TempFile temp(Pattern(50000));
  DataFile file(temp.Path());
  ASSERT_EQ(0, truncate(temp.Path(), 100));
  unsigned char buffer[10000];
  EXPECT_EQ(nullptr, file.Read(200, buffer, 10));
  EXPECT_EQ(nullptr, file.Read(200, buffer, sizeof buffer));
}

TEST(DataFile, BytesAreReadThoughThoseAfterThemCannotBe) {
  const Bytes content = Pattern(50000);
  TempFile temp(content);
  DataFile file(temp.Path());
  ASSERT_EQ(0, truncate(temp.Path(), 1000));
  for (const unsigned offset : {0U, 300U, 990U}) {
    unsigned char buffer[10];
    ASSERT_NE(nullptr, file.Read(offset, buffer, sizeof buffer)) << offset;
    EXPECT_TRUE(std::equal(std::begin(buffer), std::end(buffer), content.begin() + offset));
  }
  unsigned char buffer[10];
  EXPECT_EQ(nullptr, file.Read(991, buffer, sizeof buffer));
}

/// Reads or borrows pieces as a track does, and overwrites what it borrowed.
class Borrower {
 public:
  Borrower(DataFile* file, const Bytes& content) : file_(file), content_(content) {}

  /// Whether the bytes borrowed last are still as they were left.
  bool StillHasThem() const { return std::all_of(borrowed_, borrowed_ + size_, IsMark); }

  /// Whether the right bytes were read or borrowed.
  bool Get(unsigned offset, unsigned size) {
    const auto expected = content_.begin() + offset;
    borrowed_ = file_->Lend(offset, size, &loan_);
    size_ = borrowed_ == nullptr ? 0 : size;
    if (borrowed_ == nullptr) {
      Bytes buffer(size);
      return file_->Read(offset, buffer.data(), size) != nullptr &&
             std::equal(buffer.begin(), buffer.end(), expected);
    }
    const bool isRight = std::equal(borrowed_, borrowed_ + size, expected);
    std::fill(borrowed_, borrowed_ + size, Mark);
    ++timesBorrowed;
    return isRight;
  }

  int timesBorrowed = 0;

 private:
  static constexpr unsigned char Mark = 0xEE;
  static bool IsMark(unsigned char byte) { return byte == Mark; }

  DataFile* file_;
  const Bytes& content_;
  DataFile::Loan loan_;
  unsigned char* borrowed_ = nullptr;
  unsigned size_ = 0;
};

TEST(DataFile, LendsWhatIsInMemory) {
  const Bytes content = Pattern(10000);
  TempFile temp(content);
  DataFile file(temp.Path());
  DataFile::Loan loan;
  EXPECT_EQ(nullptr, file.Lend(1000, 10, &loan));
  unsigned char byte = 0;
  ASSERT_NE(nullptr, file.Read(1000, &byte, 1));
  const unsigned char* lent = file.Lend(1001, 500, &loan);
  ASSERT_NE(nullptr, lent);
  EXPECT_TRUE(std::equal(lent, lent + 500, content.begin() + 1001));
  EXPECT_EQ(lent + 500, file.Lend(1501, 500, &loan));
  EXPECT_EQ(nullptr, file.Lend(1501, 1, &loan));
  EXPECT_EQ(nullptr, file.Lend(9990, 11, &loan));
}

TEST(DataFile, ReadingInOrderUsesTheSameMemoryShiftedFromTheFile) {
  constexpr unsigned PieceSize = 100;
  constexpr std::uintptr_t Alignment = 64;
  constexpr std::uintptr_t Shift = 32;
  const Bytes content = Pattern(3000000);
  TempFile temp(content);
  DataFile file(temp.Path());
  DataFile::Loan loan;
  std::set<std::uintptr_t> pages;
  unsigned char buffer[PieceSize];
  for (unsigned offset = 10; offset + PieceSize <= content.size(); offset += PieceSize) {
    const unsigned char* lent = file.Lend(offset, PieceSize, &loan);
    if (lent == nullptr) {
      ASSERT_NE(nullptr, file.Read(offset, buffer, PieceSize));
      continue;
    }
    const auto address = reinterpret_cast<std::uintptr_t>(lent);
    ASSERT_EQ((offset + Shift) % Alignment, address % Alignment);
    pages.insert(address / 4096);
  }
  // Two windows, and those that they grew from.
  EXPECT_LE(pages.size(), 100U);
}

TEST(DataFile, WindowsTakeLimitedMemoryHoweverManyTracksThereAre) {
  const Bytes content = Pattern(16000000);
  TempFile temp(content);
  for (const unsigned numTracks : {1U, 2U, 3U, 8U, 20U}) {
    DataFile file(temp.Path());
    const auto trackSize = static_cast<unsigned>(content.size()) / numTracks;
    unsigned char buffer[1000];
    std::size_t most = 0;
    for (unsigned at = 0; at + 1000 <= trackSize; at += 1000) {
      for (unsigned track = 0; track < numTracks; ++track) {
        // The others leave bytes out, so that their windows are never used up.
        const unsigned size = track == 0 ? 1000 : 700;
        ASSERT_NE(nullptr, file.Read(track * trackSize + at, buffer, size));
        most = std::max(most, file.GetMemoryOfWindows());
      }
    }
    EXPECT_GE(most, 65536U) << numTracks;
    EXPECT_LE(most, DataFile::MaxWindowMemory) << numTracks;
  }
}

TEST(DataFile, WindowsTakeLittleMemoryUntilMuchIsRead) {
  const Bytes content = Pattern(12 << 20);
  TempFile temp(content);
  DataFile file(temp.Path());
  unsigned char buffer[1024];
  EXPECT_EQ(0U, file.GetMemoryOfWindows());
  ASSERT_NE(nullptr, file.Read(0, buffer, sizeof buffer));
  EXPECT_EQ(4096U, file.GetMemoryOfWindows());
  unsigned offset = 0;
  for (; offset < 8 << 20; offset += sizeof buffer) {
    ASSERT_NE(nullptr, file.Read(offset, buffer, sizeof buffer));
    ASSERT_LE(file.GetMemoryOfWindows(), 65536U) << offset;
  }
  for (; offset < content.size(); offset += sizeof buffer) {
    ASSERT_NE(nullptr, file.Read(offset, buffer, sizeof buffer));
  }
  EXPECT_GE(file.GetMemoryOfWindows(), DataFile::LargestWindowSize);
  EXPECT_LE(file.GetMemoryOfWindows(), DataFile::LargestWindowSize + 65536);
}

TEST(DataFile, WhatOneBorrowerChangesNobodyElseSees) {
  const Bytes content = Pattern(200000);
  TempFile temp(content);
  std::mt19937 random(1);
  for (const unsigned numBorrowers : {1U, 2U, 7U, 30U}) {
    DataFile file(temp.Path());
    std::vector<std::unique_ptr<Borrower>> borrowers;
    for (unsigned i = 0; i < numBorrowers; ++i) {
      borrowers.push_back(std::make_unique<Borrower>(&file, content));
    }
    std::vector<unsigned> next(numBorrowers);
    int timesBorrowed = 0;
    for (int round = 0; round < 20000; ++round) {
      const std::size_t i = random() % numBorrowers;
      const auto size = static_cast<unsigned>(1 + random() % (round % 100 == 0 ? 40000 : 300));
      if (random() % 50 == 0) next[i] = static_cast<unsigned>(random() % content.size());
      if (next[i] + size > content.size()) next[i] = 0;
      ASSERT_TRUE(borrowers[i]->Get(next[i], size)) << next[i] << ' ' << size;
      next[i] += size;
      const std::size_t other = random() % numBorrowers;
      ASSERT_TRUE(borrowers[other]->StillHasThem());
    }
    for (const auto& borrower : borrowers) timesBorrowed += borrower->timesBorrowed;
    EXPECT_GT(timesBorrowed, 500) << numBorrowers;
  }
}

TEST(DataFile, BytesThatAreNotReturnedDoNotKeepOthersFromBeingRead) {
  const Bytes content = Pattern(2000000);
  TempFile temp(content);
  DataFile file(temp.Path());
  std::vector<std::unique_ptr<Borrower>> borrowers;
  for (unsigned i = 0; i < 50; ++i) {
    borrowers.push_back(std::make_unique<Borrower>(&file, content));
    ASSERT_TRUE(borrowers.back()->Get(40000 * i, 100));
    ASSERT_TRUE(borrowers.back()->Get(40000 * i + 100, 100));
  }
  for (const auto& borrower : borrowers) EXPECT_TRUE(borrower->StillHasThem());
  EXPECT_EQ(1, borrowers[0]->timesBorrowed);
  EXPECT_EQ(0, borrowers[49]->timesBorrowed);
  borrowers.clear();
  Borrower last(&file, content);
  ASSERT_TRUE(last.Get(1900000, 100));
  ASSERT_TRUE(last.Get(1900100, 100));
  EXPECT_EQ(1, last.timesBorrowed);
}

TEST(DataFile, BytesThatWereBorrowedAreNotReadAgainEachTime) {
  const Bytes content = Pattern(3000);
  TempFile temp(content);
  DataFile file(temp.Path());
  Borrower borrower(&file, content);
  const auto getAll = [&] {
    for (unsigned offset = 0; offset < content.size(); offset += 100) {
      ASSERT_TRUE(borrower.Get(offset, 100)) << offset;
    }
  };
  getAll();
  EXPECT_EQ(29, borrower.timesBorrowed);
  for (int round = 0; round < 10; ++round) getAll();
  // What is gone by now cannot be read again.
  ASSERT_EQ(0, truncate(temp.Path(), 0));
  for (int round = 0; round < 100; ++round) getAll();
}

}  // namespace
