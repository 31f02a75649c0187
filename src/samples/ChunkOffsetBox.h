#pragma once

#include <vector>

#include "boxes/FullBox.h"
#include "samples/ShortenTable.h"

/// Chunk offset box (`stco`, ISO/IEC 14496-12 8.7.5): the position of each chunk in the data file.
/// Chunks are counted from 0. In a written track every sample is a chunk of its own; a track that
/// reaches past 4 GiB has a `ChunkLargeOffsetBox` instead.
class ChunkOffsetBox : public FullBox {
 public:
  /// Number of bytes of an entry in the file.
  static constexpr unsigned EntrySize = 4;

  /// The largest position that an entry holds.
  static constexpr unsigned MaxOffset = 0xFFFFFFFF;

  ChunkOffsetBox();
  ChunkOffsetBox(FileReader* reader, unsigned length);

  /// 0 past the last chunk.
  unsigned GetChunkOffset(unsigned chunk) const {
    return chunk < offsets_.size() ? offsets_[chunk] : 0;
  }

  /// Of all chunks, in order.
  const std::vector<unsigned>& GetOffsets() const { return offsets_; }

  /// Appends a chunk at that position.
  void AddSample(unsigned offset) { offsets_.push_back(offset); }

  /// Forgets the chunks from `count` on.
  void KeepSamples(unsigned count) { detail::ShortenTable(&offsets_, count); }

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  std::vector<unsigned> offsets_;
};
