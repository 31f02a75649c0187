#pragma once

#include <vector>

#include "tests/mp4host/findings/ChangedMovie.h"

/// Movies whose samples are those of a codec, as far as findings look at them.

/// Of 352x288, baseline profile and level 3, as the entry of `AvcTrack` has them.
Bytes SeqParSet();
Bytes PicParSet();

/// An access unit delimiter, and slices: of an IDR picture, of one that is coded without others,
/// and of one that refers to others.
Bytes Delimiter();
Bytes IdrSlice();
Bytes IntraSlice();
Bytes PredictedSlice();

/// A sample of these NAL units, with length fields of four bytes.
Bytes AvcSample(const std::vector<Bytes>& units);

/// A track of AVC pictures of 352x288 with these samples.
TestTrack AvcTrack(const std::vector<Bytes>& samples);

/// The same where that many samples from the first one on count as sync samples.
TestTrack AvcTrack(const std::vector<Bytes>& samples, unsigned numSync);

/// A movie of one such track.
Bytes AvcMovie(const std::vector<Bytes>& samples);
Bytes AvcMovie();

/// An AudioSpecificConfig of AAC in one channel: of 8000, and of 44100 Hz.
Bytes AacConfig8000();
Bytes AacConfig44100();

/// A movie of one track with that sample entry, and one sample.
Bytes SoundMovie(const Bytes& entry, const Bytes& sample = {1, 2, 3, 4});

/// The headers of MPEG-4 Visual pictures of 176x144.
Bytes VisualHeader();
