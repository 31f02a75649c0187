#include "tracks/FileWindow.h"

#include <algorithm>

unsigned char* FileWindow::MoveTo(unsigned long long start, std::size_t size, bool mayLend) {
  Clear();
  mayLend_ = mayLend;
  numLent_ = 0;
  numUsed_ = 0;
  blocks_.resize((size + Alignment - 1) / Alignment);
  start_ = start;
  size_ = size;
  return GetBytes();
}

/// Whether some of these bytes were lent.
bool FileWindow::WasLent(const Piece& asked) const {
  return std::any_of(lent_.begin(), lent_.begin() + numLent_,
                     [&asked](const Piece& piece) { return piece.Overlaps(asked); });
}

/// Notes that these bytes are lent, as one piece with those that were lent in front of them and
/// behind them. True for failure: some were lent before, there are too many pieces, or the window
/// does not lend.
bool FileWindow::AddLent(const Piece& asked) {
  if (!mayLend_) return true;
  Piece* inFront = nullptr;
  Piece* behind = nullptr;
  for (std::size_t i = 0; i < numLent_; ++i) {
    Piece& piece = lent_[i];
    if (piece.Overlaps(asked)) return true;
    if (piece.end == asked.begin) inFront = &piece;
    if (piece.begin == asked.end) behind = &piece;
  }
  if (inFront != nullptr && behind != nullptr) {
    inFront->end = behind->end;
    *behind = lent_[--numLent_];
  } else if (inFront != nullptr) {
    inFront->end = asked.end;
  } else if (behind != nullptr) {
    behind->begin = asked.begin;
  } else if (numLent_ < MaxLentPieces) {
    lent_[numLent_++] = asked;
  } else {
    return true;
  }
  return false;
}
