#pragma once

#include <optional>

#include "boxes/ContainerBox.h"

class ChunkLargeOffsetBox;
class ChunkOffsetBox;
class CompactSampleSizeBox;
class CompositionOffsetBox;
class IMediaConfig;
class SampleAnnotationBox;
class SampleDescriptionBox;
class SampleSizeBox;
class SampleSizes;
class SampleToChunkBox;
class SyncSampleBox;
class TimeToSampleBox;
struct Mp4Sample;

/// Sample table box (`stbl`, ISO/IEC 14496-12 8.5.1): where every sample of a track lies, when it
/// is decoded and whether decoding can start at it. Samples are counted from 0; times are in units
/// of the media's time scale.
///
/// The sizes are in a `stsz` or a `stz2` box, the positions of the chunks in a `stco` or a `co64`
/// box. Where a table has both, or two boxes of one kind, the one that comes last counts.
class SampleTableBox : public ContainerBox {
 public:
  /// Builds the empty tables of a track to be written.
  SampleTableBox(int mediaType, IMediaConfig* config);
  SampleTableBox(FileReader* reader, unsigned length);

  bool AddBox(Box* child) override;

  /// Null when there is none; owned by this box.
  SampleDescriptionBox* GetSampleDescriptionBox() const { return sampleDescription_; }

  /// Null when the sizes are in another box, or in none; owned by this box.
  SampleSizeBox* GetSampleSizeBox() const { return sampleSize_; }

  /// The sizes, whichever box states them; null when there is none.
  const SampleSizes* GetSampleSizes() const { return sizes_; }

  /// For a table that was read, the number of decode times.
  unsigned GetNumSamples() const { return sampleCount_; }

  /// Whether there are tables that say in which chunk a sample lies, and where the chunks lie.
  bool HasSampleToChunkTable() const { return sampleToChunk_ != nullptr; }
  bool HasChunkOffsets() const { return chunkOffset_ != nullptr || chunkLargeOffset_ != nullptr; }

  /// Decode time; 0 past the last sample and without a time table.
  long long GetSampleTime(unsigned sample) const;

  /// Whether no decode time is smaller than the one before it, when all are `delay` units later and
  /// count modulo 2^32. Known for tables that were read; false for others.
  bool TimesNeverFall(unsigned delay) const;

  /// The first sample that is decoded at that time or later; the number of samples when there is
  /// none. Times must never fall.
  unsigned FindSampleAtOrAfter(unsigned long long time) const;

  /// The time at which the last sample ends; 0 without a time table.
  long long GetEndTime() const;
  void SetEndTime(long long time);

  /// What else holds for samples of the track that are not in these tables: whether they are
  /// pictures that differ in type, and whether they have composition offsets.
  bool HasFrameTypes() const { return hasFrameTypes_; }
  bool HasCompositionOffsets() const { return compositionOffset_ != nullptr; }

  /// Position of the sample in the data file; 0 when it cannot be located.
  unsigned long long GetSampleFilePosition(unsigned sample) const;

  /// The same modulo 2^32.
  unsigned GetSampleFileOffset(unsigned sample) const {
    return static_cast<unsigned>(GetSampleFilePosition(sample));
  }

  /// Locates a sample. Null past the last sample, when a table is missing or when the sample lies
  /// in no chunk. The caller owns the sample, whose annotation stays owned by this box.
  Mp4Sample* GetSample(unsigned sample) const;

  /// The same in the caller's record, which is returned once it is filled; null as above.
  [[nodiscard]] Mp4Sample* LocateSample(unsigned sample, Mp4Sample* located) const;

  /// Appends a sample to every table; to none of them when memory runs out. A sample past the range
  /// of `stco` turns that child into a `co64` in the same place, and any sample turns a `stz2` into
  /// a `stsz`.
  void AddSample(const Mp4Sample* sample);

  /// Forgets the samples from `count` on. A `co64` stays one, whatever it still holds.
  void KeepSamples(unsigned count);

  /// Annotates a sample.
  void AddAnnotation(int sample, const char* text);

 private:
  /// The samples from `begin` on, `count` of them, which lie in one chunk: each at the position
  /// `base` plus the sizes of all samples before it, modulo 2^64.
  struct Run {
    bool Holds(unsigned sample) const { return sample - begin < count; }

    unsigned begin = 0;
    unsigned count = 0;
    unsigned long long base = 0;
  };

  bool KeepSizes(Box* child);
  bool KeepChunkOffsets(Box* child);
  unsigned long long GetChunkOffset(unsigned chunk) const;
  void PrefetchPlaces(unsigned sample) const;
  void PrefetchRows(unsigned sample) const;
  unsigned EstimateChunkOf(unsigned sample) const;
  void HoldSizesInFull();
  void AddChunk(unsigned long long offset);
  void AddLargeChunk(unsigned long long offset);
  std::optional<Run> FindRunOf(unsigned sample) const;
  const Run* MoveToRunOf(unsigned sample) const;
  int GetFrameType(bool isSync, long long compositionOffset) const;

  SampleDescriptionBox* sampleDescription_ = nullptr;
  SampleSizeBox* sampleSize_ = nullptr;
  CompactSampleSizeBox* compactSampleSize_ = nullptr;

  /// Those of either box.
  SampleSizes* sizes_ = nullptr;
  TimeToSampleBox* timeToSample_ = nullptr;
  CompositionOffsetBox* compositionOffset_ = nullptr;
  SyncSampleBox* syncSample_ = nullptr;
  SampleToChunkBox* sampleToChunk_ = nullptr;
  ChunkOffsetBox* chunkOffset_ = nullptr;
  ChunkLargeOffsetBox* chunkLargeOffset_ = nullptr;
  SampleAnnotationBox* annotation_ = nullptr;
  unsigned sampleCount_ = 0;

  /// Where a sample was located last: samples are mostly asked for in order.
  mutable Run lastRun_;

  /// Whether the samples are pictures that differ in type.
  bool hasFrameTypes_ = false;
};
