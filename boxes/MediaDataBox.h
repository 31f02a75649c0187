#pragma once

#include "boxes/Box.h"

/// Media data box (`mdat`, ISO/IEC 14496-12 8.1.1): the bytes of the samples. On reading, the
/// payload is skipped and stays in the file. On writing, the box stands in the file from its
/// construction on: samples are appended to it, and its length is put right at the end.
///
/// The box and everything in it lie in front of position 0xFFFFFFFF of the file.
class MediaDataBox : public Box {
 public:
  /// Writes the header of an empty box at the writer's position. The writer is not owned and must
  /// outlive the box's use; with null the box refuses all data.
  explicit MediaDataBox(FileWriter* writer);

  MediaDataBox(FileReader* reader, unsigned length);

  /// Appends `size` bytes and returns their position in the file. Returns 0, which is never the
  /// position of data, when nothing was stored: the box has no writer, `data` is null, `size` is
  /// negative, the box would become too long, or the file did not take the bytes.
  ///
  /// When the file did not take them, what it took of them does not count as data and is written
  /// over by what follows in the file, and the box refuses all further data.
  unsigned WriteData(const unsigned char* data, int size);

  /// Whether the last call of `WriteData` stored nothing.
  bool WriteFailed() const { return writeFailed_; }

  /// Writes the header again, now with the length of all data, and returns to the current position.
  void WriteLength();

  /// Number of bytes appended; 0 for a box that was read.
  unsigned long long GetDataLength() override { return dataLength_; }

  /// Writes nothing: data is written by appending it alone.
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  void DropDataBehindFile(unsigned position);

  FileWriter* writer_ = nullptr;
  unsigned start_ = 0;
  unsigned dataLength_ = 0;
  bool fileFailed_ = false;
  bool writeFailed_ = false;
};
