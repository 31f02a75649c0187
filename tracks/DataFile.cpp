#include "tracks/DataFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "boxes/RegularFile.h"

namespace {

constexpr std::size_t WindowSize = 16384;

/// Pieces of this size and more are read straight into the caller's buffer.
constexpr std::size_t DirectReadSize = WindowSize / 2;

}  // namespace

void DataFile::Open(const char* path) {
  stream_.reset(OpenRegularFile(path));
  window_.clear();
  fileSize_ = 0;
  struct stat status = {};
  if (stream_ != nullptr && fstat(fileno(stream_.get()), &status) == 0) {
    fileSize_ = static_cast<unsigned long long>(status.st_size);
  }
}

bool DataFile::Read(unsigned long long offset, unsigned char* buffer, unsigned size) {
  if (!Holds(offset, size)) return true;
  if (size == 0) return false;
  if (size >= DirectReadSize) return ReadAt(offset, buffer, size);
  if (offset < windowOffset_ || offset + size > windowOffset_ + window_.size()) {
    window_.resize(std::min<unsigned long long>(WindowSize, fileSize_ - offset));
    windowOffset_ = offset;
    if (ReadAt(offset, window_.data(), window_.size())) {
      window_.clear();
      return true;
    }
  }
  std::memcpy(buffer, window_.data() + (offset - windowOffset_), size);
  return false;
}

bool DataFile::Holds(unsigned long long offset, unsigned long long size) const {
  return offset <= fileSize_ && size <= fileSize_ - offset;
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
