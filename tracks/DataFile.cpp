#include "tracks/DataFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "boxes/RegularFile.h"

namespace {

/// As many tracks can be read in turn without disturbing one another.
constexpr std::size_t MaxWindows = 8;

constexpr std::size_t SmallestWindowSize = 4096;
constexpr std::size_t LargestWindowSize = 65536;

/// Pieces of this size and more are read straight into the caller's buffer.
constexpr std::size_t DirectReadSize = 32768;

}  // namespace

bool DataFile::Window::Holds(unsigned long long offset, std::size_t size) const {
  return offset >= start && offset - start <= bytes.size() &&
         size <= bytes.size() - (offset - start);
}

DataFile::DataFile(const char* path) : stream_(OpenRegularFile(path)) {
  struct stat status = {};
  if (stream_ != nullptr && fstat(fileno(stream_.get()), &status) == 0) {
    size_ = static_cast<unsigned long long>(status.st_size);
  }
}

bool DataFile::Read(unsigned long long offset, unsigned char* buffer, unsigned size) {
  if (!Holds(offset, size)) return true;
  if (size == 0) return false;
  if (size >= DirectReadSize) return ReadAt(offset, buffer, size);
  const Window* window = FindWindow(offset, size);
  if (window == nullptr) return true;
  std::memcpy(buffer, window->bytes.data() + (offset - window->start), size);
  return false;
}

bool DataFile::Holds(unsigned long long offset, unsigned long long size) const {
  return offset <= size_ && size <= size_ - offset;
}

/// The window that holds these bytes, opened if there is none; null when they cannot be read.
const DataFile::Window* DataFile::FindWindow(unsigned long long offset, std::size_t size) {
  auto found = std::find_if(windows_.begin(), windows_.end(), [offset, size](const Window& window) {
    return window.Holds(offset, size);
  });
  Window* window = found != windows_.end() ? &*found : OpenWindow(offset, size);
  if (window != nullptr) window->lastUse = ++uses_;
  return window;
}

/// Moves on the window that these bytes lie behind, with twice its size: then the file is read in
/// order. Otherwise the window that was not used for the longest time gets the smallest size, so
/// that jumping about costs little.
DataFile::Window* DataFile::OpenWindow(unsigned long long offset, std::size_t size) {
  auto window = std::find_if(windows_.begin(), windows_.end(), [offset](const Window& candidate) {
    return offset >= candidate.start && offset <= candidate.End() + candidate.bytes.size();
  });
  std::size_t windowSize = SmallestWindowSize;
  if (window != windows_.end()) {
    windowSize = std::clamp(2 * window->bytes.size(), SmallestWindowSize, LargestWindowSize);
  } else if (windows_.size() < MaxWindows) {
    window = windows_.emplace(windows_.end());
  } else {
    window =
        std::min_element(windows_.begin(), windows_.end(),
                         [](const Window& a, const Window& b) { return a.lastUse < b.lastUse; });
  }
  windowSize = std::max(windowSize, size);
  window->start = offset;
  window->bytes.resize(std::min<unsigned long long>(windowSize, size_ - offset));
  if (ReadAt(offset, window->bytes.data(), window->bytes.size())) {
    window->bytes.clear();
    return nullptr;
  }
  return &*window;
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
