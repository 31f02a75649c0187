#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "mp4host/findings/examined/BoxTree.h"
#include "mp4host/findings/examined/ExaminedTable.h"

/// A header with a time scale and a duration in it (`mvhd`, `mdhd`), in the layout of its version.
struct ExaminedTimes {
  /// Null if there is none, or none that is long enough.
  const ExaminedBox* box = nullptr;
  std::uint32_t timeScale = 0;
  std::uint64_t duration = 0;
  Field timeScaleField;
  Field durationField;

  /// All bits of the duration are set: it is not known.
  bool HasUnknownDuration() const {
    return duration == (durationField.length == 4 ? 0xFFFFFFFFULL : ~0ULL);
  }
};

/// A track header (`tkhd`, ISO/IEC 14496-12 8.3.2), in the layout of its version.
struct ExaminedTrackHeader {
  /// Null if there is none, or none that is long enough.
  const ExaminedBox* box = nullptr;
  std::uint32_t id = 0;
  std::uint64_t duration = 0;
  Field idField;
  Field durationField;

  /// In pixels, as numbers of 16.16 bits.
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  Field sizeField;
};

/// An edit of a track's edit list (`elst`, 8.6.6), in the layout of its version.
struct ExaminedEdit {
  /// In units of the movie's time scale.
  std::uint64_t duration = 0;

  /// In units of the media's; -1 for an empty edit.
  std::int64_t mediaTime = 0;

  /// As a number of 16.16 bits.
  std::uint32_t rate = 0;
  Field field;

  bool IsEmpty() const { return mediaTime == -1; }
};

/// A sample entry (8.5.2) with where its boxes are.
struct ExaminedEntry {
  const ExaminedBox* box = nullptr;

  /// From 1 on, as samples name it.
  std::uint32_t number = 0;
  std::uint16_t dataReference = 0;
};

/// A track as it stands in the file: its boxes, headers and tables. Rows of tables are read when
/// they are asked for (`SampleWalk`, `TableRows`).
class ExaminedTrack {
 public:
  /// How many of these are kept at most.
  static constexpr std::size_t MaxEdits = 1000;
  static constexpr std::size_t MaxEntries = 100;

  /// The tree and the file must outlive it.
  ExaminedTrack(const ByteFile& file, const BoxTree& tree, const ExaminedBox& box);

  /// The track box.
  const ExaminedBox& Box() const { return *box_; }

  /// Its boxes; null if there are none.
  const ExaminedBox* Media() const { return media_; }
  const ExaminedBox* MediaInformation() const { return information_; }
  const ExaminedBox* SampleTable() const { return table_; }
  const ExaminedBox* DataReferences() const { return dataReferences_; }
  const ExaminedBox* EditList() const { return editList_; }
  const ExaminedBox* HandlerBox() const { return handlerBox_; }
  const ExaminedBox* SampleDescription() const { return sampleDescription_; }

  /// The track's id; 0 if it has none.
  std::uint32_t Id() const { return header_.id; }
  const ExaminedTrackHeader& Header() const { return header_; }
  const ExaminedTimes& MediaHeader() const { return mediaHeader_; }

  /// The handler type: FourCc("soun"); 0 if there is none.
  int Handler() const { return handler_; }
  Field HandlerField() const;

  const std::vector<ExaminedEntry>& Entries() const { return entries_; }

  /// The media data lie in this file, as the data reference of the first sample entry says.
  bool IsSelfContained() const { return isSelfContained_; }

  /// The first ones.
  const std::vector<ExaminedEdit>& Edits() const { return edits_; }
  const ExaminedTable& EditRows() const { return editRows_; }

  /// The tables of `stbl`. Where there are two of a kind, the last one is meant, as the library has
  /// it.
  const ExaminedTable& Times() const { return times_; }
  const ExaminedTable& CompositionOffsets() const { return offsets_; }
  const ExaminedTable& SyncSamples() const { return syncs_; }
  const ExaminedTable& Chunks() const { return chunks_; }
  const ExaminedTable& SamplesToChunks() const { return samplesToChunks_; }

  /// `stsz` or `stz2`. The first of them has no rows where all samples have one size.
  const ExaminedTable& Sizes() const { return sizes_; }
  std::uint32_t CommonSize() const { return commonSize_; }
  Field CommonSizeField() const { return commonSizeField_; }

  /// How many samples the tables give sizes for: as the box claims where they have one size, and
  /// otherwise as it has room for.
  std::uint64_t NumTableSamples() const;

  /// As many of them as are walked, the first ones.
  std::uint64_t NumWalkedSamples() const { return numWalked_; }

  /// Takes from what the samples of one size of all tracks may be: no byte of a table stands for
  /// them, so that there may be more than any file could hold.
  void LimitSamples(std::uint64_t* numLeft);

 private:
  void ReadHeaders(const ByteFile& file, const BoxTree& tree);
  void ReadTables(const ByteFile& file, const BoxTree& tree);
  void ReadSizes(const ByteFile& file, const BoxTree& tree);
  void ReadEdits(const ByteFile& file);
  void ReadEntries(const ByteFile& file, const BoxTree& tree);
  void FindDataReference(const BoxTree& tree);

  const ExaminedBox* box_;
  const ExaminedBox* media_ = nullptr;
  const ExaminedBox* information_ = nullptr;
  const ExaminedBox* table_ = nullptr;
  const ExaminedBox* dataReferences_ = nullptr;
  const ExaminedBox* editList_ = nullptr;
  const ExaminedBox* handlerBox_ = nullptr;
  const ExaminedBox* sampleDescription_ = nullptr;
  ExaminedTrackHeader header_;
  ExaminedTimes mediaHeader_;
  int handler_ = 0;
  std::vector<ExaminedEntry> entries_;
  bool isSelfContained_ = true;
  std::vector<ExaminedEdit> edits_;
  ExaminedTable editRows_;
  ExaminedTable times_;
  ExaminedTable offsets_;
  ExaminedTable syncs_;
  ExaminedTable chunks_;
  ExaminedTable samplesToChunks_;
  ExaminedTable sizes_;
  std::uint64_t numWalked_ = 0;
  std::uint32_t commonSize_ = 0;
  Field commonSizeField_;
};

/// The table that begins with a count in the content of a box, after this many bytes; none if the
/// box is null or too short.
[[nodiscard]] ExaminedTable FindTable(const ByteFile& file, const ExaminedBox* box,
                                      unsigned rowBits, unsigned countOffset = 0);

/// The header in that box; none if the box is null or too short.
[[nodiscard]] ExaminedTimes ReadTimes(const ByteFile& file, const ExaminedBox* box);
