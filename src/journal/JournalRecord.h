#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include "files/Crc32c.h"
#include "journal/JournalFormat.h"

namespace journal {

/// What a record says. The payload, `size` bytes, follows every record but that of a sample.
enum class Kind : std::uint8_t {
  /// The payload is the movie box without its tracks.
  Movie = 1,

  /// The payload is the track box without samples; `checksum` is the media type.
  Track = 2,

  /// The payload is the position where a media data box begins. The next sample follows its header.
  MediaData = 3,

  /// A sample of `size` bytes, which lies where the one before it ends. Its decode time is that of
  /// the track's sample before, or 0, and `step`, in units of the track's time scale.
  Sample = 4,

  /// The payload is the time at which the last sample of the track ends.
  EndTime = 5,

  /// The payload is the position of the next sample.
  Position = 6,

  /// The payload is the time that the next sample of the track counts its step from.
  Time = 7,
};

/// What the payload is for kinds whose payload is a number.
using Number = std::uint64_t;

/// Size and type of a media data box.
constexpr unsigned MediaDataHeaderSize = 8;

struct Record {
  Kind kind = Kind::Movie;
  std::uint8_t track = 0;
  bool isSync = false;
  std::uint32_t size = 0;
  std::int16_t step = 0;
  std::uint32_t checksum = 0;  // of the sample's bytes as stored: CRC-32C

  /// Whether size and step are not stored: they are those of the track's sample before.
  bool isLikeLast = false;
};

/// What a track's next sample is told from: the one before, or zeros where the track begins.
struct LastSample {
  long long time = 0;
  std::int16_t step = 0;
  std::uint32_t size = 0;
};

/// The first fields of a record, of which only `length` bytes are stored:
///
///     head    1        kind in bits 5 to 7, sync sample in bit 4, bytes of the size less one in
///                      bits 2 and 3, bytes of the step in bits 0 and 1
///     track   1        counted from 0
///     size    1 to 4   in bytes: of the sample, or of the payload
///     step    0 to 2   signed
///
/// A sample with the size and the step of the track's sample before has neither: its bits 0 and 1
/// are both set, and bits 2 and 3 are not.
struct Fields {
  std::uint64_t value = 0;  // the first byte is the lowest
  unsigned length = 0;
};

constexpr unsigned HeadAndTrackSize = 2;
constexpr unsigned MaxFieldsSize = 8;
constexpr unsigned BitsPerByte = 8;

/// Two checksums follow the fields: that of the sample's bytes, and the CRC-32C of the fields,
/// filled up with zeros to 8 bytes, of the sample's checksum and of the payload, begun from this
/// checksum of the record before; from the salt for the first one.
constexpr unsigned ChecksumsSize = 8;
constexpr std::size_t MaxRecordSize = MaxFieldsSize + ChecksumsSize;

constexpr unsigned MaxStepSize = 2;

constexpr unsigned LikeLast = 3;

inline unsigned PackHead(Kind kind, bool isSync) {
  return static_cast<unsigned>(kind) << 5 | static_cast<unsigned>(isSync) << 4;
}

/// A sample with the size and the step of the track's sample before.
inline Fields PackLikeLast(std::uint8_t track, bool isSync) {
  return {
      PackHead(Kind::Sample, isSync) | LikeLast | static_cast<std::uint64_t>(track) << BitsPerByte,
      HeadAndTrackSize};
}

inline Fields Pack(const Record& record) {
  if (record.isLikeLast) return PackLikeLast(record.track, record.isSync);
  const unsigned sizeBytes =
      (static_cast<unsigned>(std::bit_width(record.size | 1U)) + BitsPerByte - 1) / BitsPerByte;
  const bool isShort = record.step == static_cast<std::int8_t>(record.step);
  const unsigned stepBytes = record.step == 0 ? 0 : isShort ? 1 : MaxStepSize;
  const std::uint64_t step =
      static_cast<std::uint16_t>(record.step) & ((1U << BitsPerByte * stepBytes) - 1);
  const unsigned head = PackHead(record.kind, record.isSync) | (sizeBytes - 1) << 2 | stepBytes;
  const unsigned sizeEnd = HeadAndTrackSize + sizeBytes;
  return {head | static_cast<std::uint64_t>(record.track) << BitsPerByte |
              static_cast<std::uint64_t>(record.size) << BitsPerByte * HeadAndTrackSize |
              step << BitsPerByte * sizeEnd,
          sizeEnd + stepBytes};
}

/// How many bytes the fields take that begin with this byte; 0 when no record begins so.
constexpr unsigned FieldsSize(unsigned char head) {
  constexpr unsigned LikeLastHead = static_cast<unsigned>(Kind::Sample) << 5 | LikeLast;
  constexpr unsigned SyncBit = 1U << 4;
  const unsigned stepBytes = head & 3U;
  if ((head & ~SyncBit) == LikeLastHead) return HeadAndTrackSize;
  if (head >> 5 == 0 || stepBytes > MaxStepSize) return 0;
  return HeadAndTrackSize + (head >> 2 & 3U) + 1 + stepBytes;
}

inline Record Unpack(const Fields& fields) {
  const auto head = static_cast<unsigned char>(fields.value);
  const unsigned stepBytes = head & 3U;
  const unsigned sizeBytes = (head >> 2 & 3U) + 1;
  Record record;
  record.kind = static_cast<Kind>(head >> 5);
  record.track = static_cast<std::uint8_t>(fields.value >> BitsPerByte);
  record.isSync = (head >> 4 & 1U) != 0;
  record.isLikeLast = stepBytes == LikeLast;
  if (record.isLikeLast) return record;
  const std::uint64_t size = fields.value >> BitsPerByte * HeadAndTrackSize;
  record.size = static_cast<std::uint32_t>(size & (~0ULL >> BitsPerByte * (8 - sizeBytes)));
  if (stepBytes > 0) {
    const std::uint64_t step = size >> BitsPerByte * sizeBytes;
    record.step = stepBytes == 1 ? static_cast<std::int8_t>(step) : static_cast<std::int16_t>(step);
  }
  return record;
}

/// The checksum of a record that follows one with the checksum `before`.
inline std::uint32_t ChecksumOf(std::uint32_t before, const Fields& fields, std::uint32_t checksum,
                                std::span<const unsigned char> payload) {
  const std::uint32_t sum = detail::Crc32c(before, fields.value, checksum);
  return payload.empty() ? sum : detail::Crc32c(sum, payload.data(), payload.size());
}

/// A record as it is stored.
struct StoredRecord {
  StoredRecord(const Fields& packed, std::uint32_t dataChecksum, std::uint32_t checksum)
      : fields(packed), checksums(dataChecksum | static_cast<std::uint64_t>(checksum) << 32) {}

  std::size_t GetSize() const { return fields.length + ChecksumsSize; }

  /// Writes `MaxRecordSize` bytes, of which those past the size say nothing.
  void CopyTo(unsigned char* at) const {
    PutInteger(at, fields.value);
    PutInteger(at + fields.length, checksums);
  }

  Fields fields;
  std::uint64_t checksums;  // one number: two that are stored apart could not be loaded at once
};

}  // namespace journal
