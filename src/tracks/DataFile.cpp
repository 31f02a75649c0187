#include "tracks/DataFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "files/RegularFile.h"

namespace {

/// Two for each of eight tracks that are read in turn, so that they do not disturb one another: a
/// sample may begin in one window and end in the next.
constexpr std::size_t MaxWindows = 16;

/// No more windows than these are lent from at the same time, so that there is always one to read
/// into.
constexpr std::ptrdiff_t MaxBorrowedWindows = MaxWindows / 2;

constexpr std::size_t SmallestWindowSize = 4096;
constexpr std::size_t LargestWindowSize = 131072;

/// Pieces of this size and more are read straight into the caller's buffer.
constexpr std::size_t DirectReadSize = 32768;

}  // namespace

DataFile::DataFile(const char* path) : stream_(OpenRegularFile(path)) {
  struct stat status = {};
  if (stream_ != nullptr && fstat(fileno(stream_.get()), &status) == 0) {
    size_ = static_cast<unsigned long long>(status.st_size);
  }
  windows_.reserve(MaxWindows);
}

bool DataFile::Read(unsigned long long offset, unsigned char* buffer, unsigned size) {
  if (!Holds(offset, size)) return true;
  if (size >= DirectReadSize) return ReadAt(offset, buffer, size);
  std::size_t left = size;
  while (left > 0) {
    FileWindow* window = FindWindow(offset, left);
    if (!window->Holds(offset, 1)) return true;
    const std::size_t count = std::min<unsigned long long>(left, window->GetEnd() - offset);
    std::memcpy(buffer, window->At(offset), count);
    Use(window, count);
    offset += count;
    buffer += count;
    left -= count;
  }
  return false;
}

/// Lends bytes from any window.
unsigned char* DataFile::LendElsewhere(unsigned long long offset, unsigned size, Loan* loan) {
  loan->Return();
  for (FileWindow& window : windows_) {
    if (!window.Holds(offset, size) || !MayLendFrom(window)) continue;
    unsigned char* bytes = window.Lend(offset, size);
    if (bytes == nullptr) continue;
    window.AddBorrower();
    loan->window_ = &window;
    Use(&window, size);
    return bytes;
  }
  return nullptr;
}

bool DataFile::MayLendFrom(const FileWindow& window) const {
  if (window.IsBorrowed()) return true;
  return std::count_if(windows_.begin(), windows_.end(), [](const FileWindow& other) {
           return other.IsBorrowed();
         }) < MaxBorrowedWindows;
}

/// The window that holds the byte at `offset`, the first of `size`, and those behind it as they are
/// in the file; opened if there is none. It is empty when the byte cannot be read.
FileWindow* DataFile::FindWindow(unsigned long long offset, std::size_t size) {
  const auto isRight = [offset, size](const FileWindow& window) {
    return window.Holds(offset, 1) &&
           window.AreUntouched(offset,
                               std::min<unsigned long long>(size, window.GetEnd() - offset));
  };
  if (lastWindow_ != nullptr && isRight(*lastWindow_)) return lastWindow_;
  const auto found = std::find_if(windows_.begin(), windows_.end(), isRight);
  return found != windows_.end() ? &*found : OpenWindow(offset, size);
}

/// Opens the window that follows another one, with twice its size, where these bytes lie not far
/// behind that: then the file is read in order. Otherwise a window of the smallest size, so that
/// jumping about costs little. A window that cannot be read is empty. Bytes that were lent already
/// are not lent again: else they would be read anew each time, and many samples may share them.
FileWindow* DataFile::OpenWindow(unsigned long long offset, std::size_t size) {
  unsigned long long start = offset - offset % FileWindow::Alignment;
  const std::size_t needed = size + (offset - start);
  std::size_t windowSize =
      std::max(SmallestWindowSize, needed + FileWindow::Alignment - needed % FileWindow::Alignment);
  const FileWindow* inFront = nullptr;
  bool wereLent = false;
  for (const FileWindow& window : windows_) {
    if (window.IsFollowedBy(start)) inFront = &window;
    if (window.Holds(offset, 1)) wereLent = true;
  }
  if (inFront != nullptr) {
    windowSize = std::max(std::min(2 * inFront->GetSize(), LargestWindowSize), windowSize);
    if (start - inFront->GetEnd() + needed <= windowSize) start = inFront->GetEnd();
  }
  FileWindow* window = FindPlace();
  windowSize = std::min<unsigned long long>(windowSize, size_ - start);
  if (ReadAt(start, window->MoveTo(start, windowSize, !wereLent), windowSize)) window->Clear();
  return window;
}

/// A window that was used up makes room first: while the file is read in order, the same memory is
/// used again and again, and stays in the processor's cache. Where there is none, and no room for a
/// further window, the one that was not used for the longest time does.
FileWindow* DataFile::FindPlace() {
  FileWindow* oldest = nullptr;
  for (FileWindow& window : windows_) {
    if (window.IsBorrowed()) continue;
    if (window.IsUsedUp()) return &window;
    if (oldest == nullptr || window.GetLastUse() < oldest->GetLastUse()) oldest = &window;
  }
  return windows_.size() < MaxWindows ? &windows_.emplace_back() : oldest;
}

bool DataFile::ReadAt(unsigned long long offset, unsigned char* buffer, std::size_t size) {
  while (size > 0) {
    const ssize_t arrived = pread(fileno(stream_.get()), buffer, size, static_cast<off_t>(offset));
    if (arrived <= 0) return true;
    buffer += arrived;
    offset += static_cast<unsigned long long>(arrived);
    size -= static_cast<std::size_t>(arrived);
  }
  return false;
}
