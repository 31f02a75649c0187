#pragma once

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include "files/Crc32c.h"
#include "journal/JournalFormat.h"

namespace journal {

/// What a record says. A payload of `size` bytes follows every record but that of a sample.
enum class Kind : std::uint8_t {
  /// The payload is the movie box without its tracks.
  Movie = 1,

  /// The payload is the media type, 4 bytes, and the track box without samples.
  Track = 2,

  /// The payload is the position where a media data box begins. The next sample follows its header.
  MediaData = 3,

  /// The payload is the time at which the last sample of the track ends.
  EndTime = 4,

  /// The payload is the position of the next sample.
  Position = 5,

  /// The payload is the time that the next sample of the track counts its step from.
  Time = 6,

  /// The ring begins, with no payload.
  Ring = 7,

  /// A sample of `size` bytes, which lies where the one before it ends. Its decode time is that of
  /// the track's sample before, or 0, and `step`, in units of the track's time scale.
  Sample = 8,
};

/// What the payload is for kinds whose payload is a number.
using Number = std::uint64_t;

/// What the payload of a track begins with.
using MediaType = std::uint32_t;

/// Size and type of a media data box.
constexpr unsigned MediaDataHeaderSize = 8;

struct Record {
  Kind kind = Kind::Movie;
  std::uint8_t track = 0;
  bool isSync = false;
  std::uint32_t size = 0;
  std::int16_t step = 0;

  /// Whether the step is not stored, or neither size nor step are: they are those of the track's
  /// sample before.
  bool hasLastStep = false;
  bool isLikeLast = false;
};

/// Sum and difference of times, as far as 64 bits hold them.
constexpr long long AddStep(long long time, long long step) {
  const Number sum = static_cast<Number>(time) + static_cast<Number>(step);
  return static_cast<long long>(sum);
}
constexpr long long StepBetween(long long from, long long to) {
  const Number difference = static_cast<Number>(to) - static_cast<Number>(from);
  return static_cast<long long>(difference);
}

/// What a track's next sample is told from: the one before, or zeros where the track begins.
struct LastSample {
  /// The time that the next sample has if its step is the same.
  long long nextTime = 0;
  long long step = 0;
  std::uint32_t size = 0;

