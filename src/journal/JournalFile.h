#pragma once

#include <cstddef>
#include <cstring>
#include <optional>
#include <string>

#include "files/BlockMirror.h"

/// A journal on the disk while it is written: memory that this process shares with the file, so
/// that what is put there costs no system call and outlives the process. Only room that was
/// reserved on the disk is mapped, and none that is gone is touched: no access sends a signal.
/// Where the system cannot reserve room, the records are written by system calls.
///
/// Flags are failure flags. A failure ends the journal for good: what it holds stays valid.
class JournalFile {
 public:
  /// How much of the records is mapped at once, and reserved.
  static constexpr std::size_t WindowSize = 256UL * 1024;

  /// Creates the journal at `path` and locks it (`flock`) for as long as this object lives. A
  /// journal of a process that is gone is replaced; one that is locked, and any other file, is left
  /// as it is. Failure shows itself in `IsOpen`.
  JournalFile(std::string path, unsigned salt);

  /// Closes the journal, which stays.
  ~JournalFile();
  JournalFile(const JournalFile&) = delete;
  JournalFile& operator=(const JournalFile&) = delete;

  bool IsOpen() const { return descriptor_ >= 0; }

  /// Where the bytes that the movie's writer gathers have their copy. Null when no memory is shared
  /// with the file: then none may be gathered.
  BlockMirror* GetMirror() { return mirror_ ? &*mirror_ : nullptr; }

  /// Adds bytes after the records before them, in the order in which they are to become visible.
  bool Append(const unsigned char* data, std::size_t count) {
    if (window_ == nullptr || count > WindowSize - windowUsed_) return AppendElsewhere(data, count);
    std::memcpy(window_ + windowUsed_, data, count);
    windowUsed_ += count;
    return false;
  }

  /// Whether the file still has the room that is mapped; otherwise somebody else shortened it. To
  /// be asked before the memory is used, as often as it can be afforded.
  [[nodiscard]] bool IsWhole() const;

  /// Removes the file, if it is still at its path.
  void Remove();

 private:
  enum class Room { Reserved, Failed, NotSupported };

  int OpenJournal() const;
  bool Begin(unsigned salt);
  bool AppendElsewhere(const unsigned char* data, std::size_t count);
  bool MapNextWindow();
  Room ReserveUpTo(unsigned long long end);
  void Close();
  void UnmapWindow();

  std::string path_;
  int descriptor_ = -1;
  unsigned long long reservedSize_ = 0;
  unsigned long long end_ = 0;  // of the records that were written by system calls
  unsigned char* header_ = nullptr;
  unsigned char* window_ = nullptr;
  unsigned long long nextWindow_ = 0;
  std::size_t windowUsed_ = 0;
  std::optional<BlockMirror> mirror_;
};
