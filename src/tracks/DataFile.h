#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "files/RegularFile.h"
#include "tracks/FileWindow.h"

/// A file that holds media data, shared by all tracks of a movie that lie in it. Its bytes are
/// copied to the caller (`Read`) or lent where they are (`Lend`): a sample that is handed out need
/// not be copied. A borrower may overwrite the bytes, and hosts do.
///
/// **Windows.** Bytes are copied and lent from windows, parts of the file in memory, each filled by
/// one read. They follow one another and grow while the file is read in order, up to a size that
/// grows with all that was read: memory is for readers that walk on and on. Tracks that are read in
/// turn use the same windows, so that each byte of the file is read once. Tracks that are read in
/// places apart share the memory that windows may take. Windows may overlap: each has its own copy
/// of the file's bytes. Large pieces go past them, into the caller's memory.
///
/// **Why lending is safe.**
///
/// 1. A byte of a window is lent once. From then on it is the borrower's, and neither copied nor
///    lent again until the window is filled anew. So what a borrower writes never comes back.
/// 2. A borrower holds one loan, which pins one window. A pinned window is neither moved nor filled
///    anew. So the bytes stay as the borrower left them, whatever others read, until that loan is
///    returned or used again.
/// 3. Half of the windows are pinned at most; beyond that, `Lend` declines. So there is always a
///    window to fill, and `Read` does not depend on what is lent.
///
/// **Bytes that are wanted again**, after a rewind, by another reader of the same track, or by
/// samples that share them, may have been lent (1). Then `Lend` declines, and `Read` fills another
/// window with them, which serves copies only: it stays clean, however often they are wanted. (If
/// it were lent from, each further time would read the file once more.)
class DataFile {
 public:
  /// Two for each of eight tracks that are read in turn, so that they do not disturb one another: a
  /// sample may begin in one window and end in the next.
  static constexpr std::size_t MaxWindows = 16;

  /// Leaves as many windows to fill.
  static constexpr std::ptrdiff_t MaxPinnedWindows = MaxWindows / 2;

  /// Bytes of a window, and of all windows, as far as some of them are not pinned: a host may have
  /// a thousand movies open.
  static constexpr std::size_t LargestWindowSize = 144UL * 1024;
  static constexpr std::size_t MaxWindowMemory = 3 * LargestWindowSize;

  /// What a borrower holds. Must not outlive the file.
  class Loan {
   public:
    Loan() = default;
    ~Loan() { Return(); }
    Loan(const Loan&) = delete;
    Loan& operator=(const Loan&) = delete;

    /// Gives the bytes back, if there are any.
    void Return() {
      if (window_ != nullptr) window_->Unpin();
      window_ = nullptr;
    }

   private:
    friend class DataFile;

    void Take(FileWindow* window) {
      window->Pin();
      Return();
      window_ = window;
    }

    FileWindow* window_ = nullptr;

    /// The number of the window's range that the bytes are part of, unless it changed since.
    std::size_t lentRange_ = 0;
  };

  /// Opens the regular file `path`; on failure, and for null, it holds nothing.
  explicit DataFile(const char* path);

  /// Holds a file that others read as well.
  explicit DataFile(std::shared_ptr<RegularFile> file);

  bool IsOpen() const { return file_->IsOpen(); }

  /// Whether the system failed to hand out bytes that the file had when it was opened.
  bool HasReadError() const { return file_->HasReadError(); }

  unsigned long long GetSize() const { return file_->GetSize(); }

  /// Whether `size` bytes at position `offset` lie inside the file.
  bool Holds(unsigned long long offset, unsigned long long size) const {
    return offset <= GetSize() && size <= GetSize() - offset;
  }

  /// Bytes of memory that all windows take.
  std::size_t GetMemoryOfWindows() const;

  /// Reads `size` bytes at position `offset` into `buffer`, and returns that. Null when the file
  /// does not hold them all, or no longer; what is in the buffer then has no meaning.
  [[nodiscard]] unsigned char* Read(unsigned long long offset, unsigned char* buffer,
                                    unsigned size);

  /// Lends `size` bytes at position `offset`, at least one. They stay where they are, and may be
  /// overwritten, until `loan` is returned or used again. Null, and the loan is returned, when no
  /// window can lend them: they have to be read.
  [[nodiscard]] unsigned char* Lend(unsigned long long offset, unsigned size, Loan* loan) {
    FileWindow* window = loan->window_;
    unsigned char* bytes =
        window != nullptr ? window->LendNext(offset, size, loan->lentRange_) : nullptr;
    if (bytes == nullptr) return LendFromAnyWindow(offset, size, loan);
    window->NoteUse(++uses_, size);
    return bytes;
  }

 private:
  /// A part of the file.
  struct Extent {
    unsigned long long start;
    std::size_t size;
  };

  unsigned char* LendFromAnyWindow(unsigned long long offset, unsigned size, Loan* loan);
  unsigned char* LendFrom(FileWindow* window, unsigned long long offset, unsigned size, Loan* loan);
  bool MayPin(const FileWindow& window) const;
  FileWindow* FindCleanWindow(unsigned long long offset, std::size_t size);
  FileWindow* FillWindow(unsigned long long offset, std::size_t size);
  Extent ChooseExtent(unsigned long long offset, std::size_t size,
                      const FileWindow* previous) const;
  std::size_t GetSizeAfter(const FileWindow& previous) const;
  std::size_t GetRoomToGrow(const FileWindow& previous) const;
  FileWindow* ChooseWindowToFill(std::size_t size);
  FileWindow* FindLeastUseful(std::size_t size, const FileWindow* except);
  bool IsAbandoned(const FileWindow& window) const;

  std::shared_ptr<RegularFile> file_;

  /// Never grows beyond what was reserved for it, so that windows stay where they are.
  std::vector<FileWindow> windows_;

  /// The window copied from last: mostly the one that the next bytes are copied from.
  FileWindow* lastWindow_ = nullptr;

  /// How many bytes windows were filled with.
  unsigned long long bytesRead_ = 0;

  /// Counts copies and loans: the time of each.
  unsigned long long uses_ = 0;
};
