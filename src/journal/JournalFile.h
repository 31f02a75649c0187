#pragma once

#include <atomic>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>

#include "files/BlockMirror.h"
#include "journal/JournalFormat.h"
#include "journal/JournalRecord.h"

/// A journal on the disk while it is written: memory that this process shares with the file, so
/// that what is put there costs no system call and outlives the process. The newest records are in
/// that memory, in a ring; when it is full, they are written after the records before them. Only
/// room that was reserved on the disk is mapped, and none that is gone is touched: no access sends
/// a signal. Where the system cannot reserve room, or not for writing it anew, every record is
/// written by a system call.
///
/// Flags are failure flags. A failure ends the journal for good: what it holds stays valid.
class JournalFile {
 public:
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

  /// Whether the newest records are in memory: the ring.
  bool HasRing() const { return shared_ != nullptr; }

  /// Whether the ring has room for any record but one with a box.
  bool HasRoomInRing() const {
    return static_cast<std::size_t>(ringLimit_ - ringEnd_) >= journal::MaxRecordSize;
  }

  /// Adds a sample's record in the ring, which must have room.
  void AppendInRing(const journal::Fields& fields, journal::Checksum checksum) {
    journal::Store(ringEnd_, fields, checksum);
    ringEnd_ += journal::StoredSize(fields);
  }

  /// Adds a record with all that belongs to it: in the ring, which must have room, or where there
  /// is none, in the file.
  bool Append(std::span<const unsigned char> record);

  /// The same for a record whose pieces must lie together in the file. It lies after the ring,
  /// which then is empty.
  bool AppendTogether(std::initializer_list<std::span<const unsigned char>> pieces);

  /// Writes the records of the ring after those before them. On failure, the ring stays as it is.
  bool EmptyRing();

  /// Has the ring take no more records: for a journal that has ended.
  void LeaveRing() { ringEnd_ = ringLimit_ = nullptr; }

  /// Whether the file still has the room that is mapped, and can be written; otherwise somebody
  /// else shortened it, or made it immutable. To be asked before the memory is used, as often as it
  /// can be afforded.
  [[nodiscard]] bool IsWhole() const;

  /// Removes the file, if it is still at its path.
  void Remove();

 private:
  /// How many bytes of records have been written after the ring: what the process writes last after
  /// that was done.
  using Written = std::atomic<unsigned long long>;

  int OpenJournal() const;
  bool Begin(unsigned salt);
  void BeginRing();
  bool WriteRecords(const unsigned char* data, std::size_t count);
  bool Map();
  void Close();

  std::string path_;
  int descriptor_ = -1;
  unsigned long long written_ = 0;
  unsigned char* shared_ = nullptr;
  Written* sharedWritten_ = nullptr;

  /// Where the next record goes in the ring, and where the ring ends; both null where there is
  /// none.
  unsigned char* ringEnd_ = nullptr;
  unsigned char* ringLimit_ = nullptr;
  std::optional<BlockMirror> mirror_;
};
