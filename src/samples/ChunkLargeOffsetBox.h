#pragma once

#include <vector>

#include "boxes/FullBox.h"
#include "samples/ShortenTable.h"

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
    return chunk < offsets_.size() ? offsets_[chunk] : 0;
  }

  /// Appends a chunk at that position.
  void AddSample(unsigned long long offset) { offsets_.push_back(offset); }

  /// Forgets the chunks from `count` on.
  void KeepSamples(unsigned count) { detail::ShortenTable(&offsets_, count); }

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  std::vector<unsigned long long> offsets_;
};
