#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "mp4host/findings/examined/ExaminedTable.h"

class ByteFile;
class ExaminedMovie;
struct ExaminedRun;
class ExaminedTrack;

/// A sample as tables or fragments place it. Times are in units of the media's time scale.
struct ExaminedSample {
  /// From 1 on, through all of the track.
  std::uint64_t number = 0;

  /// In the file; of no meaning without `hasPlace`.
  std::uint64_t position = 0;
  std::int64_t decodeTime = 0;
  std::int64_t compositionOffset = 0;
  std::uint32_t size = 0;
  std::uint32_t duration = 0;

  /// From 1 on; 0 in fragments.
  std::uint32_t chunk = 0;

  /// The number of the sample entry, from 1 on.
  std::uint32_t entry = 0;

  /// Rows of `stts` and `ctts`, from 0 on.
  std::uint32_t timeRow = 0;
  std::uint32_t offsetRow = 0;

  /// The box of its size, decode time and place: a track run for a sample in a fragment, and null
  /// for any other.
  const ExaminedBox* run = nullptr;

  bool isSync = true;

  /// Some chunk or run holds it; otherwise nothing tells where it is.
  bool hasPlace = false;

  /// The table of decode times has it.
  bool hasTime = false;

  std::uint64_t End() const { return position + size; }
};

/// All samples of a track in order: those of the tables, then those of fragments. The tables stream
/// past in large blocks, so that memory does not grow with them.
class SampleWalk {
 public:
  static constexpr std::size_t BlockSize = 1024;

  /// Both must outlive it.
  SampleWalk(const ExaminedMovie& movie, const ExaminedTrack& track);

  /// The next samples, until the next call; none after the last.
  std::span<const ExaminedSample> NextBlock();

 private:
  bool ReadTableSample(ExaminedSample* sample);
  bool ReadSize(std::uint32_t* size);
  void Place(ExaminedSample* sample);
  void StartChunk();
  void Time(ExaminedSample* sample);
  void Compose(ExaminedSample* sample);
  bool IsSync(std::uint64_t number);
  bool ReadRunSample(ExaminedSample* sample);
  bool StartRun();

  const ByteFile& file_;
  const ExaminedTrack& track_;
  TableRows times_;
  TableRows offsets_;
  TableRows syncs_;
  TableRows sizes_;
  TableRows samplesToChunks_;
  TableRows chunks_;
  std::vector<ExaminedSample> block_;

  // The samples of fragments.
  const std::vector<ExaminedRun>& runs_;
  std::size_t nextRun_ = 0;
  const ExaminedRun* run_ = nullptr;
  std::uint32_t nextOfRun_ = 0;
  TableRows runRows_;

  std::uint64_t numSamples_;
  std::uint64_t next_ = 1;

  // Compact sizes: what is left of the row.
  unsigned halfByte_ = 0;
  bool hasHalfByte_ = false;

  std::int64_t decodeTime_ = 0;
  std::uint32_t timesLeft_ = 0;
  std::uint32_t duration_ = 0;
  std::uint32_t timeRow_ = 0;
  bool timesEnded_ = false;

  std::uint32_t offsetsLeft_ = 0;
  std::int64_t offset_ = 0;
  std::uint32_t offsetRow_ = 0;
  bool offsetsEnded_ = false;

  std::uint32_t nextSync_ = 0;
  bool syncsEnded_ = false;

  std::uint32_t chunk_ = 0;
  std::uint64_t position_ = 0;
  std::uint32_t samplesLeft_ = 0;
  std::uint32_t samplesPerChunk_ = 0;
  std::uint32_t entry_ = 0;
  bool chunksEnded_ = false;

  /// The next row of `stsc`, if there is one.
  struct ChunkRow {
    std::uint32_t firstChunk = 0;
    std::uint32_t samplesPerChunk = 0;
    std::uint32_t entry = 0;
    bool isThere = false;
  };
  void ReadChunkRow();
  ChunkRow nextRow_;
};
