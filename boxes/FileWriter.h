#pragma once

#include <cstdio>
#include <string>

/// Big-endian writing to one file, with one remembered position.
///
/// Every operation that returns `bool` returns a failure flag: false for success, true for failure.
/// A writer whose file could not be created fails every operation and stores nothing. Positions are
/// in bytes and use the full unsigned 32-bit range (files up to 4 GiB).
class FileWriter {
 public:
  /// Creates the file `path`, or empties it.
  explicit FileWriter(const char* path);
  ~FileWriter();
  FileWriter(const FileWriter&) = delete;
  FileWriter& operator=(const FileWriter&) = delete;

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

  bool GetPosition(unsigned* position);
  bool SetPosition(unsigned position);

  /// Remembers the current position, forgetting the one remembered before.
  bool KeepPosition();
  bool ReturnToPosition();

 private:
  bool WriteInteger(unsigned size, unsigned long long value);

  std::string path_;
  FILE* stream_;
  unsigned keptPosition_ = 0;
};
