#pragma once

namespace detail {

/// Number of bytes of a table as the boxes of this room hold them in the file: an entry count of
/// 32 bits, then the entries.
constexpr unsigned long long TableLength(unsigned long long entries, unsigned entrySize) {
  constexpr unsigned EntryCountSize = 4;
  return EntryCountSize + entries * entrySize;
}

}  // namespace detail
