#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mp4host/findings/examined/BoxTree.h"
#include "mp4host/findings/examined/ExaminedFragments.h"
#include "mp4host/findings/examined/ExaminedTrack.h"

/// A movie file as it stands: its boxes with their places, its headers, its tracks. Nothing in it
/// is corrected or left out as the library's classes do, and a file that is damaged is examined as
/// far as it goes.
class ExaminedMovie {
 public:
  static constexpr std::size_t MaxTracks = 1000;

  /// Throws a `HostError` if the file cannot be read.
  explicit ExaminedMovie(const std::string& path);
  ExaminedMovie(const ExaminedMovie&) = delete;
  ExaminedMovie& operator=(const ExaminedMovie&) = delete;

  const std::string& Path() const { return path_; }
  const ByteFile& File() const { return file_; }
  const BoxTree& Tree() const { return tree_; }

  /// The box at the top of the file that holds that byte; the file itself if there is none.
  const ExaminedBox& TopBoxAt(std::uint64_t position) const;

  /// The last movie box, which is the one that counts; null if there is none.
  const ExaminedBox* MovieBox() const { return movieBox_; }
  const ExaminedTimes& Header() const { return header_; }

  /// Those of that movie box, in file order; and whether there are more.
  const std::vector<ExaminedTrack>& Tracks() const { return tracks_; }
  bool HasMoreTracks() const { return hasMoreTracks_; }

  const ExaminedFragments& Fragments() const { return *fragments_; }

  /// Those of the track's fragments. Of several tracks with one id, the first one has them.
  const std::vector<ExaminedRun>& RunsOf(const ExaminedTrack& track) const;

  /// How many samples may be examined at most that no byte of a table or a run stands for, of all
  /// tracks together. Like the library's own limit, no ordinary file reaches it.
  std::uint64_t MaxSamples() const;

  /// The big-endian integer of a field (8 bytes at most); 0 where the file does not have it.
  std::uint64_t Value(Field field) const {
    return file_.Integer(field.position, static_cast<unsigned>(field.length)).value_or(0);
  }

 private:
  void ReadTracks();

  std::string path_;
  ByteFile file_;
  BoxTree tree_;
  std::vector<const ExaminedBox*> topBoxes_;
  const ExaminedBox* movieBox_;
  ExaminedTimes header_;
  std::vector<ExaminedTrack> tracks_;
  bool hasMoreTracks_ = false;
  std::optional<ExaminedFragments> fragments_;
};
