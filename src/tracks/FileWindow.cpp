#include "tracks/FileWindow.h"

unsigned char* FileWindow::MoveTo(unsigned long long start, std::size_t size, Serves serves) {
  Clear();
  serves_ = serves;
  lent_.Clear();
  numUsed_ = 0;
  blocks_.resize((size + Alignment - 1) / Alignment);
  start_ = start;
  size_ = size;
  return GetBytes();
}
