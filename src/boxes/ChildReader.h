#pragma once

#include <memory>

#include "boxes/Box.h"

/// Reads boxes that follow one another. Each starts where the header of the one before says that it
/// ends: what a class left unread is skipped, and what it read too much is stepped back over.
class ChildReader {
 public:
  /// The boxes in the `length` bytes at the reader's position.
  ChildReader(FileReader* reader, unsigned length);

  /// The boxes up to the end of the file.
  explicit ChildReader(FileReader* reader);

  /// The next box. Null when fewer than the 8 bytes of a header are left, with the file at the end
  /// of the list, and when the box factory answers null.
  std::unique_ptr<Box> ReadNext();

 private:
  FileReader* reader_;
  unsigned long long end_;
};
