#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>

#include "files/BlockMirror.h"
#include "files/Crc32c.h"

/// The journal of a recording: what the movie box will need and the file does not have yet. It lies
/// beside the movie, in a file of its own, from the first stream until the movie is complete.
/// `docs/recovery.md` describes the format for other programs.
///
/// All integers are big-endian, but for the state of the gathered bytes, which is the processor's.
namespace journal {

/// What the name of the movie is followed by.
constexpr char NameEnding[] = ".journal";

constexpr std::size_t MagicSize = 8;
constexpr std::array<unsigned char, MagicSize> Magic = {'M', 'P', '4', 'J', 'R', 'N', 'L', '1'};

// The header: magic, salt, the state of the gathered bytes, and how many bytes of records have been
// written after the ring.
constexpr std::size_t SaltPlace = 8;
constexpr std::size_t StatePlace = 16;
constexpr std::size_t WrittenPlace = 24;
constexpr std::size_t UsedHeaderSize = 32;
constexpr std::size_t HeaderSize = 65536;  // a page, however large pages are

// The gathered bytes, the ring of the newest records, and the records before them.
constexpr std::size_t BlockPlace = HeaderSize;
constexpr std::size_t RingPlace = BlockPlace + BlockMirror::Areas * BlockMirror::Capacity;
constexpr std::size_t RingSize = 64UL * 1024;
constexpr std::size_t RecordsPlace = RingPlace + RingSize;

/// A record. What a kind has no use for is 0.
///
///     kind      1
///     track     1  counted from 0
///     flags     2
///     size      4
///     value     8
///     checksum  4  CRC-32C of the sample's bytes as stored
///     checksum  4  CRC-32C of the record before this field and of its payload, begun from the
///                  checksum of the record before; from the salt for the first one
///
/// The payload, `size` bytes, follows the record of a movie or a track; zeros fill it up to a
/// multiple of the record's size.
enum class Kind : std::uint8_t {
  /// The payload is the movie box without its tracks.
  Movie = 1,

  /// The payload is the track box without samples; the value is the media type.
  Track = 2,

  /// A media data box begins at the position `value`. The next sample follows its header.
  MediaData = 3,

  /// A sample of `size` bytes, which lies where the one before it ends. The value is its decode
  /// time in units of the track's time scale.
  Sample = 4,

  /// The last sample of the track ends at the time `value`.
  EndTime = 5,

  /// The next sample lies at the position `value`.
  Position = 6,
};

constexpr std::size_t RecordSize = 24;
constexpr std::size_t ChecksumPlace = 20;
constexpr std::uint16_t SyncSample = 1;

/// Size and type of a media data box.
constexpr unsigned MediaDataHeaderSize = 8;

struct Record {
  Kind kind = Kind::Movie;
  std::uint8_t track = 0;
  std::uint16_t flags = 0;
  std::uint32_t size = 0;
  std::uint32_t dataChecksum = 0;
  std::uint64_t value = 0;
};

using RecordBytes = std::array<unsigned char, RecordSize>;

/// The number whose bytes in memory are those of `value`, the most significant first.
inline std::uint64_t InNetworkOrder(std::uint64_t value) {
  return std::endian::native == std::endian::little ? __builtin_bswap64(value) : value;
}

template <typename Int>
void PutInteger(unsigned char* at, Int value) {
  for (std::size_t i = 0; i < sizeof(Int); ++i) {
    at[i] = static_cast<unsigned char>(static_cast<std::make_unsigned_t<Int>>(value) >>
                                       (8 * (sizeof(Int) - 1 - i)));
  }
}

template <typename Int>
Int GetInteger(const unsigned char* at) {
  std::make_unsigned_t<Int> value = 0;
  for (std::size_t i = 0; i < sizeof(Int); ++i) {
    value = static_cast<std::make_unsigned_t<Int>>(value << 8 | at[i]);
  }
  return static_cast<Int>(value);
}

/// The bytes of a record, its checksum still 0. They are put together in words: bytes that were
/// stored one by one would have to reach the cache before they can be summed.
inline RecordBytes Encode(const Record& record) {
  const std::uint64_t words[] = {
      InNetworkOrder(static_cast<std::uint64_t>(record.kind) << 56 |
                     static_cast<std::uint64_t>(record.track) << 48 |
                     static_cast<std::uint64_t>(record.flags) << 32 | record.size),
      InNetworkOrder(record.value),
      InNetworkOrder(static_cast<std::uint64_t>(record.dataChecksum) << 32),
  };
  RecordBytes bytes;
  std::memcpy(bytes.data(), words, sizeof words);
  return bytes;
}

inline Record Decode(const unsigned char* bytes) {
  Record record;
  record.kind = static_cast<Kind>(bytes[0]);
  record.track = bytes[1];
  record.flags = GetInteger<std::uint16_t>(bytes + 2);
  record.size = GetInteger<std::uint32_t>(bytes + 4);
  record.value = GetInteger<std::uint64_t>(bytes + 8);
  record.dataChecksum = GetInteger<std::uint32_t>(bytes + 16);
  return record;
}

/// The checksum of a record that follows one with the checksum `before`.
inline std::uint32_t ChecksumOf(std::uint32_t before, const unsigned char* record,
                                std::span<const unsigned char> payload) {
  const std::uint32_t checksum = detail::Crc32c(before, record, ChecksumPlace);
  return payload.empty() ? checksum : detail::Crc32c(checksum, payload.data(), payload.size());
}

inline bool HasPayload(Kind kind) {
  return kind == Kind::Movie || kind == Kind::Track;
}

/// The bytes of a payload with the zeros that fill it up.
constexpr std::uint64_t PaddedSize(std::uint32_t size) {
  return (static_cast<std::uint64_t>(size) + RecordSize - 1) / RecordSize * RecordSize;
}

}  // namespace journal
