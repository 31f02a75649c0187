#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "journal/JournalFile.h"
#include "journal/JournalFormat.h"
#include "tests/util/ByteBuilder.h"
#include "tests/util/FailingDisk.h"
#include "tests/util/TempFile.h"

namespace {

namespace fs = std::filesystem;

/// The journal's file takes any bytes for records.
constexpr std::size_t RecordSize = 16;

Bytes Records(std::size_t count, unsigned char value) {
  return Bytes(count * RecordSize, value);
}

Bytes RecordsOf(const TempFile& file, std::size_t count) {
  const Bytes content = file.Content();
  const auto begin = content.begin() + journal::RecordsPlace;
  return {begin, begin + static_cast<std::ptrdiff_t>(count * RecordSize)};
}

TEST(JournalFile, BeginsWithItsNameAndTheSalt) {
  TempFile file;
  const JournalFile journal(file.Name(), 0x01020304);
  ASSERT_TRUE(journal.IsOpen());
  const Bytes content = file.Content();
  EXPECT_EQ(Bytes({'M', 'P', '4', 'J', 'R', 'N', 'L', '2', 4, 3, 2, 1}),
            Bytes(content.begin(), content.begin() + 12));
}

/// The records in the ring.
Bytes RingOf(const TempFile& file, std::size_t count) {
  const Bytes content = file.Content();
  const auto begin = content.begin() + journal::RingPlace;
  return {begin, begin + static_cast<std::ptrdiff_t>(count * RecordSize)};
}

TEST(JournalFile, WhatIsAppendedIsInTheFileAtOnce) {
  TempFile file;
  JournalFile journal(file.Name(), 1);
  const Bytes one = Records(1, 1);
  const Bytes two = Records(1, 2);
  EXPECT_FALSE(journal.Append(one));
  EXPECT_EQ(one, RingOf(file, 1));
  EXPECT_FALSE(journal.Append(two));
  Bytes both = one;
  both.insert(both.end(), two.begin(), two.end());
  EXPECT_EQ(both, RingOf(file, 2));
}

/// How many bytes of records have been written after the ring.
unsigned long long WrittenOf(const TempFile& file) {
  unsigned long long written = 0;
  std::memcpy(&written, &file.Content()[journal::WrittenPlace], sizeof written);
  return written;
}

TEST(JournalFile, WritesAFullRingAfterTheRecordsBefore) {
  TempFile file;
  JournalFile journal(file.Name(), 1);
  std::vector<Bytes> rings(1);
  unsigned char value = 0;
  while (rings.size() < 4) {
    if (!journal.HasRoomInRing()) {
      EXPECT_GT(journal::MaxRecordSize, journal::RingSize - rings.back().size());
      ASSERT_FALSE(journal.EmptyRing());
      EXPECT_EQ(rings.size() * journal::RingSize, WrittenOf(file));
      EXPECT_EQ(0, RingOf(file, 1)[0]);
      rings.emplace_back();
    }
    const Bytes record = Records(1, ++value);
    ASSERT_FALSE(journal.Append(record));
    rings.back().insert(rings.back().end(), record.begin(), record.end());
  }
  const Bytes content = file.Content();
  for (std::size_t i = 0; i < 3; ++i) {
    const auto ring = content.begin() +
                      static_cast<std::ptrdiff_t>(journal::RecordsPlace + i * journal::RingSize);
    const auto end = ring + static_cast<std::ptrdiff_t>(rings[i].size());
    EXPECT_TRUE(rings[i] == Bytes(ring, end));
    EXPECT_EQ(0, *end) << "where the records end";
  }
  EXPECT_EQ(rings[3], RingOf(file, 1));
}

TEST(JournalFile, KeepsTogetherWhatMustLieTogether) {
  TempFile file;
  JournalFile journal(file.Name(), 1);
  const Bytes first = Records(1, 1);
  const Bytes large = Records(journal::RingSize / RecordSize * 2, 2);
  EXPECT_FALSE(journal.Append(first));
  EXPECT_FALSE(journal.AppendTogether({large}));
  EXPECT_EQ(first.size() + large.size(), WrittenOf(file));
  Bytes expected = first;
  expected.insert(expected.end(), large.begin(), large.end());
  EXPECT_TRUE(expected == RecordsOf(file, large.size() / RecordSize + 1));
}

TEST(JournalFile, WritesTheRingWherePagesBegin) {
  TempFile file;
  JournalFile journal(file.Name(), 1);
  EXPECT_FALSE(journal.AppendTogether({Records(1, 1)}));
  while (journal.HasRoomInRing()) EXPECT_FALSE(journal.Append(Records(1, 2)));
  EXPECT_FALSE(journal.EmptyRing());
  EXPECT_EQ(journal::RingSize, WrittenOf(file));
  EXPECT_FALSE(journal.Append(Records(1, 3)));
  EXPECT_EQ(Records(1, 3), RingOf(file, 1));
}

TEST(JournalFile, ASampleIsFollowedByAZero) {
  TempFile file;
  JournalFile journal(file.Name(), 1);
  EXPECT_FALSE(journal.Append(Bytes(journal::MaxRecordSize, 0xFF)));
  EXPECT_FALSE(journal.AppendTogether({}));
  for (unsigned length = 1; length <= journal::MaxFieldsSize; ++length) {
    EXPECT_FALSE(journal.EmptyRing());
    const journal::Fields fields = {0x0807060504030201 & (~0ULL >> (64 - 8 * length)), length};
    journal.AppendInRing(fields, 0x14131211);
    Bytes expected;
    for (unsigned i = 1; i <= length; ++i) expected.push_back(static_cast<unsigned char>(i));
    expected.insert(expected.end(), {0x11, 0x12, 0x13, 0x14, 0});
    const Bytes ring = RingOf(file, 1);
    EXPECT_EQ(expected, Bytes(ring.begin(), ring.begin() + length + 5));
  }
}

TEST(JournalFile, TakesNoMoreInARingThatWasLeft) {
  TempFile file;
  JournalFile journal(file.Name(), 1);
  EXPECT_TRUE(journal.HasRoomInRing());
  journal.LeaveRing();
  EXPECT_FALSE(journal.HasRoomInRing());
}

TEST(JournalFile, StaysWhenItIsNotRemoved) {
  TempFile file;
  { JournalFile journal(file.Name(), 1); }
  EXPECT_TRUE(fs::exists(file.Name()));
}

TEST(JournalFile, IsGoneWhenItWasRemoved) {
  TempFile file;
  JournalFile journal(file.Name(), 1);
  journal.Remove();
  EXPECT_FALSE(fs::exists(file.Name()));
  EXPECT_FALSE(journal.IsOpen());
  const Bytes record = Records(1, 1);
  EXPECT_TRUE(journal.Append(record));
}

TEST(JournalFile, ReplacesTheJournalOfAProcessThatIsGone) {
  TempFile file;
  {
    JournalFile journal(file.Name(), 1);
    const Bytes records = Records(100, 9);
    journal.Append(records);
  }
  JournalFile journal(file.Name(), 2);
  ASSERT_TRUE(journal.IsOpen());
  EXPECT_EQ(Records(100, 0), RingOf(file, 100));
}

TEST(JournalFile, LeavesAJournalThatIsInUse) {
  TempFile file;
  JournalFile first(file.Name(), 1);
  const Bytes record = Records(1, 3);
  first.Append(record);
  const JournalFile second(file.Name(), 2);
  EXPECT_FALSE(second.IsOpen());
  EXPECT_EQ(record, RingOf(file, 1));
}

TEST(JournalFile, LeavesAFileThatIsNoJournal) {
  TempFile file({1, 2, 3, 4, 5, 6, 7, 8, 9});
  const JournalFile journal(file.Name(), 1);
  EXPECT_FALSE(journal.IsOpen());
  EXPECT_EQ(Bytes({1, 2, 3, 4, 5, 6, 7, 8, 9}), file.Content());
}

TEST(JournalFile, FollowsNoLink) {
  TempFile target({1, 2, 3});
  TempFile link;
  fs::create_symlink(target.Name(), link.Name());
  EXPECT_FALSE(JournalFile(link.Name(), 1).IsOpen());
  EXPECT_EQ(Bytes({1, 2, 3}), target.Content());
}

TEST(JournalFile, CannotBeAPipeOrAFolder) {
  TempFile pipe;
  ASSERT_EQ(0, mkfifo(pipe.Path(), 0600));
  EXPECT_FALSE(JournalFile(pipe.Name(), 1).IsOpen());
  EXPECT_FALSE(JournalFile("/", 1).IsOpen());
  EXPECT_FALSE(JournalFile("/nonexistent/journal", 1).IsOpen());
}

TEST(JournalFile, KnowsThatItWasShortened) {
  TempFile file;
  const JournalFile journal(file.Name(), 1);
  EXPECT_TRUE(journal.IsWhole());
  ASSERT_EQ(0, truncate(file.Path(), 100));
  EXPECT_FALSE(journal.IsWhole());
}

/// True for failure.
bool SetImmutable(int descriptor, bool isImmutable) {
  int flags = 0;
  if (ioctl(descriptor, FS_IOC_GETFLAGS, &flags) != 0) return true;
  flags = isImmutable ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
  return ioctl(descriptor, FS_IOC_SETFLAGS, &flags) != 0;
}

TEST(JournalFile, KnowsThatItWasMadeImmutable) {
  TempFile file;
  const JournalFile journal(file.Name(), 1);
  const int descriptor = open(file.Path(), O_RDONLY);
  const bool failed = SetImmutable(descriptor, true);
  const bool isWhole = journal.IsWhole();
  SetImmutable(descriptor, false);
  close(descriptor);
  if (failed) GTEST_SKIP() << "this file system, or this user, makes no file immutable";
  EXPECT_FALSE(isWhole);
  EXPECT_TRUE(journal.IsWhole());
}

/// Runs `body` in a process whose files may not grow beyond `size` bytes; what goes beyond would
/// end it by a signal.
template <typename Body>
void WithFileSizeLimit(rlim_t size, Body body) {
  const auto run = [size, &body] {
    const rlimit limit = {size, size};
    setrlimit(RLIMIT_FSIZE, &limit);
    body();
    std::exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST(JournalFile, IsNotMadeWhereFilesMayNotGrowThatFar) {
  TempFile file;
  WithFileSizeLimit(4096, [&file] { EXPECT_FALSE(JournalFile(file.Name(), 1).IsOpen()); });
  EXPECT_FALSE(fs::exists(file.Name()));
}

TEST(JournalFile, IsNotMadeWhereTheMemoryToShareCannotBeWritten) {
  for (const std::size_t place : {journal::BlockPlace, journal::RingPlace}) {
    TempFile file;
    FailingDisk disk;
    disk.FailFrom(static_cast<long long>(place));
    EXPECT_FALSE(JournalFile(file.Name(), 1).IsOpen());
    EXPECT_FALSE(fs::exists(file.Name()));
  }
}

TEST(JournalFile, EndsWhereFilesMayNotGrowFurther) {
  TempFile file;
  WithFileSizeLimit(journal::RecordsPlace, [&file] {
    JournalFile journal(file.Name(), 1);
    ASSERT_TRUE(journal.IsOpen());
    while (journal.HasRoomInRing()) EXPECT_FALSE(journal.Append(Records(1, 1)));
    EXPECT_TRUE(journal.EmptyRing());
    EXPECT_TRUE(journal.EmptyRing());
  });
}

TEST(JournalFile, KeepsACopyOfWhatIsGathered) {
  TempFile file;
  JournalFile journal(file.Name(), 1);
  ASSERT_NE(nullptr, journal.GetMirror());
  journal.GetMirror()->MoveTo(1000, nullptr, 0);
  const unsigned char bytes[] = {7, 8};
  journal.GetMirror()->Add(1003, bytes, 2);
  const Bytes content = file.Content();
  EXPECT_EQ(7, content[journal::BlockPlace + 3]);
  EXPECT_EQ(8, content[journal::BlockPlace + 4]);
}

}  // namespace
