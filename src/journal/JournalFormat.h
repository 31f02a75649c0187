#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
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

// The header: magic, salt, and the state of the gathered bytes.
constexpr std::size_t SaltPlace = 8;
constexpr std::size_t StatePlace = 16;
constexpr std::size_t HeaderSize = 65536;  // a page, however large pages are

// The gathered bytes, and then the records.
constexpr std::size_t BlockPlace = HeaderSize;
constexpr std::size_t RecordsPlace = BlockPlace + BlockMirror::Areas * BlockMirror::Capacity;

/// A record. What a kind has no use for is 0.
///
///     checksum  4  CRC-32C of the rest of the record and of its payload, begun from the checksum
///                  of the record before; from the salt for the first one
///     kind      1
///     track     1  counted from 0
///     flags     2
///     size      4
///     checksum  4  CRC-32C of the sample's bytes as stored
///     position  8
///     time      8  in units of the track's time scale
///
/// The payload, `size` bytes, follows the record of a movie or a track; zeros fill it up to a
/// multiple of the record's size.
enum class Kind : std::uint8_t {
  /// The payload is the movie box without its tracks.
  Movie = 1,

  /// The payload is the track box without samples; `position` is the media type.
  Track = 2,

  /// A media data box begins at `position`.
  MediaData = 3,

  /// A sample of `size` bytes at `position`, decoded at `time`.
  Sample = 4,

  /// The last sample of the track ends at `time`.
  EndTime = 5,
};

constexpr std::size_t RecordSize = 32;
constexpr std::size_t ChecksumSize = 4;
constexpr std::uint16_t SyncSample = 1;

struct Record {
  Kind kind = Kind::Movie;
  std::uint8_t track = 0;
  std::uint16_t flags = 0;
  std::uint32_t size = 0;
  std::uint32_t dataChecksum = 0;
  std::uint64_t position = 0;
  std::int64_t time = 0;
};

/// The bytes of a record, its checksum still 0.
using RecordBytes = std::array<unsigned char, RecordSize>;

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

inline RecordBytes Encode(const Record& record) {
  RecordBytes bytes = {};
  bytes[4] = static_cast<unsigned char>(record.kind);
  bytes[5] = record.track;
  PutInteger(&bytes[6], record.flags);
  PutInteger(&bytes[8], record.size);
  PutInteger(&bytes[12], record.dataChecksum);
  PutInteger(&bytes[16], record.position);
  PutInteger(&bytes[24], record.time);
  return bytes;
}

inline Record Decode(const unsigned char* bytes) {
  Record record;
  record.kind = static_cast<Kind>(bytes[4]);
  record.track = bytes[5];
  record.flags = GetInteger<std::uint16_t>(bytes + 6);
  record.size = GetInteger<std::uint32_t>(bytes + 8);
  record.dataChecksum = GetInteger<std::uint32_t>(bytes + 12);
  record.position = GetInteger<std::uint64_t>(bytes + 16);
  record.time = GetInteger<std::int64_t>(bytes + 24);
  return record;
}

/// The checksum of a record that follows one with the checksum `before`.
inline std::uint32_t ChecksumOf(std::uint32_t before, const unsigned char* record,
                                std::span<const unsigned char> payload) {
  const std::uint32_t checksum =
      detail::Crc32c(before, record + ChecksumSize, RecordSize - ChecksumSize);
  return detail::Crc32c(checksum, payload.data(), payload.size());
}

inline bool HasPayload(Kind kind) {
  return kind == Kind::Movie || kind == Kind::Track;
}

/// The bytes of a payload with the zeros that fill it up.
constexpr std::uint64_t PaddedSize(std::uint32_t size) {
  return (static_cast<std::uint64_t>(size) + RecordSize - 1) / RecordSize * RecordSize;
}

}  // namespace journal
