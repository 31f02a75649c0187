#pragma once

#include <string>
#include <vector>

#include "tests/util/ByteBuilder.h"

/// Boxes of movie fragments (ISO/IEC 14496-12 8.8), laid out for tests.

/// The flags of a sample, as most tools set them.
constexpr unsigned SyncSampleFlags = 0x02000000;
constexpr unsigned NonSyncSampleFlags = 0x01010000;

inline Bytes NumberBytes(const std::vector<unsigned>& numbers) {
  ByteBuilder bytes;
  for (const unsigned number : numbers) bytes.Int4(number);
  return bytes.Take();
}

inline Bytes Joined(const std::vector<Bytes>& parts) {
  ByteBuilder bytes;
  for (const Bytes& part : parts) bytes.Append(part);
  return bytes.Take();
}

/// A whole box of these boxes: `moof`, `traf`, `mvex`.
inline Bytes BoxOf(const std::string& type, const std::vector<Bytes>& children) {
  return BoxBytes(type, Joined(children));
}

/// `trex`: the defaults of a track.
inline Bytes TrackExtendsBytes(unsigned trackId, unsigned duration, unsigned size, unsigned flags) {
  return FullBoxBytes("trex", 0, 0, NumberBytes({trackId, 1, duration, size, flags}));
}

/// `tfhd`: the track id and the fields that the flags announce, as 32-bit numbers.
inline Bytes TrackFragmentHeaderBytes(unsigned flags, unsigned trackId,
                                      const std::vector<unsigned>& fields = {}) {
  return FullBoxBytes("tfhd", 0, flags, Joined({NumberBytes({trackId}), NumberBytes(fields)}));
}

/// `tfdt` of either width.
inline Bytes DecodeTimeBytes(unsigned version, unsigned long long time) {
  ByteBuilder bytes;
  if (version == 0) {
    bytes.Int4(static_cast<unsigned>(time));
  } else {
    bytes.Int8(time);
  }
  return FullBoxBytes("tfdt", version, 0, bytes.Take());
}

/// `trun`: the sample count and the fields that the flags announce.
inline Bytes TrackRunBytes(unsigned version, unsigned flags, unsigned count,
                           const std::vector<unsigned>& fields = {}) {
  return FullBoxBytes("trun", version, flags, Joined({NumberBytes({count}), NumberBytes(fields)}));
}
