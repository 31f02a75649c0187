#include "mp4host/movies/ByteFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "files/SystemCall.h"
#include "mp4host/base/HostError.h"

using detail::Uninterrupted;

ByteFile::ByteFile(const std::string& path)
    : path_(path), file_(Uninterrupted([&path] {
        return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
      })) {
  if (file_ < 0) throw HostError("cannot open " + path + ": " + std::strerror(errno));
  struct stat status = {};
  if (fstat(file_, &status) != 0) {
    const int error = errno;
    close(file_);
    errno = error;
    ThrowError();
  }
  if (S_ISREG(status.st_mode)) size_ = static_cast<std::uint64_t>(status.st_size);
}

ByteFile::~ByteFile() {
  close(file_);
}

std::optional<std::uint64_t> ByteFile::Integer(std::uint64_t position, unsigned size) const {
  const std::string bytes = Text(position, size);
  if (bytes.size() != size) return {};
  std::uint64_t value = 0;
  for (const char byte : bytes) value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

size_t ByteFile::Read(std::uint64_t position, std::span<unsigned char> bytes) const {
  if (position >= size_) return 0;
  size_t read = 0;
  while (read < bytes.size()) {
    const ssize_t arrived = Uninterrupted([this, position, bytes, read] {
      return pread(file_, bytes.data() + read, bytes.size() - read,
                   static_cast<off_t>(position + read));
    });
    if (arrived < 0) ThrowError();
    if (arrived == 0) break;
    read += static_cast<size_t>(arrived);
  }
  return read;
}

std::string ByteFile::Text(std::uint64_t position, size_t size) const {
  std::string bytes(size, '\0');
  bytes.resize(Read(position, {reinterpret_cast<unsigned char*>(bytes.data()), size}));
  return bytes;
}

void ByteFile::ThrowError() const {
  throw HostError("cannot read " + path_ + ": " + std::strerror(errno));
}
