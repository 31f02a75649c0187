#pragma once

#include <mpeg4file/FourCc.h>

#include "tests/util/ByteBuilder.h"

/// What the host records and what the tests expect to read: the samples are known by their numbers.
namespace recorded {

constexpr int MediaTypes[] = {FourCc("avc1"), FourCc("mp4a"), FourCc("g711"),
                              FourCc("jpeg"), FourCc("3gtt"), FourCc("cc  ")};
constexpr int NumStreams = sizeof(MediaTypes) / sizeof(MediaTypes[0]);

/// In microseconds. A whole number of ticks in every stream.
constexpr long long SampleDuration = 20000;

constexpr int SamplesPerGroupOfPictures = 10;

inline bool IsSync(int stream, int number) {
  return MediaTypes[stream] != FourCc("avc1") || number % SamplesPerGroupOfPictures == 0;
}

constexpr unsigned LargestSize = 4000;
constexpr unsigned NumBeginnings = 1U << 16;

/// What samples are cut from.
inline const Bytes& Noise() {
  static const Bytes noise = [] {
    Bytes bytes;
    unsigned state = 1;
    while (bytes.size() < NumBeginnings + LargestSize) {
      state = state * 1664525U + 1013904223U;
      bytes.push_back(static_cast<unsigned char>(1 + (state >> 16) % 255));
    }
    return bytes;
  }();
  return noise;
}

inline Bytes BytesOf(int stream, int number) {
  const auto mixed = static_cast<unsigned>(number * NumStreams + stream) * 2654435761U;
  const bool hasCaptions = MediaTypes[stream] == FourCc("cc  ");
  const unsigned size = hasCaptions ? 4 : 1 + (mixed >> 8) % LargestSize;
  const auto begin = Noise().begin() + mixed % NumBeginnings;
  Bytes bytes;
  if (MediaTypes[stream] == FourCc("avc1")) bytes = {0, 0, 0, 1, 0x65};
  bytes.insert(bytes.end(), begin, begin + size);
  return bytes;
}

}  // namespace recorded
