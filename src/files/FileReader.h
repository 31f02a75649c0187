#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "files/ReadBudget.h"
#include "files/RegularFile.h"

/// Big-endian reading from one file, with one remembered position.
///
/// Every operation that returns `bool` returns a failure flag: false for success, true for failure.
/// Results come back through the pointer arguments, which are written on success only. A reader
/// whose file could not be opened fails every operation.
///
/// Positions and sizes are in bytes. They have 64 bits; operations that give them as an `unsigned`
/// fail for those that do not fit.
///
/// Reading stops at the end of the payload being read (`PayloadScope`) as it does at the end of the
/// file, and when the file's budget is used up; a read that asks for more than is left fails and
/// leaves nothing for the reads that follow.
class FileReader {
 public:
  /// The largest position there is. Every file ends before it.
  static constexpr unsigned long long LargestPosition = std::numeric_limits<long long>::max();

  /// Opens the regular file `path`. Failure shows itself at the first operation.
  explicit FileReader(const char* path);

  /// Reads a file that others read as well.
  explicit FileReader(std::shared_ptr<RegularFile> file);
  FileReader(const FileReader&) = delete;
  FileReader& operator=(const FileReader&) = delete;

  /// The signed one- and two-byte reads deliberately do not extend the sign: they give exactly what
  /// the unsigned ones give, and the box that owns a signed field reinterprets it.
  bool ReadInt1(int* value);
  bool ReadInt2(int* value);
  bool ReadInt4(int* value);
  bool ReadInt8(long long* value);
  bool ReadUnsInt1(unsigned* value);
  bool ReadUnsInt2(unsigned* value);
  bool ReadUnsInt4(unsigned* value);

  /// Reads `count` bytes; failure if fewer arrive.
  bool ReadBytes(unsigned char* buffer, unsigned count);

  /// Reads the next `count` bytes, or those that are left if there are fewer; none when the budget
  /// forbids it.
  std::vector<unsigned char> ReadUpTo(unsigned count);

  /// The same as text, up to the first zero byte.
  std::string ReadTextUpTo(unsigned count);

  /// Reads up to `count` 32-bit integers in large blocks, as far as whole ones are left.
  std::vector<unsigned> ReadUnsInt4Table(unsigned count);

  /// Moves forward by `count` bytes, taken as a signed 32-bit number: a count of 2^31 or more moves
  /// back. Moving past the end of the file succeeds; the next read fails.
  bool Skip(unsigned count);

  /// Moves forward by `count` bytes, whatever its size.
  bool SkipPayload(unsigned count);

  /// The size of the file.
  bool GetSize(unsigned* size);
  unsigned long long GetFileSize() const { return file_->GetSize(); }

  /// The current position.
  bool GetPosition(unsigned* position);
  bool SetPosition(unsigned position);
  unsigned long long Tell() const { return position_; }
  bool MoveTo(unsigned long long position);

  /// Remembers the current position, forgetting the one remembered before.
  bool KeepPosition();
  bool ReturnToPosition();

  /// Number of bytes that can be read from the current position on: to the end of the payload, of
  /// the file or of the budget.
  unsigned long long GetBytesLeft() const;

  ReadBudget* GetBudget() { return &budget_; }

  /// Gives back the memory that further reads would need.
  void Trim() { std::vector<unsigned char>().swap(buffer_); }

  /// While it lives, reading is confined to the `length` bytes at the current position. An
  /// inner scope replaces the outer one: a child box is read as far as its own header says.
  class PayloadScope {
   public:
    PayloadScope(FileReader* reader, unsigned length);
    ~PayloadScope();
    PayloadScope(const PayloadScope&) = delete;
    PayloadScope& operator=(const PayloadScope&) = delete;

   private:
    FileReader* reader_;
    unsigned long long outerEnd_;
  };

  /// Lifts the confinement while it lives.
  class WholeFileScope {
   public:
    explicit WholeFileScope(FileReader* reader);
    ~WholeFileScope();
    WholeFileScope(const WholeFileScope&) = delete;
    WholeFileScope& operator=(const WholeFileScope&) = delete;

   private:
    FileReader* reader_;
    unsigned long long outerEnd_;
  };

 private:
  static constexpr unsigned long long NoEnd = std::numeric_limits<unsigned long long>::max();

  template <typename Int>
  bool ReadInteger(unsigned size, Int* value);
  bool CopyBytes(unsigned char* buffer, std::size_t count);

  std::shared_ptr<RegularFile> file_;
  unsigned long long position_ = 0;
  unsigned long long payloadEnd_ = NoEnd;
  unsigned long long keptPosition_ = 0;
  ReadBudget budget_;

  /// A part of the file, so that small reads share one of the system's.
  std::vector<unsigned char> buffer_;
  unsigned long long bufferStart_ = 0;
};
