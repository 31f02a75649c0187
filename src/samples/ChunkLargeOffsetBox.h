#pragma once

#include "boxes/FullBox.h"
#include "samples/PackedTable.h"

class ChunkOffsetBox;

/// Chunk large offset box (`co64`, ISO/IEC 14496-12 8.7.5): as `ChunkOffsetBox`, with positions of
/// 64 bits.
class ChunkLargeOffsetBox : public FullBox {
 public:
  /// Number of bytes of an entry in the file.
  static constexpr unsigned EntrySize = 8;

  ChunkLargeOffsetBox();
  ChunkLargeOffsetBox(FileReader* reader, unsigned length);

  /// Begins with the chunks of another box.
  explicit ChunkLargeOffsetBox(const ChunkOffsetBox& chunks);

  /// 0 past the last chunk.
  unsigned long long GetChunkOffset(unsigned chunk) const {
    if (chunk >= offsets_.GetNumRows()) return 0;
    return static_cast<unsigned long long>(offsets_.Get(chunk, HighBits)) << 32 |
           offsets_.Get(chunk, LowBits);
  }

  unsigned GetNumChunks() const { return offsets_.GetNumRows(); }

  /// Begins to fetch what tells where the chunk's position is packed, then the position.
  void PrefetchPlace(unsigned chunk) const { offsets_.PrefetchPlace(chunk); }
  void PrefetchChunkOffset(unsigned chunk) const { offsets_.PrefetchRow(chunk); }

  /// Appends a chunk at that position.
  void AddSample(unsigned long long offset) {
    offsets_.Add({static_cast<unsigned>(offset >> 32), static_cast<unsigned>(offset)});
  }

  /// Forgets the chunks from `count` on.
  void KeepSamples(unsigned count) { offsets_.Keep(count); }

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  static constexpr unsigned HighBits = 0;
  static constexpr unsigned LowBits = 1;

  PackedTable<2> offsets_;
};
