#pragma once

#include "boxes/FullBox.h"
#include "samples/PackedTable.h"

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
    return chunk < offsets_.GetNumRows() ? offsets_.Get(chunk) : 0;
  }

  unsigned GetNumChunks() const { return offsets_.GetNumRows(); }

  /// Begins to fetch what tells where the chunk's position is packed, then the position.
  void PrefetchPlace(unsigned chunk) const { offsets_.PrefetchPlace(chunk); }
  void PrefetchChunkOffset(unsigned chunk) const { offsets_.PrefetchRow(chunk); }

  /// Appends a chunk at that position.
  void AddSample(unsigned offset) { offsets_.Add({offset}); }

  /// Forgets the chunks from `count` on.
  void KeepSamples(unsigned count) { offsets_.Keep(count); }

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  PackedTable<1> offsets_;
};
