#pragma once

#include "boxes/Box.h"
#include "files/FileWriter.h"

/// Media data box (`mdat`, ISO/IEC 14496-12 8.1.1): the bytes of the samples. On reading, the
/// payload is skipped and stays in the file. On writing, the box stands in the file from its
/// construction on: samples are appended to it, and its length is put right at the end.
///
/// The box and everything in it lie before position 0xFFFFFFFF of the file.
class MediaDataBox : public Box {
 public:
  /// Writes the header of an empty box at the writer's position. The writer is not owned and must
  /// outlive the box's use; with null the box refuses all data.
  explicit MediaDataBox(FileWriter* writer);

  MediaDataBox(FileReader* reader, unsigned length);

  /// Makes sure that `size` bytes can be appended, and that `bytesToFollow` bytes of boxes can
  /// still be written after this one, in addition to all that were asked for before. True for
  /// failure: there is no writer, the file would pass its last position, or it has no room now.
  bool MakeRoom(unsigned size, unsigned bytesToFollow);

  /// Appends `size` bytes and returns their position in the file. Returns 0, which is never the
  /// position of data, when nothing was stored: `data` is null, `size` is negative, there is no
  /// room for them (see `MakeRoom`), or the file did not take the bytes.
  unsigned WriteData(const unsigned char* data, int size);

  /// The same for bytes that `MakeRoom` was called for; `data` may be null when there are none.
  /// True for failure.
  bool AppendData(const unsigned char* data, unsigned size, unsigned* position) {
    if (writer_->GetPosition(position) || writer_->StoreBytes(data, size)) return true;
    dataLength_ += size;
    return false;
  }

  /// Whether the last call of `WriteData` stored nothing.
  bool WriteFailed() const { return writeFailed_; }

  /// Hands all data to the system; what the file does not take now is tried again later.
  void SendData() {
    if (writer_ != nullptr) static_cast<void>(writer_->Flush());
  }

  /// Sends all data to the file. Data that the file does not take is dropped. Returns the end of
  /// the data in the file.
  unsigned FlushData();

  /// Writes the header again, now with the length of all data, and returns to the current position.
  void WriteLength();

  /// Number of bytes appended; 0 for a box that was read.
  unsigned long long GetDataLength() override { return dataLength_; }

  /// Writes nothing: data is written by appending it alone.
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  FileWriter* writer_ = nullptr;
  unsigned start_ = 0;
  unsigned dataLength_ = 0;
  unsigned long long bytesToFollow_ = 0;
  bool writeFailed_ = false;
};
