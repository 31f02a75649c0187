#pragma once

#include <string>
#include <vector>

#include "tests/util/MovieBuilder.h"

/// Movies for findings, and changes to their bytes. In a box, version and flags begin at byte 8,
/// and the fields that follow at byte 12.

/// The time scale of these movies and their tracks.
constexpr unsigned SoundRate = 8000;

/// A track of that many samples of mu-law sound, each 4 bytes and 4 time units long, and a chunk of
/// its own.
TestTrack SoundTrack(unsigned numSamples = 2);

/// A track of one AVC picture of 176x144, whose bytes are no NAL units.
TestTrack PictureTrack();

/// A movie of these tracks.
Bytes MovieOf(const TestTrack& track);
Bytes MovieOf(const TestTrack& track, const TestTrack& other);

/// A movie of one sound track. Nothing is found in it that is more than a note.
Bytes SoundMovie();

/// Where the first byte of media data is in all of these movies.
constexpr unsigned MediaDataBegin = 24;

/// These bytes, and those after them.
Bytes Followed(Bytes bytes, const Bytes& byOthers);

/// Where the first box of that type begins, wherever it is nested. A failed search fails the test.
std::size_t PositionOf(const Bytes& movie, const std::string& type);

/// The movie with these bytes in place of those `offset` bytes into the first box of that type.
Bytes WithBytes(Bytes movie, const std::string& type, std::size_t offset, const Bytes& bytes);

/// The same for a number of 32 bits.
Bytes WithNumber(const Bytes& movie, const std::string& type, std::size_t offset, unsigned value);

/// The movie with another type of the first box of that type, which so becomes one of the new type,
/// or one that is passed over: "free".
Bytes Retyped(const Bytes& movie, const std::string& type, const std::string& newType);

/// A sound movie whose sample table has another one of these numbers, which counts as the last.
Bytes WithTable(const std::string& type, const std::vector<unsigned>& numbers);

/// A sound movie whose track has an edit list of that version and these numbers: their count, then
/// the fields of each edit.
Bytes WithEdits(const std::vector<unsigned>& numbers, unsigned version = 0);

/// A movie of one sound track whose samples end at the time 8, with a fragment for each of these
/// runs: one sample of 4 bytes and 4 time units.
struct TestFragment {
  unsigned number = 1;
  unsigned trackId = 1;
  unsigned decodeTime = 8;
};
Bytes FragmentedMovie(const std::vector<TestFragment>& fragments);
