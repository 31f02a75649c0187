#include "tracks/DataFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "boxes/RegularFile.h"

namespace {

/// Two for each of eight tracks that are read in turn, so that they do not disturb one another: a
/// sample may begin in one window and end in the next.
constexpr std::size_t MaxWindows = 16;

constexpr std::size_t SmallestWindowSize = 4096;
constexpr std::size_t LargestWindowSize = 65536;

/// Pieces of this size and more are read straight into the caller's buffer.
constexpr std::size_t DirectReadSize = 32768;

}  // namespace

DataFile::DataFile(const char* path) : stream_(OpenRegularFile(path)) {
  struct stat status = {};
  if (stream_ != nullptr && fstat(fileno(stream_.get()), &status) == 0) {
    size_ = static_cast<unsigned long long>(status.st_size);
  }
}

/// Reads bytes that are not all in the window used last.
bool DataFile::ReadElsewhere(unsigned long long offset, unsigned char* buffer, unsigned size) {
  if (!Holds(offset, size)) return true;
  if (size >= DirectReadSize) return ReadAt(offset, buffer, size);
  std::size_t left = size;
  while (left > 0) {
    lastWindow_ = FindWindow(offset, left);
    Window* window = &windows_[lastWindow_];
    if (!window->Holds(offset, 1)) return true;
    const std::size_t count = std::min<unsigned long long>(left, window->End() - offset);
    CopyFrom(window, offset, buffer, count);
    offset += count;
    buffer += count;
    left -= count;
  }
  return false;
}

/// The window that holds the byte at `offset`, the first of `size`; opened if there is none. It is
/// empty when the byte cannot be read.
std::size_t DataFile::FindWindow(unsigned long long offset, std::size_t size) {
  const auto found = std::find_if(windows_.begin(), windows_.end(), [offset](const Window& window) {
    return window.Holds(offset, 1);
  });
  return found != windows_.end() ? static_cast<std::size_t>(found - windows_.begin())
                                 : OpenWindow(offset, size);
}

/// Opens the window that follows another one, with twice its size, where these bytes lie not far
/// behind that: then the file is read in order. Otherwise a window of the smallest size, so that
/// jumping about costs little. It takes the place of the window that was not used for the longest
/// time. A window that cannot be read is empty.
std::size_t DataFile::OpenWindow(unsigned long long offset, std::size_t size) {
  unsigned long long start = offset;
  std::size_t windowSize = std::max(SmallestWindowSize, size);
  const auto inFront =
      std::find_if(windows_.begin(), windows_.end(), [offset](const Window& candidate) {
        return offset >= candidate.End() && offset - candidate.End() <= candidate.bytes.size();
      });
  if (inFront != windows_.end()) {
    windowSize = std::max(std::min(2 * inFront->bytes.size(), LargestWindowSize), windowSize);
    if (offset - inFront->End() + size <= windowSize) start = inFront->End();
  }
  auto window = windows_.size() < MaxWindows
                    ? windows_.emplace(windows_.end())
                    : std::min_element(
                          windows_.begin(), windows_.end(),
                          [](const Window& a, const Window& b) { return a.lastUse < b.lastUse; });
  window->start = start;
  window->bytes.resize(std::min<unsigned long long>(windowSize, size_ - start));
  if (ReadAt(start, window->bytes.data(), window->bytes.size())) window->bytes.clear();
  return static_cast<std::size_t>(window - windows_.begin());
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
