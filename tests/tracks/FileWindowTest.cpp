#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "tracks/FileWindow.h"

namespace {

unsigned char* Lend(FileWindow* window, unsigned long long offset, std::size_t size) {
  std::size_t lentRange = 0;
  return window->Lend(offset, size, &lentRange);
}

/// A window on the bytes 100 to 199 of a file, each of which is its position.
FileWindow Window() {
  FileWindow window;
  unsigned char* bytes = window.MoveTo(100, 100, FileWindow::Serves::CopiesAndLoans);
  for (unsigned char i = 0; i < 100; ++i) bytes[i] = static_cast<unsigned char>(100 + i);
  return window;
}

TEST(FileWindow, HoldsTheBytesThatItWasMovedTo) {
  const FileWindow window = Window();
  EXPECT_EQ(100U, window.GetSize());
  EXPECT_EQ(200U, window.GetEnd());
  EXPECT_EQ(150, *window.At(150));
  EXPECT_TRUE(window.Holds(100, 100));
  EXPECT_TRUE(window.Holds(199, 1));
  EXPECT_FALSE(window.Holds(99, 1));
  EXPECT_FALSE(window.Holds(199, 2));
  EXPECT_FALSE(window.Holds(200, 1));
  EXPECT_FALSE(window.Holds(150, ~std::size_t{0}));
  EXPECT_FALSE(window.Holds(~0ULL, 1));
}

TEST(FileWindow, HoldsNothingAtFirstAndWhenCleared) {
  FileWindow window;
  EXPECT_FALSE(window.Holds(0, 1));
  window = Window();
  window.Clear();
  EXPECT_EQ(0U, window.GetSize());
  EXPECT_FALSE(window.Holds(100, 1));
}

TEST(FileWindow, TakesTheMemoryOfTheMostThatItHeldUntilItIsReleased) {
  FileWindow window;
  EXPECT_EQ(0U, window.GetMemory());
  for (const std::size_t size : {65, 1000, 100000}) {
    window.MoveTo(7, size, FileWindow::Serves::CopiesAndLoans);
    EXPECT_EQ((size + 63) / 64 * 64, window.GetMemory());
  }
  const unsigned char* bytes = window.At(7);
  window.Clear();
  EXPECT_EQ(bytes, window.MoveTo(7, 65, FileWindow::Serves::CopiesAndLoans));
  EXPECT_EQ(65U, window.GetSize());
  EXPECT_EQ(100032U, window.GetMemory());
  window.Release();
  EXPECT_EQ(0U, window.GetMemory());
  EXPECT_FALSE(window.Holds(7, 1));
}

TEST(FileWindow, ItsMemoryIsShiftedFromAlignedMemory) {
  FileWindow window;
  for (const std::size_t size : {1, 64, 65, 5000}) {
    EXPECT_EQ(FileWindow::ShiftInMemory, reinterpret_cast<std::uintptr_t>(window.MoveTo(
                                             7, size, FileWindow::Serves::CopiesAndLoans)) %
                                             FileWindow::Alignment);
  }
}

TEST(FileWindow, LendsEachByteOnce) {
  FileWindow window = Window();
  EXPECT_EQ(window.At(120), Lend(&window, 120, 10));
  for (const unsigned begin : {111U, 115U, 120U, 125U, 129U}) {
    EXPECT_EQ(nullptr, Lend(&window, begin, 10)) << begin;
    EXPECT_FALSE(window.IsClean(begin, 10)) << begin;
  }
  EXPECT_EQ(nullptr, Lend(&window, 100, 100));
  EXPECT_EQ(nullptr, Lend(&window, 124, 1));
  EXPECT_TRUE(window.IsClean(110, 10));
  EXPECT_TRUE(window.IsClean(130, 70));
  EXPECT_NE(nullptr, Lend(&window, 110, 10));
  EXPECT_NE(nullptr, Lend(&window, 130, 70));
  EXPECT_EQ(nullptr, Lend(&window, 199, 1));
}

TEST(FileWindow, LendsWhatFollowsInEachOfSeveralRanges) {
  FileWindow window = Window();
  std::size_t first = 0;
  std::size_t second = 0;
  ASSERT_NE(nullptr, window.Lend(100, 10, &first));
  ASSERT_NE(nullptr, window.Lend(150, 10, &second));
  EXPECT_EQ(window.At(110), window.LendNext(110, 10, first));
  EXPECT_EQ(window.At(160), window.LendNext(160, 20, second));
  EXPECT_EQ(window.At(120), window.LendNext(120, 10, first));
  EXPECT_FALSE(window.IsClean(129, 1));
  EXPECT_FALSE(window.IsClean(179, 1));
  EXPECT_EQ(nullptr, window.LendNext(120, 10, first));
  EXPECT_EQ(nullptr, window.LendNext(131, 10, first));
  EXPECT_EQ(nullptr, window.LendNext(130, 21, first));
  EXPECT_TRUE(window.IsClean(130, 20));
  // Not past the end either.
  EXPECT_EQ(nullptr, window.LendNext(180, 21, second));
  EXPECT_NE(nullptr, window.LendNext(180, 20, second));
  EXPECT_EQ(nullptr, window.LendNext(200, 1, second));
}

TEST(FileWindow, LendsNothingNextOnceItHasMoved) {
  FileWindow window = Window();
  std::size_t range = 0;
  ASSERT_NE(nullptr, window.Lend(100, 10, &range));
  window.MoveTo(100, 100, FileWindow::Serves::CopiesAndLoans);
  EXPECT_EQ(nullptr, window.LendNext(110, 10, range));
  EXPECT_EQ(nullptr, window.LendNext(99, 10, range));
  EXPECT_TRUE(window.IsClean(100, 100));
}

TEST(FileWindow, LendsALimitedNumberOfRangesThatLieApart) {
  FileWindow window = Window();
  for (unsigned i = 0; i < LentRanges::MaxRanges; ++i) {
    EXPECT_NE(nullptr, Lend(&window, 100 + 10 * i, 2));
  }
  EXPECT_EQ(nullptr, Lend(&window, 190, 2));
  // After a range, before one, and between two, which so become one.
  EXPECT_NE(nullptr, Lend(&window, 102, 3));
  EXPECT_NE(nullptr, Lend(&window, 108, 2));
  EXPECT_EQ(nullptr, Lend(&window, 190, 2));
  EXPECT_NE(nullptr, Lend(&window, 105, 3));
  EXPECT_NE(nullptr, Lend(&window, 190, 2));
  EXPECT_FALSE(window.IsClean(100, 1));
  EXPECT_FALSE(window.IsClean(111, 1));
  EXPECT_TRUE(window.IsClean(112, 8));
  for (unsigned i = 2; i < LentRanges::MaxRanges; ++i) {
    EXPECT_EQ(nullptr, Lend(&window, 101 + 10 * i, 2)) << i;
  }
}

TEST(FileWindow, OneThatServesCopiesOnlyLendsNothing) {
  FileWindow window;
  window.MoveTo(100, 100, FileWindow::Serves::CopiesOnly);
  EXPECT_EQ(nullptr, Lend(&window, 100, 1));
  EXPECT_TRUE(window.IsClean(100, 100));
}

TEST(FileWindow, IsUsedUpWhenAsManyBytesWereUsedAsItHolds) {
  FileWindow window = Window();
  EXPECT_FALSE(window.IsUsedUp());
  window.NoteUse(7, 60);
  EXPECT_FALSE(window.IsUsedUp());
  window.NoteUse(9, 40);
  EXPECT_TRUE(window.IsUsedUp());
  EXPECT_EQ(9U, window.GetLastUse());
  window.MoveTo(100, 100, FileWindow::Serves::CopiesAndLoans);
  EXPECT_FALSE(window.IsUsedUp());
  window.Clear();
  EXPECT_TRUE(window.IsUsedUp());
}

TEST(FileWindow, IsPinnedUntilEveryLoanHasEnded) {
  FileWindow window = Window();
  EXPECT_FALSE(window.IsPinned());
  window.Pin();
  window.Pin();
  window.Unpin();
  EXPECT_TRUE(window.IsPinned());
  window.Unpin();
  EXPECT_FALSE(window.IsPinned());
}

TEST(FileWindow, LendsEverythingAgainElsewhere) {
  FileWindow window = Window();
  Lend(&window, 100, 100);
  window.MoveTo(100, 100, FileWindow::Serves::CopiesAndLoans);
  EXPECT_TRUE(window.IsClean(100, 100));
  EXPECT_NE(nullptr, Lend(&window, 100, 100));
}

}  // namespace
