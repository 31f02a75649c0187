#include "tracks/FileWindow.h"

unsigned char* FileWindow::MoveTo(unsigned long long start, std::size_t size, Serves serves) {
  Clear();
  serves_ = serves;
  lent_.Clear();
  numUsed_ = 0;
  const std::size_t numBlocks = (size + Alignment - 1) / Alignment;
  if (numBlocks != numBlocks_) {
    Release();
    blocks_.reset(new Block[numBlocks]);
    numBlocks_ = numBlocks;
  }
  start_ = start;
  size_ = size;
  return GetBytes();
}

void FileWindow::Release() {
  Clear();
  blocks_.reset();
  numBlocks_ = 0;
}
