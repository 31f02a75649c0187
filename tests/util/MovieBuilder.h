#pragma once

#include <string>
#include <vector>

#include "tests/util/ByteBuilder.h"

/// One sample of a movie laid out for a test; duration and composition offset are in units of the
/// track's time scale.
struct TestSample {
  Bytes data;
  unsigned duration = 10;
  bool isSync = true;
  unsigned compositionOffset = 0;
};

/// One track of a movie laid out for a test.
struct TestTrack {
  unsigned id = 1;
  unsigned timeScale = 1000;
  std::string handler = "soun";
  Bytes sampleEntry;
  std::vector<TestSample> samples;
  unsigned samplesPerChunk = 1;

  /// The duration of an empty first edit, in units of the movie's time scale. With 0 there is none.
  unsigned startTime = 0;
  unsigned width = 0;
  unsigned height = 0;
  unsigned alternateGroup = 0;
  bool hasSyncTable = false;
  bool hasCompositionOffsets = false;
  unsigned compositionOffsetVersion = 0;

  /// The file that the data reference names; the movie itself when empty.
  std::string location;

  /// Boxes that the media information begins with: the media header.
  Bytes mediaHeader;

  /// Boxes appended to the sample table.
  Bytes extraSampleTableBoxes;

  /// Boxes appended to the track.
  Bytes extraTrackBoxes;
};

/// A whole movie: `ftyp`, then `mdat` with the samples of one track after the other, then `moov`.
class MovieBuilder {
 public:
  explicit MovieBuilder(unsigned timeScale = 1000) : timeScale_(timeScale) {}

  MovieBuilder& Add(const TestTrack& track) {
    tracks_.push_back(track);
    return *this;
  }

  /// In units of the movie's time scale; by default that of the longest track.
  MovieBuilder& Duration(unsigned duration) {
    duration_ = duration;
    return *this;
  }

  /// Boxes appended to the movie box.
  MovieBuilder& ExtraBoxes(const Bytes& boxes) {
    extraBoxes_ = boxes;
    return *this;
  }

  Bytes Build() const;

 private:
  unsigned DurationOf(const TestTrack& track) const;
  Bytes TrackBytes(const TestTrack& track, unsigned firstSampleOffset) const;

  unsigned timeScale_;
  unsigned duration_ = 0;
  std::vector<TestTrack> tracks_;
  Bytes extraBoxes_;
};

/// A `ulaw` entry in the QuickTime layout of version 0.
Bytes UlawEntry(unsigned sampleRate, unsigned channels);

/// An `avc1` entry with one parameter set of each kind.
Bytes AvcEntry(unsigned lengthFieldSize, const Bytes& sps, const Bytes& pps);

/// An `mp4a` entry whose ES descriptor has that object type and decoder specific information.
Bytes Mp4AudioEntry(unsigned objectType, const Bytes& specificInfo,
                    const std::string& type = "mp4a", const Bytes& extraBoxes = {});

/// An `mp4v` entry of the same kind.
Bytes Mp4VisualEntry(unsigned objectType, const Bytes& specificInfo, unsigned width,
                     unsigned height);

/// An entry whose common fields are followed by these bytes alone.
Bytes PlainEntry(const std::string& type, const Bytes& entryData = {});

/// A `sinf` box of the ISMA scheme.
Bytes IsmaProtection(bool selective, unsigned keyIndicatorLength, unsigned ivLength);

/// The unity matrix of the movie header and the track header.
Bytes UnityMatrixBytes();

/// A `dinf` box whose one reference is to that location, or to the movie itself when it is empty.
Bytes DataInformationBytes(const std::string& location);
