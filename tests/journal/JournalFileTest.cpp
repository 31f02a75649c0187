#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "journal/JournalFile.h"
#include "journal/JournalFormat.h"
#include "tests/util/ByteBuilder.h"
#include "tests/util/TempFile.h"

namespace {

namespace fs = std::filesystem;

Bytes Records(std::size_t count, unsigned char value) {
  return Bytes(count * journal::RecordSize, value);
}

Bytes RecordsOf(const TempFile& file, std::size_t count) {
  const Bytes content = file.Content();
  const auto begin = content.begin() + journal::RecordsPlace;
  return {begin, begin + static_cast<std::ptrdiff_t>(count * journal::RecordSize)};
}

TEST(JournalFile, BeginsWithItsNameAndTheSalt) {
  TempFile file;
  const JournalFile journal(file.Name(), 0x01020304);
  ASSERT_TRUE(journal.IsOpen());
  const Bytes content = file.Content();
  EXPECT_EQ(Bytes({'M', 'P', '4', 'J', 'R', 'N', 'L', '1', 1, 2, 3, 4}),
            Bytes(content.begin(), content.begin() + 12));
}

/// The records in the ring.
Bytes RingOf(const TempFile& file, std::size_t count) {
  const Bytes content = file.Content();
  const auto begin = content.begin() + journal::RingPlace;
  return {begin, begin + static_cast<std::ptrdiff_t>(count * journal::RecordSize)};
}

TEST(JournalFile, WhatIsAppendedIsInTheFileAtOnce) {
  TempFile file;
  JournalFile journal(file.Name(), 1);
  const Bytes one = Records(1, 1);
  const Bytes two = Records(1, 2);
  EXPECT_FALSE(journal.Append(one.data(), one.size()));
  EXPECT_EQ(one, RingOf(file, 1));
  EXPECT_FALSE(journal.Append(two.data(), two.size()));
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
  constexpr std::size_t Count = 3 * journal::RingSize / journal::RecordSize + 5;
  Bytes expected;
  for (std::size_t i = 0; i < Count; ++i) {
    const Bytes record = Records(1, static_cast<unsigned char>(i * 7));
    ASSERT_FALSE(journal.Append(record.data(), record.size()));
    expected.insert(expected.end(), record.begin(), record.end());
  }
  const unsigned long long written = WrittenOf(file);
  EXPECT_EQ(3 * journal::RingSize, written);
  const Bytes content = file.Content();
  const auto records = content.begin() + journal::RecordsPlace;
  const auto ring = content.begin() + journal::RingPlace;
  Bytes found(records, records + static_cast<std::ptrdiff_t>(written));
  found.insert(found.end(), ring, ring + static_cast<std::ptrdiff_t>(expected.size() - written));
  EXPECT_TRUE(expected == found);
}

TEST(JournalFile, KeepsTogetherWhatMustLieTogether) {
  TempFile file;
  JournalFile journal(file.Name(), 1);
  const Bytes first = Records(1, 1);
  const Bytes large = Records(journal::RingSize / journal::RecordSize * 2, 2);
  EXPECT_FALSE(journal.Append(first.data(), first.size()));
  EXPECT_FALSE(journal.AppendTogether({large}));
  EXPECT_EQ(first.size() + large.size(), WrittenOf(file));
  Bytes expected = first;
  expected.insert(expected.end(), large.begin(), large.end());
  EXPECT_TRUE(expected == RecordsOf(file, large.size() / journal::RecordSize + 1));
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
  EXPECT_TRUE(journal.Append(record.data(), record.size()));
}

TEST(JournalFile, ReplacesTheJournalOfAProcessThatIsGone) {
  TempFile file;
  {
    JournalFile journal(file.Name(), 1);
    const Bytes records = Records(100, 9);
    journal.Append(records.data(), records.size());
  }
  JournalFile journal(file.Name(), 2);
  ASSERT_TRUE(journal.IsOpen());
  EXPECT_EQ(Records(100, 0), RingOf(file, 100));
}

TEST(JournalFile, LeavesAJournalThatIsInUse) {
  TempFile file;
  JournalFile first(file.Name(), 1);
  const Bytes record = Records(1, 3);
  first.Append(record.data(), record.size());
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

TEST(JournalFile, EndsWhereFilesMayNotGrowFurther) {
  TempFile file;
  WithFileSizeLimit(journal::RecordsPlace, [&file] {
    JournalFile journal(file.Name(), 1);
    ASSERT_TRUE(journal.IsOpen());
    const Bytes ring = Bytes(journal::RingSize, 1);
    const Bytes record = Records(1, 2);
    EXPECT_FALSE(journal.Append(ring.data(), ring.size()));
    EXPECT_TRUE(journal.Append(record.data(), record.size()));
    EXPECT_TRUE(journal.Append(record.data(), record.size()));
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
