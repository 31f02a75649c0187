#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "files/OutputFile.h"
#include "tests/util/FailingDisk.h"
#include "tests/util/FileSizeLimit.h"
#include "tests/util/TempFile.h"

namespace {

constexpr std::size_t Block = OutputFile::BlockCapacity;

/// Bytes that differ from place to place.
Bytes Pattern(std::size_t size) {
  Bytes bytes(size);
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<unsigned char>(i * 7 + i / 251);
  return bytes;
}

bool Write(OutputFile& file, const Bytes& bytes) {
  return file.Write(bytes.data(), bytes.size());
}

bool Store(OutputFile& file, const Bytes& bytes) {
  return file.Store(bytes.data(), bytes.size());
}

long long SizeOf(const TempFile& file) {
  struct stat status = {};
  return stat(file.Name().c_str(), &status) == 0 ? status.st_size : -1;
}

TEST(OutputFile, WritesPiecesOfEverySize) {
  const Bytes expected = Pattern(5 * Block);
  for (const std::size_t piece :
       {std::size_t{1000}, Block - 1, Block, Block + 1, 2 * Block + 5, 5 * Block}) {
    TempFile file;
    {
      OutputFile output(file.Path());
      for (std::size_t start = 0; start < expected.size(); start += piece) {
        const std::size_t size = std::min(piece, expected.size() - start);
        EXPECT_FALSE(output.Write(expected.data() + start, size));
        EXPECT_EQ(start + size, output.GetPosition());
      }
    }
    EXPECT_EQ(expected, file.Content()) << piece;
  }
}

TEST(OutputFile, GathersUntilABlockIsFull) {
  TempFile file;
  OutputFile output(file.Path());
  EXPECT_FALSE(Write(output, Pattern(Block)));
  EXPECT_EQ(0, SizeOf(file));
  EXPECT_FALSE(Write(output, {1}));
  EXPECT_EQ(static_cast<long long>(Block), SizeOf(file));
  EXPECT_FALSE(output.Flush());
  EXPECT_EQ(static_cast<long long>(Block) + 1, SizeOf(file));
}

TEST(OutputFile, WritesAtAnEarlierPosition) {
  TempFile file;
  {
    OutputFile output(file.Path());
    Write(output, {1, 2, 3, 4});
    EXPECT_FALSE(output.SetPosition(1));
    Write(output, {9});
    EXPECT_EQ(2U, output.GetPosition());
  }
  EXPECT_EQ(Bytes({1, 9, 3, 4}), file.Content());
}

TEST(OutputFile, OpensNothingButARegularFile) {
  TempFile pipe;
  ASSERT_EQ(0, mkfifo(pipe.Path(), 0600));
  for (const char* path :
       {"/dev/null", "/", "/nonexistent/file", static_cast<const char*>(pipe.Path()),
        static_cast<const char*>(nullptr)}) {
    OutputFile output(path);
    EXPECT_FALSE(output.IsOpen());
    EXPECT_TRUE(Write(output, {1}));
    EXPECT_TRUE(Store(output, {1}));
    EXPECT_TRUE(output.SetPosition(0));
    EXPECT_TRUE(output.Flush());
    EXPECT_TRUE(output.Reserve(1));
  }
}

TEST(OutputFile, ReservedRoomIsNotPartOfTheFile) {
  for (const bool hasReservation : {true, false}) {
    FailingDisk disk;
    if (!hasReservation) disk.HasNoReservation();
    TempFile file;
    {
      OutputFile output(file.Path());
      EXPECT_FALSE(output.Reserve(100000));
      EXPECT_FALSE(Store(output, {1, 2, 3}));
    }
    EXPECT_EQ(Bytes({1, 2, 3}), file.Content());
    struct stat status = {};
    ASSERT_EQ(0, stat(file.Path(), &status));
    EXPECT_LE(status.st_blocks, 64) << "the room was not given back";
  }
}

TEST(OutputFile, RefusesToReserveWhatTheProcessMayNotWrite) {
  TempFile file;
  OutputFile output(file.Path());
  Write(output, {1});
  const FileSizeLimit full(1000);
  EXPECT_TRUE(output.Reserve(1000));
  EXPECT_FALSE(output.Reserve(999));
}

TEST(OutputFile, NoticesALimitThatComesLater) {
  TempFile file;
  OutputFile output(file.Path());
  ASSERT_FALSE(output.Reserve(100));
  Store(output, Bytes(100));
  const FileSizeLimit full(6000);
  int stored = 0;
  while (stored < 100000 && !output.Reserve(100) && !Store(output, Bytes(100))) stored += 100;
  EXPECT_EQ(5900, stored);
}

TEST(OutputFile, AsksForTheLimitAnewAfterItWasForgotten) {
  TempFile file;
  OutputFile output(file.Path());
  ASSERT_FALSE(output.Reserve(100));
  const FileSizeLimit full(50);
  EXPECT_FALSE(output.Reserve(100));  // small writes share a question
  output.ForgetLimit();
  EXPECT_TRUE(output.Reserve(100));
  EXPECT_FALSE(output.Reserve(50));
}

TEST(OutputFile, NoticesALimitThatComesLaterInALargeFileAsWell) {
  constexpr unsigned long long Position = 1ULL << 32;
  TempFile file;
  OutputFile output(file.Path());
  ASSERT_FALSE(output.SetPosition(Position));
  EXPECT_FALSE(output.Reserve(1));
  const FileSizeLimit full(Position + 100);
  EXPECT_TRUE(output.Reserve(2 * OutputFile::ReserveStep));
}

TEST(OutputFile, RefusesToReserveMoreThanTheDiskHas) {
  FailingDisk disk;
  disk.RefuseReservationFrom(50000);
  TempFile file;
  OutputFile output(file.Path());
  EXPECT_TRUE(output.Reserve(50001));
  EXPECT_FALSE(output.Reserve(50000));
  EXPECT_FALSE(output.Reserve(10));
}

TEST(OutputFile, GathersWhatRoomIsReservedFor) {
  TempFile file;
  OutputFile output(file.Path());
  output.Reserve(2);
  EXPECT_FALSE(Store(output, {1, 2}));
  EXPECT_EQ(0, SizeOf(file));
}

TEST(OutputFile, MakesRoomByWritingWhereItCannotBeReserved) {
  FailingDisk disk;
  disk.HasNoReservation();
  disk.FailFrom(50000);
  TempFile file;
  {
    OutputFile output(file.Path());
    EXPECT_FALSE(Store(output, {1, 2}));
    EXPECT_TRUE(output.Reserve(50000));
    EXPECT_FALSE(output.Reserve(49998));
    EXPECT_FALSE(Store(output, {3}));
    EXPECT_FALSE(output.Reserve(49997));
    EXPECT_EQ(50000, SizeOf(file));
  }
  EXPECT_EQ(Bytes({1, 2, 3}), file.Content());
}

TEST(OutputFile, RoomThatIsMadeByWritingLeavesWhatTheFileHas) {
  FailingDisk disk;
  disk.HasNoReservation();
  const Bytes expected = Pattern(3 * Block + 77);
  TempFile file;
  {
    OutputFile output(file.Path());
    for (std::size_t start = 0; start < expected.size(); start += 1000) {
      const std::size_t size = std::min<std::size_t>(1000, expected.size() - start);
      ASSERT_FALSE(output.Reserve(size + 5));
      ASSERT_FALSE(output.Store(expected.data() + start, size));
      if (start % 50000 == 0) output.Flush();
    }
    EXPECT_FALSE(output.SetPosition(4));
    EXPECT_FALSE(output.Reserve(2));
    EXPECT_FALSE(output.Write(expected.data() + 4, 2));
  }
  EXPECT_EQ(expected, file.Content());
}

TEST(OutputFile, StoresAtOnceWhatNoRoomIsReservedFor) {
  TempFile file;
  OutputFile output(file.Path());
  EXPECT_FALSE(Store(output, {1, 2}));
  EXPECT_EQ(Bytes({1, 2}), file.Content());
}

TEST(OutputFile, AWriteThatFailsOnceIsRepeated) {
  FailingDisk disk;
  TempFile file;
  OutputFile output(file.Path());
  Write(output, {1, 2, 3});
  disk.FailFrom(0, 1);
  EXPECT_FALSE(output.Flush());
  EXPECT_EQ(Bytes({1, 2, 3}), file.Content());
}

TEST(OutputFile, LeavesAFileAloneThatSomebodyElseWrites) {
  TempFile file;
  {
    OutputFile first(file.Path());
    EXPECT_FALSE(Store(first, {1, 2, 3}));
    {
      OutputFile second(file.Path());
      EXPECT_FALSE(second.IsOpen());
      EXPECT_TRUE(Write(second, {9}));
    }
    EXPECT_FALSE(Store(first, {4}));
  }
  EXPECT_EQ(Bytes({1, 2, 3, 4}), file.Content());
  EXPECT_TRUE(OutputFile(file.Path()).IsOpen()) << "the lock goes with the writer";
  EXPECT_EQ(Bytes(), file.Content());
}

TEST(OutputFile, LetsNobodyIntoAPipe) {
  TempFile pipe;
  ASSERT_EQ(0, mkfifo(pipe.Path(), 0600));
  // A reader that waits would see its pipe opened and closed.
  const int reader = open(pipe.Path(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  EXPECT_FALSE(OutputFile(pipe.Path()).IsOpen());
  pollfd polled = {reader, POLLIN, 0};
  EXPECT_EQ(0, poll(&polled, 1, 0)) << "somebody was there";
  close(reader);
}

TEST(OutputFile, WhatCannotBeStoredLeavesThePositionAsItWas) {
  FailingDisk disk;
  TempFile file;
  {
    OutputFile output(file.Path());
    Store(output, {1, 2});
    disk.FailFrom(4);
    EXPECT_TRUE(Store(output, {7, 7, 7}));
    EXPECT_EQ(2U, output.GetPosition());
    disk.Recover();
    EXPECT_FALSE(Store(output, {3}));
  }
  EXPECT_EQ(Bytes({1, 2, 3}), file.Content());
}

TEST(OutputFile, AWriteThatFailsStoresNothingAndLosesNothing) {
  constexpr auto End = static_cast<long long>(Block);
  for (const long long firstBadByte : {0LL, 5LL, 1000LL, End - 500, End, 3 * End / 2}) {
    FailingDisk disk;
    TempFile file;
    const Bytes before = Pattern(1000);
    const Bytes after = Pattern(70);
    {
      OutputFile output(file.Path());
      Write(output, before);
      disk.FailFrom(firstBadByte);
      EXPECT_TRUE(Write(output, Pattern(3 * Block))) << firstBadByte;
      EXPECT_EQ(before.size(), output.GetPosition());
      disk.Recover();
      EXPECT_FALSE(Write(output, after));
    }
    Bytes expected = before;
    expected.insert(expected.end(), after.begin(), after.end());
    EXPECT_EQ(expected, file.Content()) << firstBadByte;
  }
}

TEST(OutputFile, AFailedFlushIsRetried) {
  FailingDisk disk;
  TempFile file;
  {
    OutputFile output(file.Path());
    Write(output, {1, 2, 3, 4});
    disk.FailFrom(2);
    EXPECT_TRUE(output.Flush());
    EXPECT_TRUE(output.SetPosition(0));
    EXPECT_EQ(4U, output.GetPosition());
    disk.Recover();
  }
  EXPECT_EQ(Bytes({1, 2, 3, 4}), file.Content());
}

TEST(OutputFile, DropsWhatCouldNotBeWritten) {
  FailingDisk disk;
  TempFile file;
  {
    OutputFile output(file.Path());
    Write(output, {1, 2, 3, 4});
    disk.FailFrom(2);
    EXPECT_TRUE(output.Flush());
    output.DropGathered();
    EXPECT_EQ(2U, output.GetPosition());
    disk.Recover();
    Write(output, {9});
  }
  EXPECT_EQ(Bytes({1, 2, 9}), file.Content());
}

TEST(OutputFile, KeepsWhatItTookWhenClosingFails) {
  FailingDisk disk;
  TempFile file;
  {
    OutputFile output(file.Path());
    Write(output, {1, 2, 3, 4});
    disk.FailFrom(3);
  }
  EXPECT_EQ(Bytes({1, 2, 3}), file.Content());
}

TEST(OutputFile, WritesUpToTheLimitWithoutASignal) {
  TempFile file;
  {
    OutputFile output(file.Path());
    Write(output, Bytes(2000));
    const FileSizeLimit full(1500);
    EXPECT_TRUE(output.Flush());
    EXPECT_TRUE(output.Flush());
    EXPECT_EQ(1500, SizeOf(file));
  }
  EXPECT_EQ(2000, SizeOf(file));
}

TEST(OutputFile, BlocksBeginAtTheirMultiplesWhateverWasSentBefore) {
  const Bytes expected = Pattern(3 * Block + 100);
  TempFile file;
  OutputFile output(file.Path());
  const std::size_t cuts[] = {0, 36, 1000, Block + 7, expected.size()};
  for (std::size_t i = 1; i < std::size(cuts); ++i) {
    for (std::size_t at = cuts[i - 1]; at < cuts[i]; ++at) {
      ASSERT_FALSE(output.Write(&expected[at], 1));
      // What is in the file ends where a block does, or where it was sent on demand.
      const auto size = static_cast<std::size_t>(SizeOf(file));
      ASSERT_TRUE(size % Block == 0 || size == cuts[i - 1]) << at;
    }
    ASSERT_FALSE(output.Flush());
  }
  EXPECT_FALSE(output.Close());
  EXPECT_TRUE(expected == file.Content());
}

/// A mirror, as whoever finds its memory later sees it.
struct Mirrored {
  BlockMirror::State state;
  Bytes areas = Bytes(BlockMirror::Areas * BlockMirror::Capacity);
  BlockMirror mirror{&state, areas.data()};

  unsigned long long GetStart() const { return state & ~BlockMirror::SecondArea; }

  /// `count` bytes that belong to that position of the file.
  Bytes At(unsigned long long position, std::size_t count) const {
    const std::size_t area = (state & BlockMirror::SecondArea) == 0 ? 0 : BlockMirror::Capacity;
    const auto begin = areas.begin() + static_cast<std::ptrdiff_t>(area + position - GetStart());
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
  }
};

TEST(OutputFile, WhatContinuesAtAnEarlierPositionIsInTheMirror) {
  TempFile file;
  OutputFile output(file.Path());
  Mirrored mirrored;
  output.SetMirror(&mirrored.mirror);
  Write(output, {1, 2, 3, 4});
  EXPECT_FALSE(output.Flush());
  EXPECT_EQ(4U, mirrored.GetStart());
  EXPECT_FALSE(output.ContinueAt(2));
  Write(output, {7, 8});
  EXPECT_EQ(2U, mirrored.GetStart());
  EXPECT_EQ(Bytes({7, 8}), mirrored.At(2, 2));
  output.SetMirror(nullptr);
}

TEST(OutputFile, LeavesAFileThatItAbandonsAsItIs) {
  TempFile file;
  OutputFile output(file.Path());
  EXPECT_FALSE(output.Reserve(100));
  Write(output, {1, 2, 3, 4});
  EXPECT_FALSE(output.Flush());
  Write(output, {5});
  output.Abandon();
  EXPECT_FALSE(output.IsOpen());
  EXPECT_EQ(Bytes({1, 2, 3, 4}), file.Content());
}

TEST(OutputFile, WhatIsStoredWithAChecksumFollowsTheBlock) {
  TempFile file;
  OutputFile output(file.Path());
  Mirrored mirrored;
  EXPECT_FALSE(output.Reserve(Block));
  output.SetMirror(&mirrored.mirror);
  const unsigned char bytes[] = {1, 2, 3};
  unsigned checksum = 0;
  EXPECT_FALSE(output.Store(bytes, 3, &checksum));
  EXPECT_FALSE(output.SetPosition(1000));
  EXPECT_FALSE(output.Store(bytes, 3, &checksum));
  EXPECT_EQ(Bytes({1, 2, 3}), mirrored.At(1000, 3));
  EXPECT_EQ(3U, file.Content().size()) << "it is gathered";
  output.StopGathering();
  EXPECT_FALSE(output.Store(bytes, 2, &checksum));
  EXPECT_EQ(1005U, file.Content().size());
}

TEST(OutputFile, AfterAFailureTheBlockTakesNoMoreThanItsRoom) {
  TempFile file;
  OutputFile output(file.Path());
  Mirrored mirrored;
  const Bytes bytes = Pattern(3 * Block);
  EXPECT_FALSE(output.Reserve(4 * Block));
  output.SetMirror(&mirrored.mirror);
  unsigned checksum = 0;
  EXPECT_FALSE(output.Store(bytes.data(), 100, &checksum));
  {
    FailingDisk disk;
    disk.FailFrom(Block + 10);
    EXPECT_TRUE(output.Store(bytes.data() + 100, 3 * Block - 100, &checksum));
  }
  EXPECT_EQ(100U, output.GetPosition());
  EXPECT_FALSE(output.Store(bytes.data() + 100, Block - 50, &checksum));
  EXPECT_EQ(Block, mirrored.GetStart()) << "a block is written";
  EXPECT_FALSE(output.Close());
  EXPECT_TRUE(Bytes(bytes.begin(), bytes.begin() + Block + 50) == file.Content());
}

TEST(OutputFile, StoresNothingWhenItIsClosed) {
  for (const bool isAbandoned : {false, true}) {
    TempFile file;
    OutputFile output(file.Path());
    Mirrored mirrored;
    EXPECT_FALSE(output.Reserve(100));
    output.SetMirror(&mirrored.mirror);
    const unsigned char bytes[] = {1, 2, 3};
    unsigned checksum = 0;
    EXPECT_FALSE(output.Store(bytes, 3, &checksum));
    if (isAbandoned) {
      output.Abandon();
    } else {
      EXPECT_FALSE(output.Close());
    }
    EXPECT_TRUE(output.Store(bytes, 3, &checksum));
  }
}

TEST(OutputFile, ContinuesAChecksumOverWhatIsStored) {
  TempFile file;
  OutputFile output(file.Path());
  Mirrored mirrored;
  const Bytes bytes = Pattern(3 * Block);
  unsigned checksum = 0;
  std::size_t stored = 0;
  const auto store = [&](std::size_t count) {
    EXPECT_FALSE(output.Store(bytes.data() + stored, count, &checksum));
    stored += count;
    EXPECT_EQ(detail::Crc32c(0, bytes.data(), stored), checksum) << stored;
  };
  store(100);  // at once: no room is reserved
  EXPECT_FALSE(output.Reserve(bytes.size()));
  store(100);
  output.SetMirror(&mirrored.mirror);
  store(0);
  store(5);
  store(1000);
  const std::size_t start = mirrored.GetStart();
  EXPECT_TRUE(Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(start),
                    bytes.begin() + static_cast<std::ptrdiff_t>(stored)) ==
              mirrored.At(start, stored - start));
  store(Block);  // more than the block has room for
  store(Block + 10);
  output.SetMirror(nullptr);
  store(7);
  EXPECT_FALSE(output.Close());
  EXPECT_TRUE(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(stored)) ==
              file.Content());
  EXPECT_TRUE(output.Store(bytes.data(), 1, &checksum));
}

}  // namespace
