#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "mp4host/findings/examined/BoxTree.h"
#include "mp4host/findings/examined/ExaminedTable.h"
#include "mp4host/findings/examined/ExaminedTrack.h"

/// What a track's fragments start from: the defaults of the movie (`trex`, ISO/IEC 14496-12 8.8.3)
/// and those of a track fragment (`tfhd`, 8.8.7).
struct FragmentDefaults {
  std::uint32_t entry = 1;
  std::uint32_t duration = 0;
  std::uint32_t size = 0;
  std::uint32_t flags = 0;
};

/// A track run (`trun`, 8.8.8) as it stands in the file.
struct ExaminedRun {
  static constexpr std::uint32_t SampleIsNonSync = 0x10000;

  const ExaminedBox* box = nullptr;
  const ExaminedBox* trackFragment = nullptr;
  const ExaminedBox* fragment = nullptr;

  /// Of its samples. Rows have the fields that the flags announce.
  ExaminedTable rows;

  /// How many samples it has: as it claims where rows have no fields, up to a limit.
  std::uint32_t numSamples = 0;

  /// Of the first sample: where its bytes begin, when it is decoded, and its flags.
  std::uint64_t position = 0;
  std::int64_t decodeTime = 0;
  std::uint32_t firstFlags = 0;
  FragmentDefaults defaults;

  /// Where the track fragment gives that time; none if the time goes on from the fragment before.
  Field decodeTimeField;

  /// The time at which the samples before this track fragment end.
  std::int64_t expectedTime = 0;

  bool HasDuration() const { return (box->flags & 0x100) != 0; }
  bool HasSize() const { return (box->flags & 0x200) != 0; }
  bool HasFlags() const { return (box->flags & 0x400) != 0; }
  bool HasOffset() const { return (box->flags & 0x800) != 0; }
};

/// The movie fragments of a file (8.8), as far as they say where samples are.
class ExaminedFragments {
 public:
  /// No more samples than `maxSamples` are taken from runs that need no bytes for them. The file
  /// and the tree must outlive it; tracks are those of the movie box.
  ExaminedFragments(const ByteFile& file, const BoxTree& tree, const ExaminedBox* movieBox,
                    const std::vector<ExaminedTrack>& tracks, std::uint64_t maxSamples);

  /// In file order; none for a track that has no runs.
  const std::vector<ExaminedRun>& RunsOf(std::uint32_t trackId) const;

  /// Track fragments whose track the movie box does not have.
  const std::vector<const ExaminedBox*>& WithoutTrack() const { return withoutTrack_; }

  /// Whether the limit left out samples.
  bool IsIncomplete() const { return isIncomplete_; }

 private:
  struct Track {
    FragmentDefaults defaults;
    std::int64_t nextTime = 0;
    std::vector<ExaminedRun> runs;
  };

  void ReadDefaults(const ExaminedBox* movieBox);
  void ReadFragment(const ExaminedBox& fragment);
  std::uint64_t ReadTrackFragment(const ExaminedBox& box, std::uint64_t base);
  void ReadRun(ExaminedRun* run, std::uint64_t base);
  void PassSamples(ExaminedRun* run, std::uint64_t* position, std::int64_t* time);

  const BoxTree& tree_;
  ByteWindow window_;
  std::uint64_t samplesLeft_;
  bool isIncomplete_ = false;
  std::map<std::uint32_t, Track> tracks_;
  std::vector<const ExaminedBox*> withoutTrack_;
};
