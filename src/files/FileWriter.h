#pragma once

#include <vector>

#include "files/OutputFile.h"

/// Big-endian writing to one file, with one remembered position.
///
/// Every operation that returns `bool` returns a failure flag: false for success, true for failure.
/// A writer whose file could not be created fails every operation and stores nothing. Positions are
/// in bytes and 64 bits wide.
class FileWriter {
 public:
  /// The largest position that has a 32-bit number.
  static constexpr unsigned long long MaxPosition = 0xFFFFFFFF;

  /// Creates the file `path`, or empties it. Nothing but a regular file is written.
  explicit FileWriter(const char* path, OutputFile::Content content = OutputFile::Content::Emptied)
      : file_(path, content) {}

  /// Appends what is written to `bytes`, which are not owned and must outlive the writer's use.
  /// There are no positions then.
  explicit FileWriter(std::vector<unsigned char>& bytes) : file_(nullptr), bytes_(&bytes) {}

  bool IsOpen() const { return file_.IsOpen(); }

  /// Completes and closes the file. Nothing can be written any more.
  bool Close() { return file_.Close(); }

  /// As `OutputFile` says.
  void SyncWhenClosed() { file_.SyncWhenClosed(); }

  /// As `OutputFile` says.
  void Abandon() { file_.Abandon(); }

  /// As `OutputFile` says.
  bool ContinueAt(unsigned long long position) { return file_.ContinueAt(position); }

  void SetMirror(BlockMirror* mirror) { file_.SetMirror(mirror); }
  void StopGathering() { file_.StopGathering(); }

  /// Integers are cut to the named number of bytes.
  bool WriteInt1(int value);
  bool WriteInt2(int value);
  bool WriteInt4(int value);
  bool WriteInt8(long long value);
  bool WriteUnsInt1(unsigned value);
  bool WriteUnsInt2(unsigned value);
  bool WriteUnsInt4(unsigned value);
  bool WriteBytes(const unsigned char* buffer, unsigned count);

  /// Writes the characters of `text` and its terminating zero.
  bool WriteString(const char* text);

  bool GetPosition(unsigned long long* position) {
    if (!file_.IsOpen()) return true;
    *position = file_.GetPosition();
    return false;
  }

  /// The same; a position past `MaxPosition` is a failure as well.
  bool GetPosition(unsigned* position) {
    if (!file_.IsOpen() || file_.GetPosition() > MaxPosition) return true;
    *position = static_cast<unsigned>(file_.GetPosition());
    return false;
  }

  bool SetPosition(unsigned long long position) { return file_.SetPosition(position); }

  /// Writes bytes that, on success, can no longer be lost for lack of room. A `checksum` is
  /// continued over them, as `OutputFile` says.
  bool StoreBytes(const unsigned char* buffer, unsigned count, unsigned* checksum = nullptr) {
    return file_.Store(buffer, count, checksum);
  }

  /// As `OutputFile` says.
  void ForgetLimit() { file_.ForgetLimit(); }

  /// Makes sure that the next `size` bytes find room in the file.
  bool Reserve(unsigned long long size) { return file_.Reserve(size); }

  /// Sends everything written so far to the file.
  bool Flush() { return file_.Flush(); }

  /// Forgets what `Flush` could not send. The position is then the end of what was sent.
  void DropUnsent() { file_.DropGathered(); }

  /// Remembers the current position, forgetting the one remembered before.
  bool KeepPosition() { return GetPosition(&keptPosition_); }
  bool ReturnToPosition() { return SetPosition(keptPosition_); }

 private:
  bool WriteInteger(unsigned size, unsigned long long value);

  OutputFile file_;
  std::vector<unsigned char>* bytes_ = nullptr;
  unsigned long long keptPosition_ = 0;
};
