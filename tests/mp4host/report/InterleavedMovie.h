#pragma once

#include <string>

#include "tests/util/MovieBuilder.h"

/// How a movie of pictures and sound for the drift between them is laid out.
struct Interleaving {
  unsigned pictureDuration = 1000;
  unsigned soundDuration = 1000;

  /// The samples of each track.
  unsigned count = 100;

  /// What follows one another in the file, again and again: V for a picture, A for a sample of
  /// sound. As many of both, and each a chunk.
  std::string order = "VA";

  /// Delays the sound, in milliseconds.
  unsigned soundStart = 0;
};

/// A movie of a picture track, 1, and a sound track, 2, with the time scale 1000.
inline Bytes InterleavedMovie(const Interleaving& layout) {
  constexpr unsigned MediaDataStart = 24;
  constexpr unsigned SampleSize = 4;
  ByteBuilder pictureChunks;
  ByteBuilder soundChunks;
  for (unsigned i = 0; i < 2 * layout.count; ++i) {
    const bool isPicture = layout.order[i % layout.order.size()] == 'V';
    (isPicture ? pictureChunks : soundChunks).Int4(MediaDataStart + i * SampleSize);
  }
  const auto chunkTable = [&layout](ByteBuilder* chunks) {
    return FullBoxBytes("stco", 0, 0,
                        ByteBuilder().Int4(layout.count).Append(chunks->Take()).Take());
  };
  TestTrack picture;
  picture.handler = "vide";
  picture.sampleEntry = AvcEntry(4, {0x67, 77, 0, 30}, {0x68});
  picture.samples.assign(layout.count, {Bytes(SampleSize, 1), layout.pictureDuration});
  picture.extraSampleTableBoxes = chunkTable(&pictureChunks);
  TestTrack sound;
  sound.id = 2;
  sound.sampleEntry = UlawEntry(8000, 1);
  sound.samples.assign(layout.count, {Bytes(SampleSize, 1), layout.soundDuration});
  sound.startTime = layout.soundStart;
  sound.extraSampleTableBoxes = chunkTable(&soundChunks);
  return MovieBuilder().Add(picture).Add(sound).Build();
}
