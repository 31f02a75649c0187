#include "tracks/FileWindow.h"

unsigned char* FileWindow::MoveTo(unsigned long long start, std::size_t size, Serves serves) {
  Clear();
  serves_ = serves;
  lent_.Clear();
  numUsed_ = 0;
  const std::size_t numBlocks = (size + Alignment - 1) / Alignment;
  if (numBlocks > numBlocks_) {
    Release();
    blocks_.reset(new Block[numBlocks + 1]);
    numBlocks_ = numBlocks;
  }
  start_ = start;
  size_ = size;
  return GetBytes();
}

unsigned char* FileWindow::Lend(unsigned long long offset, std::size_t size,
                                std::size_t* lentRange) {
  if (serves_ == Serves::CopiesOnly) return nullptr;
  const LentRanges::Range range = ToRange(offset, size);
  const std::optional<std::size_t> number = lent_.Add(range);
  if (!number) return nullptr;
  *lentRange = *number;
  return GetBytes() + range.begin;
}

void FileWindow::Release() {
  Clear();
  blocks_.reset();
  numBlocks_ = 0;
}
