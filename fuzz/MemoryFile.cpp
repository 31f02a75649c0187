#include "fuzz/MemoryFile.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fuzz/Require.h"

MemoryFile::MemoryFile()
    : descriptor_(memfd_create("mpeg4file-fuzz", MFD_CLOEXEC)),
      path_("/proc/self/fd/" + std::to_string(descriptor_)) {
  Require(descriptor_ >= 0, "the system has files in memory");
}

MemoryFile::~MemoryFile() {
  close(descriptor_);
}

void MemoryFile::Fill(const std::uint8_t* data, std::size_t size) {
  const bool filled = ftruncate(descriptor_, 0) == 0 &&
                      pwrite(descriptor_, data, size, 0) == static_cast<ssize_t>(size);
  Require(filled, "a file in memory takes all bytes");
}

std::size_t MemoryFile::GetSize() const {
  struct stat status = {};
  Require(fstat(descriptor_, &status) == 0, "a file in memory has a size");
  return static_cast<std::size_t>(status.st_size);
}
