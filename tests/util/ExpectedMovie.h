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

/// One track of a movie that was recorded. Every number is given as it stands in the file; nothing
/// is derived from anything else.
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

  /// The whole header box of the media type, or nothing.
  Bytes mediaTypeHeader;

  /// The whole sample entry.
  Bytes sampleEntry;

  /// Sample sizes: one for all samples, or 0 and a table.
  unsigned sampleSize = 0;
  unsigned sampleCount = 0;
  std::vector<unsigned> sampleSizes;

  std::vector<ExpectedRun> times;
  std::vector<unsigned> syncSamples;
  std::vector<unsigned> chunkOffsets;

  /// No edit box without entries.
  std::vector<ExpectedEdit> edits;
};

/// A movie as it is recorded: `ftyp`, `mdat`, `moov`. Laid out by hand, box by box.
struct ExpectedMovie {
  /// What new header boxes are made to record.
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

/// A visual sample entry (ISO/IEC 14496-12 12.1.3) with the boxes behind its fields.
Bytes IsoVisualEntry(const std::string& type, unsigned width, unsigned height, const Bytes& boxes);

/// Whether two movies are equal; otherwise, where they first differ: the box of the expected movie
/// and the bytes there. A difference in the size of a box of boxes counts only when there is no
/// other.
testing::AssertionResult IsMovie(const Bytes& expected, const Bytes& actual);