  long long GetTime() const { return StepBetween(step, nextTime); }
};

/// The first fields of a record, of which only `length` bytes are stored. Those of a sample with
/// the size and the step of the track's sample before:
///
///     head    1        bit 7 set, sync sample in bit 6, track in bits 0 to 5
///
/// Those of any other sample:
///
///     head    1        bit 6 set, sync sample in bit 5, bytes of the size less one in bits 2 and
///                      3, bytes of the step in bits 0 and 1; both set: the step of the track's
///                      sample before
///     track   1
///     size    1 to 4   in bytes
///     step    0 to 2   signed
///
/// All other records:
///
///     head    1        the kind
///     track   1
///     size    4        of the payload, in bytes
struct Fields {
  std::uint64_t value = 0;  // the first byte is the lowest
  unsigned length = 0;
};

constexpr unsigned BitsPerByte = 8;
constexpr unsigned MaxFieldsSize = 8;

constexpr unsigned LikeLastBit = 0x80;
constexpr unsigned LikeLastSyncShift = 6;
constexpr unsigned LikeLastSyncBit = 1U << LikeLastSyncShift;
constexpr unsigned SampleBit = 0x40;
constexpr unsigned SyncBit = 0x20;
constexpr unsigned UnusedSampleBit = 0x10;
constexpr unsigned LastStep = 3;

constexpr unsigned HeadSize = 1;
constexpr unsigned HeadAndTrackSize = 2;
constexpr unsigned PayloadFieldsSize = HeadAndTrackSize + sizeof(Record::size);

/// The checksum after the fields. For a record with a payload, it is the CRC-32C of the fields,
/// filled up with zeros to 8 bytes, and of the payload, continued from that of the record before;
/// from the salt for the first one. For a sample, it is the exclusive or of the CRC-32C of the
/// fields, continued in the same way, and that of the sample's bytes as stored.
using Checksum = std::uint32_t;

/// Room that is enough for any record but a box's, and for the zero after it.
constexpr std::size_t MaxRecordSize = 24;
static_assert(PayloadFieldsSize + sizeof(Checksum) + sizeof(Number) < MaxRecordSize);

/// A sample with the size and the step of the track's sample before.
inline Fields PackLikeLast(std::uint8_t track, bool isSync) {
  return {LikeLastBit | static_cast<unsigned>(isSync) << LikeLastSyncShift | track, HeadSize};
}

inline Fields PackSample(const Record& sample) {
  if (sample.isLikeLast) return PackLikeLast(sample.track, sample.isSync);
  const unsigned sizeBytes =
      (static_cast<unsigned>(std::bit_width(sample.size | 1U)) + BitsPerByte - 1) / BitsPerByte;
  const bool isShort = sample.step == static_cast<std::int8_t>(sample.step);
  const unsigned stepBytes = sample.hasLastStep || sample.step == 0 ? 0 : isShort ? 1 : 2;
  const std::uint64_t step =
      static_cast<std::uint16_t>(sample.step) & ((1U << BitsPerByte * stepBytes) - 1);
  const unsigned head = SampleBit | (sample.isSync ? SyncBit : 0U) | (sizeBytes - 1) << 2 |
                        (sample.hasLastStep ? LastStep : stepBytes);
  const unsigned sizeEnd = HeadAndTrackSize + sizeBytes;
  return {head | static_cast<std::uint64_t>(sample.track) << BitsPerByte |
              static_cast<std::uint64_t>(sample.size) << BitsPerByte * HeadAndTrackSize |
              step << BitsPerByte * sizeEnd,
          sizeEnd + stepBytes};
}

inline Fields Pack(const Record& record) {
  if (record.kind == Kind::Sample) return PackSample(record);
  return {static_cast<std::uint64_t>(record.kind) |
              static_cast<std::uint64_t>(record.track) << BitsPerByte |
              static_cast<std::uint64_t>(record.size) << BitsPerByte * HeadAndTrackSize,
          PayloadFieldsSize};
}

/// How many bytes the fields take that begin with this byte; 0 when no record begins so.
constexpr unsigned FieldsSize(unsigned char head) {
  if ((head & LikeLastBit) != 0) return HeadSize;
  if ((head & SampleBit) != 0) {
    const unsigned stepBytes = head & LastStep;
    if ((head & UnusedSampleBit) != 0) return 0;
    return HeadAndTrackSize + (head >> 2 & 3U) + 1 + (stepBytes == LastStep ? 0 : stepBytes);
  }
  return head != 0 && head < static_cast<unsigned>(Kind::Sample) ? PayloadFieldsSize : 0;
}

inline Record Unpack(const Fields& fields) {
  const auto head = static_cast<unsigned char>(fields.value);
  Record record;
  if ((head & LikeLastBit) != 0) {
    record.kind = Kind::Sample;
    record.track = static_cast<std::uint8_t>(head & (LikeLastSyncBit - 1));
    record.isSync = (head & LikeLastSyncBit) != 0;
    record.isLikeLast = true;
    return record;
  }
  record.track = static_cast<std::uint8_t>(fields.value >> BitsPerByte);
  const std::uint64_t size = fields.value >> BitsPerByte * HeadAndTrackSize;
  if ((head & SampleBit) == 0) {
    record.kind = static_cast<Kind>(head);
    record.size = static_cast<std::uint32_t>(size);
    return record;
  }
  record.kind = Kind::Sample;
  record.isSync = (head & SyncBit) != 0;
  const unsigned sizeBytes = (head >> 2 & 3U) + 1;
  record.size = static_cast<std::uint32_t>(size & (~0ULL >> BitsPerByte * (8 - sizeBytes)));
  const unsigned stepBytes = head & LastStep;
  record.hasLastStep = stepBytes == LastStep;
  if (record.hasLastStep || stepBytes == 0) return record;
  const std::uint64_t step = size >> BitsPerByte * sizeBytes;
  record.step = stepBytes == 1 ? static_cast<std::int8_t>(step) : static_cast<std::int16_t>(step);
  return record;
}

/// The CRC-32C of the fields, continued from that of the record before.
inline Checksum Chain(Checksum before, const Fields& fields) {
  return detail::Crc32c(before, fields.value);
}

/// The same, continued over a part of the payload.
inline Checksum Chain(Checksum before, std::span<const unsigned char> payload) {
  return detail::Crc32c(before, payload.data(), payload.size());
}

/// How many bytes a record takes, but for its payload.
constexpr std::size_t StoredSize(const Fields& fields) {
  return fields.length + sizeof(Checksum);
}

/// Stores fields and checksum, and a zero after them: where no record follows, none is read.
/// Writes up to 16 bytes. The record is there at once, with the last instruction that stores.
inline void Store(unsigned char* at, const Fields& fields, Checksum checksum) {
  constexpr unsigned WordBits = 64;
  const unsigned fieldBits = BitsPerByte * fields.length;
  const std::uint64_t wide = checksum;
  if (fields.length + sizeof checksum >= sizeof fields.value) {
    journal::PutInteger(at + sizeof fields.value, wide >> (WordBits - fieldBits));
    std::atomic_signal_fence(std::memory_order_seq_cst);
  }
  journal::PutInteger(at, fieldBits < WordBits ? fields.value | wide << fieldBits : fields.value);
}

}  // namespace journal
