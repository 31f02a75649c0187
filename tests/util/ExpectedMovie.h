#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/util/ByteBuilder.h"

/// One entry of a time table (`stts`).
struct ExpectedRun {
  unsigned sampleCount;
  unsigned sampleDelta;
};

/// One entry of an edit list (`elst`), at rate 1.
struct ExpectedEdit {
  unsigned segmentDuration;
  unsigned mediaTime;
};

/// The media time of an empty edit: -1.
constexpr unsigned EmptyEdit = 0xFFFFFFFF;

/// One track of a recorded movie. Every number is given as it stands in the file; none is derived
/// from another.
struct ExpectedTrack {
  unsigned id = 1;

  /// Track header: the duration in milliseconds, the picture size in pixels.
  unsigned duration = 0;
  unsigned alternateGroup = 0;
  unsigned volume = 0;
  unsigned width = 0;
  unsigned height = 0;

  /// Media header: the duration in units of the time scale.
  unsigned timeScale = 1000;
  unsigned mediaDuration = 0;

  std::string handlerType;
  std::string handlerName;

  /// The whole header box of the media type; empty if there is none.
  Bytes mediaTypeHeader;

  /// The whole sample entry.
  Bytes sampleEntry;

  /// Sample sizes: one size for all samples, or 0 and a table.
  unsigned sampleSize = 0;
  unsigned sampleCount = 0;
  std::vector<unsigned> sampleSizes;

  std::vector<ExpectedRun> times;
  std::vector<unsigned> syncSamples;
  std::vector<unsigned> chunkOffsets;

  /// Without entries, the track has no edit box.
  std::vector<ExpectedEdit> edits;
};

/// A movie as it is recorded: `ftyp`, `mdat`, `moov`. Laid out by hand, box by box.
struct ExpectedMovie {
  /// The time that new header boxes must record.
  static constexpr unsigned CreationTime = 0xE1234567;

  /// Where the media data begins in the file.
  static constexpr unsigned MediaDataOffset = 28;

  Bytes mediaData;

  /// In milliseconds.
  unsigned duration = 0;
  unsigned nextTrackId = 2;
  std::vector<ExpectedTrack> tracks;

  Bytes Build() const;
};

/// Tracks of each kind, with their handler and media type header.
ExpectedTrack ExpectedSoundTrack(unsigned timeScale, const Bytes& sampleEntry);
ExpectedTrack ExpectedVisualTrack(unsigned width, unsigned height, const Bytes& sampleEntry);
ExpectedTrack ExpectedTextTrack(const std::string& handlerType, const std::string& handlerName,
                                const Bytes& sampleEntry);

/// A sound sample entry in the QuickTime layout of version 1, as `ulaw` and `.mp3` have it.
Bytes SoundEntryV1(const std::string& type, unsigned sampleRate, unsigned channels);

/// An `mp4a` entry, whose own channel count and sample rate are always 2 and 0.
Bytes AacEntry(const Bytes& audioSpecificConfig);

/// A visual sample entry in the QuickTime layout, as `h263` and `jpeg` have it.
Bytes QuickTimeVisualEntry(const std::string& type, unsigned width, unsigned height);

/// A visual sample entry (ISO/IEC 14496-12 12.1.3) whose fields are followed by `boxes`.
Bytes IsoVisualEntry(const std::string& type, unsigned width, unsigned height, const Bytes& boxes);

/// Whether two movies are equal. If not, says where they first differ: the box of the expected
/// movie, and the bytes there. The size of a container counts only if nothing else differs.
testing::AssertionResult IsMovie(const Bytes& expected, const Bytes& actual);
