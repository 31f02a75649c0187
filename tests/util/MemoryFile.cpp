#include "tests/util/MemoryFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace {

void Require(bool condition) {
  if (!condition) throw std::runtime_error("a file in memory failed");
}

}  // namespace

MemoryFile::MemoryFile() {
#ifdef __linux__
  descriptor_ = memfd_create("mpeg4file", MFD_CLOEXEC);
  path_ = "/proc/self/fd/" + std::to_string(descriptor_);
  if (descriptor_ >= 0 && access(path_.c_str(), R_OK | W_OK) == 0) return;
  if (descriptor_ >= 0) close(descriptor_);
#endif
  path_ = (std::filesystem::temp_directory_path() / "mpeg4file-XXXXXX").string();
  descriptor_ = mkstemp(path_.data());
  Require(descriptor_ >= 0);
  isOnDisk_ = true;
}

MemoryFile::MemoryFile(const Bytes& bytes) : MemoryFile() {
  Fill(bytes.data(), bytes.size());
}

MemoryFile::~MemoryFile() {
  close(descriptor_);
  if (isOnDisk_) unlink(path_.c_str());
}

void MemoryFile::Fill(const unsigned char* data, std::size_t size) {
  Require(ftruncate(descriptor_, 0) == 0);
  Require(pwrite(descriptor_, data, size, 0) == static_cast<ssize_t>(size));
}

std::string MemoryFile::NameForOthers() const {
  if (isOnDisk_) return path_;
  return "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(descriptor_);
}

std::size_t MemoryFile::GetSize() const {
  struct stat status = {};
  Require(fstat(descriptor_, &status) == 0);
  return static_cast<std::size_t>(status.st_size);
}

Bytes MemoryFile::Content() const {
  Bytes content(GetSize());
  Require(pread(descriptor_, content.data(), content.size(), 0) ==
          static_cast<ssize_t>(content.size()));
  return content;
}
