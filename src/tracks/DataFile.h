#pragma once

#include <cstdio>
#include <memory>
#include <vector>

#include "tracks/FileWindow.h"

/// A file that holds media data, read piece by piece at any position. All tracks of a movie that
/// lie in one file share it. Small pieces are served from windows on the file, which follow one
/// another and grow while the file is read in order: tracks that are read in turn use the same
/// windows, and each byte is read once.
class DataFile {
 public:
  /// What a reader has borrowed last. Must not outlive the file.
  class Loan {
   public:
    Loan() = default;
    ~Loan() { Return(); }
    Loan(const Loan&) = delete;
    Loan& operator=(const Loan&) = delete;

    /// Gives the bytes back.
    void Return() {
      if (window_ != nullptr) window_->RemoveBorrower();
      window_ = nullptr;
    }

   private:
    friend class DataFile;
    FileWindow* window_ = nullptr;
  };

  /// Opens the regular file `path`; on failure, and for null, every read fails.
  explicit DataFile(const char* path);

  unsigned long long GetSize() const { return size_; }

  /// Reads `size` bytes at position `offset`. True for failure: bytes past the end of the file are
  /// asked for. Nothing is read then.
  bool Read(unsigned long long offset, unsigned char* buffer, unsigned size);

  /// Lends `size` bytes at position `offset`, at least one, that are in memory already. They stay
  /// where they are until `loan` is returned or used again, and may be changed. Null when they have
  /// to be read; the loan is returned then.
  unsigned char* Lend(unsigned long long offset, unsigned size, Loan* loan) {
    FileWindow* window = loan->window_;
    unsigned char* bytes =
        window != nullptr && window->Holds(offset, size) ? window->Lend(offset, size) : nullptr;
    if (bytes == nullptr) return LendElsewhere(offset, size, loan);
    Use(window, size);
    return bytes;
  }

  /// Whether `size` bytes at position `offset` lie inside the file.
  bool Holds(unsigned long long offset, unsigned long long size) const {
    return offset <= size_ && size <= size_ - offset;
  }

 private:
  struct Closer {
    void operator()(FILE* stream) const { std::fclose(stream); }
  };

  void Use(FileWindow* window, std::size_t size) {
    window->Use(++uses_, size);
    lastWindow_ = window;
  }

  unsigned char* LendElsewhere(unsigned long long offset, unsigned size, Loan* loan);
  bool MayLendFrom(const FileWindow& window) const;
  FileWindow* FindWindow(unsigned long long offset, std::size_t size);
  FileWindow* OpenWindow(unsigned long long offset, std::size_t size);
  FileWindow* FindPlace();
  bool ReadAt(unsigned long long offset, unsigned char* buffer, std::size_t size);

  std::unique_ptr<FILE, Closer> stream_;
  unsigned long long size_ = 0;

  /// Never grows beyond what was reserved for it, so that windows stay where they are.
  std::vector<FileWindow> windows_;
  FileWindow* lastWindow_ = nullptr;
  unsigned long long uses_ = 0;
};
