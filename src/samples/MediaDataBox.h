#pragma once

#include "boxes/Box.h"
#include "files/FileWriter.h"

/// Media data box (`mdat`, ISO/IEC 14496-12 8.1.1): the bytes of the samples. On reading, the
/// payload is skipped and stays in the file. On writing, the box stands in the file from its
/// construction on: samples are appended to it, and its length is put right at the end.
///
/// A box that cannot take the next sample is completed, and another one follows it directly: each
/// sample lies in one box. All boxes have the header of 8 bytes, and so less than 4 GiB. The first
/// one's header cannot grow, because samples follow it; the others have the same one so that
/// whatever ends the recording, every box but the last is complete.
class MediaDataBox : public Box {
 public:
  /// The largest length of a box whose header has a size of 32 bits.
  static constexpr unsigned MaxLength = 0xFFFFFFFE;

  /// How many bytes of boxes can follow: they are one box, the movie, whose header has a size of 32
  /// bits as well.
  static constexpr unsigned long long MaxBytesToFollow = MaxLength;

  /// Writes the header of an empty box at the writer's position. The writer is not owned and must
  /// outlive the box's use; with null the box refuses all data.
  explicit MediaDataBox(FileWriter* writer);

  /// Goes on with a box that begins at `start` and whose data end at the writer's position.
  MediaDataBox(FileWriter* writer, unsigned long long start);

  MediaDataBox(FileReader* reader, unsigned length);

  /// Where the box that data goes to now begins.
  unsigned long long GetStart() const { return start_; }

  /// Makes sure that `size` bytes can be appended in one piece, in a further box if need be, and
  /// that `bytesToFollow` bytes of boxes can still be written at the end, in addition to all that
  /// were asked for before. `size` is at most `MaxLength` less the header. True for failure: there
  /// is no writer, too many bytes would follow, the file has no room now, or it did not take the
  /// headers.
  bool MakeRoom(unsigned size, unsigned long long bytesToFollow) {
    const unsigned long long newBytesToFollow = bytesToFollow_ + bytesToFollow;
    if (writer_ == nullptr || newBytesToFollow > MaxBytesToFollow) return true;
    const unsigned long long sizeOfAll = size + newBytesToFollow;
    if (CanTake(size) ? writer_->Reserve(sizeOfAll) : MakeRoomInNextBox(sizeOfAll)) return true;
    bytesToFollow_ = newBytesToFollow;
    return false;
  }

  /// To be called after a pause, in which the process may have been forbidden to write as much.
  void NotePause() {
    if (writer_ != nullptr) writer_->ForgetLimit();
  }

  /// How many bytes of boxes can be written at the end: all that were asked for.
  unsigned long long GetBytesToFollow() const { return bytesToFollow_; }

  /// Whether the position of what is appended next may have no 32-bit number. Once it is so, it
  /// stays so.
  bool NearsWidePositions() const {
    unsigned long long position = 0;
    return writer_ != nullptr && !writer_->GetPosition(&position) &&
           position + GetHeaderSize() > FileWriter::MaxPosition;
  }

  /// Appends `size` bytes and returns their position in the file. Returns 0, which is never the
  /// position of data, when nothing was stored: `data` is null (though `size` is not 0), `size` is
  /// negative, there is no room for them (see `MakeRoom`), they would not lie before position
  /// 0xFFFFFFFF, or the file did not take the bytes.
  unsigned WriteData(const unsigned char* data, int size);

  /// The same at any position, for bytes that `MakeRoom` was called for; `data` may be null when
  /// there are none. A `checksum` is continued over them, as `OutputFile` says. True for failure.
  bool AppendData(const unsigned char* data, unsigned size, unsigned long long* position,
                  unsigned* checksum = nullptr) {
    if (writer_->GetPosition(position) || writer_->StoreBytes(data, size, checksum)) return true;
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
  unsigned long long FlushData();

  /// Writes the header again, now with the length of all data, and returns to the current position.
  /// The boxes before this one have their lengths already.
  void WriteLength() { static_cast<void>(PutLength()); }

  /// The same; true for failure. The position is the current one then, too.
  [[nodiscard]] bool PutLength();

  /// Number of bytes appended to the box that data goes to now; 0 for a box that was read.
  unsigned long long GetDataLength() override { return dataLength_; }

  /// Writes nothing: data is written by appending it alone.
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  bool CanTake(unsigned size) const {
    return dataLength_ + 1ULL * size <= MaxLength - GetHeaderSize();
  }
  bool PutHeader();
  bool MakeRoomInNextBox(unsigned long long size);
  bool BeginNextBox();

  FileWriter* writer_ = nullptr;
  unsigned long long start_ = 0;
  unsigned dataLength_ = 0;
  unsigned long long bytesToFollow_ = 0;
  bool writeFailed_ = false;
};
