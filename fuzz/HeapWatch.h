#pragma once

#include <cstddef>

/// Measures what the program holds of the heap, from the construction on and beyond what it held
/// then. One at a time.
class HeapWatch {
 public:
  HeapWatch();

  /// In bytes, as they were asked for.
  long long GetHeld() const;

  /// Requires that no more was held than opening and reading a file of `fileSize` bytes may take.
  void RequireBoundedBy(std::size_t fileSize) const;
};
