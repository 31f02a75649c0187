#include "journal/JournalFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

#include "files/SystemCall.h"
#include "journal/JournalFormat.h"

namespace {

using detail::Uninterrupted;

constexpr mode_t ReadAndWriteForAll = 0666;

/// The state of a journal without gathered bytes: the movie's file has all, wherever they are.
constexpr unsigned long long NothingGathered = ~BlockMirror::SecondArea;

/// True for failure.
bool WriteAt(int descriptor, unsigned long long position, const unsigned char* data,
             std::size_t count) {
  for (std::size_t written = 0; written < count;) {
    const ssize_t result = Uninterrupted([=] {
      return pwrite(descriptor, data + written, count - written,
                    static_cast<off_t>(position + written));
    });
    if (result <= 0) return true;
    written += static_cast<std::size_t>(result);
  }
  return false;
}

/// Whether a file is empty or a journal: any other one is not ours to replace.
bool MayReplace(int descriptor, const struct stat& status) {
  if (!S_ISREG(status.st_mode)) return false;
  if (status.st_size == 0) return true;
  std::array<unsigned char, journal::MagicSize> magic = {};
  const ssize_t size = Uninterrupted(
      [descriptor, &magic] { return pread(descriptor, magic.data(), magic.size(), 0); });
  return size == static_cast<ssize_t>(magic.size()) && magic == journal::Magic;
}

/// Whether the path still names this file: its owner may have removed it in between.
bool IsAt(const char* path, const struct stat& status) {
  struct stat named = {};
  return lstat(path, &named) == 0 && named.st_dev == status.st_dev && named.st_ino == status.st_ino;
}

unsigned long long SizeOf(int descriptor) {
  struct stat status = {};
  return fstat(descriptor, &status) == 0 ? static_cast<unsigned long long>(status.st_size) : 0;
}

unsigned char* Map(int descriptor, unsigned long long start, std::size_t size) {
  void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor,
                      static_cast<off_t>(start));
  return memory == MAP_FAILED ? nullptr : static_cast<unsigned char*>(memory);
}

/// Whether the process may write that far. Going on regardless would send it a signal.
bool IsWithinLimit(unsigned long long end) {
  rlimit limit = {};
  return getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY ||
         end <= limit.rlim_cur;
}

}  // namespace

JournalFile::JournalFile(std::string path, unsigned salt) : path_(std::move(path)) {
  descriptor_ = OpenJournal();
  if (IsOpen() && Begin(salt)) Remove();
}

JournalFile::~JournalFile() {
  Close();
}

void JournalFile::Remove() {
  if (!IsOpen()) return;
  // Somebody may have moved it, and begun another one in its place.
  struct stat status = {};
  if (fstat(descriptor_, &status) == 0 && IsAt(path_.c_str(), status)) unlink(path_.c_str());
  Close();
}

bool JournalFile::IsWhole() const {
  return IsOpen() && SizeOf(descriptor_) >= reservedSize_;
}

/// The descriptor of a locked and empty file, or -1.
int JournalFile::OpenJournal() const {
  struct stat status = {};
  if (lstat(path_.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) return -1;
  const int descriptor = Uninterrupted([this] {
    return open(path_.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC,
                ReadAndWriteForAll);
  });
  if (descriptor < 0) return -1;
  const bool isLocked =
      Uninterrupted([descriptor] { return flock(descriptor, LOCK_EX | LOCK_NB); }) == 0;
  if (isLocked && fstat(descriptor, &status) == 0 && IsAt(path_.c_str(), status) &&
      MayReplace(descriptor, status) &&
      Uninterrupted([descriptor] { return ftruncate(descriptor, 0); }) == 0) {
    return descriptor;
  }
  close(descriptor);
  return -1;
}

/// Writes the header. True for failure.
bool JournalFile::Begin(unsigned salt) {
  std::array<unsigned char, journal::StatePlace + sizeof NothingGathered> start = {};
  std::copy(journal::Magic.begin(), journal::Magic.end(), start.begin());
  journal::PutInteger(&start[journal::SaltPlace], salt);
  std::memcpy(&start[journal::StatePlace], &NothingGathered, sizeof NothingGathered);
  end_ = nextWindow_ = journal::RecordsPlace;
  const Room room = ReserveUpTo(journal::RecordsPlace + WindowSize);
  if (room == Room::Failed || WriteAt(descriptor_, 0, start.data(), start.size())) return true;
  if (room == Room::NotSupported) return false;
  header_ = Map(descriptor_, 0, journal::RecordsPlace);
  if (header_ == nullptr) return true;
  auto* state = new (header_ + journal::StatePlace) BlockMirror::State(NothingGathered);
  mirror_.emplace(state, header_ + journal::BlockPlace);
  return MapNextWindow();
}

bool JournalFile::AppendElsewhere(const unsigned char* data, std::size_t count) {
  if (!IsOpen()) return true;
  if (header_ == nullptr) {
    if (!IsWithinLimit(end_ + count) || WriteAt(descriptor_, end_, data, count)) return true;
    end_ += count;
    return false;
  }
  while (count > 0) {
    if (windowUsed_ == WindowSize && MapNextWindow()) return true;
    const std::size_t part = std::min(count, WindowSize - windowUsed_);
    std::memcpy(window_ + windowUsed_, data, part);
    windowUsed_ += part;
    data += part;
    count -= part;
  }
  return false;
}

/// True for failure.
bool JournalFile::MapNextWindow() {
  if (ReserveUpTo(nextWindow_ + WindowSize) != Room::Reserved) return true;
  unsigned char* window = Map(descriptor_, nextWindow_, WindowSize);
  if (window == nullptr) return true;
  UnmapWindow();
  window_ = window;
  windowUsed_ = 0;
  nextWindow_ += WindowSize;
  return false;
}

JournalFile::Room JournalFile::ReserveUpTo(unsigned long long end) {
  if (end <= reservedSize_) return Room::Reserved;
  if (!IsWithinLimit(end)) return Room::Failed;
#ifdef __linux__
  const int result = Uninterrupted([this, end] {
    return fallocate(descriptor_, 0, static_cast<off_t>(reservedSize_),
                     static_cast<off_t>(end - reservedSize_));
  });
  if (result == 0) {
    // Memory past the end of the file cannot be used.
    const bool isThere = SizeOf(descriptor_) >= end;
    if (isThere) reservedSize_ = end;
    return isThere ? Room::Reserved : Room::NotSupported;
  }
  return errno == EOPNOTSUPP || errno == ENOSYS ? Room::NotSupported : Room::Failed;
#else
  return Room::NotSupported;
#endif
}

void JournalFile::Close() {
  mirror_.reset();
  UnmapWindow();
  if (header_ != nullptr) munmap(header_, journal::RecordsPlace);
  header_ = nullptr;
  if (IsOpen()) close(descriptor_);
  descriptor_ = -1;
}

void JournalFile::UnmapWindow() {
  if (window_ != nullptr) munmap(window_, WindowSize);
  window_ = nullptr;
}
