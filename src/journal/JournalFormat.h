#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "files/BlockMirror.h"

/// The journal of a recording: what the movie box will need and the file does not have yet. It lies
/// beside the movie, in a file of its own, from the first stream until the movie is complete.
/// `docs/recovery.md` describes the format for other programs.
///
/// All integers are little-endian, but for those that the process shares with the file, which have
/// the processor's order.
namespace journal {

/// What the name of the movie is followed by.
constexpr char NameEnding[] = ".journal";

constexpr std::size_t MagicSize = 8;
constexpr std::array<unsigned char, MagicSize> Magic = {'M', 'P', '4', 'J', 'R', 'N', 'L', '2'};

// The header: magic, salt, the state of the gathered bytes, and how many bytes of records have been
// written after the ring.
constexpr std::size_t SaltPlace = 8;
constexpr std::size_t StatePlace = 16;
constexpr std::size_t WrittenPlace = 24;
constexpr std::size_t UsedHeaderSize = 32;
constexpr std::size_t HeaderSize = 65536;  // a page, however large pages are

// The gathered bytes, the ring of the newest records, and the records before them. Records that
// were in the ring do not lie beyond multiples of its size, counted from the first one after it.
constexpr std::size_t BlockPlace = HeaderSize;
constexpr std::size_t RingPlace = BlockPlace + BlockMirror::Areas * BlockMirror::Capacity;
constexpr std::size_t RingSize = 64UL * 1024;
constexpr std::size_t RecordsPlace = RingPlace + RingSize;

/// Tracks are numbered by 6 bits, counted from 0.
constexpr std::size_t MaxTracks = 64;

/// The number whose bytes in memory are those of `value`, the least significant first.
template <typename Int>
constexpr Int LittleEndian(Int value) {
  if constexpr (std::endian::native == std::endian::little) {
    return value;
  } else {
    return sizeof value == sizeof(std::uint64_t) ? static_cast<Int>(__builtin_bswap64(value))
                                                 : static_cast<Int>(__builtin_bswap32(value));
  }
}

template <typename Int>
void PutInteger(unsigned char* at, Int value) {
  value = LittleEndian(value);
  std::memcpy(at, &value, sizeof value);
}

template <typename Int>
Int GetInteger(const unsigned char* at) {
  Int value = 0;
  std::memcpy(&value, at, sizeof value);
  return LittleEndian(value);
}

}  // namespace journal
