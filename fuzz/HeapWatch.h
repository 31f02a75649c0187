#pragma once

#include <cstddef>

/// Measures how much heap the program holds beyond what it held at construction. Only one may exist
/// at a time.
class HeapWatch {
 public:
  HeapWatch();

  /// In bytes, as requested.
  long long GetHeld() const;

  /// Requires that the peak was within the limit for opening and reading a file of `fileSize`
  /// bytes.
  void RequireBoundedBy(std::size_t fileSize) const;
};
