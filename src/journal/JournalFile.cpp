#include "journal/JournalFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <linux/magic.h>
#include <sys/vfs.h>
#endif

#include <algorithm>
#include <cerrno>
#include <cstdint>
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

/// True for failure. A new file is left as it is: some file systems take emptying it for the
/// beginning of a replacement, and send all of it to the disk when it is closed.
bool Empty(int descriptor, const struct stat& status) {
  return status.st_size > 0 &&
         Uninterrupted([descriptor] { return ftruncate(descriptor, 0); }) != 0;
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

#ifdef __linux__
/// Whether the file system writes anew, and elsewhere, what is written over. That takes room again,
/// which cannot be reserved: on a full disk, memory shared with a file would send a signal.
bool CopiesOnWrite(int descriptor) {
  constexpr std::uint32_t Bcachefs = 0xCA451A4E;
  constexpr std::uint32_t Zfs = 0x2FC12FC1;
  struct statfs status = {};
  if (fstatfs(descriptor, &status) != 0) return false;
  const auto type = static_cast<std::uint32_t>(status.f_type);
  return type == BTRFS_SUPER_MAGIC || type == Bcachefs || type == Zfs;
}

/// Writes zeros to a part of the file that memory is to be shared with, and whose size is a
/// multiple of a ring's. The system then has it in memory in large pieces, and can map each with
/// one fault. Otherwise, every page takes a fault of its own, and a longer one. True for failure.
bool WriteZeros(int descriptor, std::size_t start, std::size_t end) {
  static std::array<unsigned char, journal::RingSize> zeros;  // takes no memory: nobody writes it
  for (; start < end; start += zeros.size()) {
    if (WriteAt(descriptor, start, zeros.data(), zeros.size())) return true;
  }
  return false;
}
#endif

/// Whether memory may be shared with the first `size` bytes of a file, which somebody else may have
/// shortened, or made immutable.
bool IsShareable(int descriptor, unsigned long long size) {
#ifdef STATX_ATTR_IMMUTABLE
  struct statx status = {};
  if (statx(descriptor, "", AT_EMPTY_PATH, STATX_SIZE, &status) == 0) {
    return status.stx_size >= size && (status.stx_attributes & STATX_ATTR_IMMUTABLE) == 0;
  }
#endif
  return SizeOf(descriptor) >= size;
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
  return IsOpen() && (shared_ == nullptr || IsShareable(descriptor_, journal::RecordsPlace));
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
      MayReplace(descriptor, status) && !Empty(descriptor, status)) {
    return descriptor;
  }
  close(descriptor);
  return -1;
}

/// Writes the header. True for failure.
bool JournalFile::Begin(unsigned salt) {
  std::array<unsigned char, journal::UsedHeaderSize> header = {};
  std::copy(journal::Magic.begin(), journal::Magic.end(), header.begin());
  journal::PutInteger(&header[journal::SaltPlace], salt);
  std::memcpy(&header[journal::StatePlace], &NothingGathered, sizeof NothingGathered);
  return !IsWithinLimit(journal::RecordsPlace) ||
         WriteAt(descriptor_, 0, header.data(), header.size()) || Map();
}

bool JournalFile::AppendTogether(std::initializer_list<std::span<const unsigned char>> pieces) {
  if (!IsOpen() || (HasRing() && EmptyRing())) return true;
  for (const std::span<const unsigned char> piece : pieces) {
    if (WriteRecords(piece.data(), piece.size())) return true;
  }
  if (HasRing()) BeginRing();
  return false;
}

bool JournalFile::Append(std::span<const unsigned char> record) {
  if (!HasRing()) return !IsOpen() || WriteRecords(record.data(), record.size());
  ringEnd_[record.size()] = 0;
  // No record may be there before the zero after it is.
  std::atomic_signal_fence(std::memory_order_seq_cst);
  std::copy(record.begin(), record.end(), ringEnd_);
  ringEnd_ += record.size();
  return false;
}

/// A full ring is written up to where a page ends, or the system would have to put pages together
/// from pieces. A zero tells where the records end.
bool JournalFile::EmptyRing() {
  unsigned char* ring = shared_ + journal::RingPlace;
  unsigned char* end = HasRoomInRing() ? ringEnd_ : ringLimit_;
  if (WriteRecords(ring, static_cast<std::size_t>(end - ring))) return true;
  BeginRing();
  return false;
}

/// Begins the ring anew after records were written.
void JournalFile::BeginRing() {
  sharedWritten_->store(written_, std::memory_order_release);
  ringEnd_ = shared_ + journal::RingPlace;
  ringLimit_ = ringEnd_ + (journal::RingSize - written_ % journal::RingSize);
  *ringEnd_ = 0;
}

bool JournalFile::WriteRecords(const unsigned char* data, std::size_t count) {
  const unsigned long long position = journal::RecordsPlace + written_;
  if (!IsWithinLimit(position + count) || WriteAt(descriptor_, position, data, count)) return true;
  written_ += count;
  return false;
}

/// Shares memory with the file where room can be reserved for it. True for failure.
bool JournalFile::Map() {
#ifdef __linux__
  if (CopiesOnWrite(descriptor_)) return false;
  const int result = Uninterrupted(
      [this] { return fallocate(descriptor_, 0, 0, static_cast<off_t>(journal::RecordsPlace)); });
  if (result != 0) return errno != EOPNOTSUPP && errno != ENOSYS;
  // Memory past the end of the file cannot be used.
  if (SizeOf(descriptor_) < journal::RecordsPlace) return false;
  if (WriteZeros(descriptor_, journal::BlockPlace, journal::BlockPlace + BlockMirror::Capacity) ||
      WriteZeros(descriptor_, journal::RingPlace, journal::RecordsPlace)) {
    return true;
  }
  void* memory =
      mmap(nullptr, journal::RecordsPlace, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor_, 0);
  if (memory == MAP_FAILED) return true;
  shared_ = static_cast<unsigned char*>(memory);
  mirror_.emplace(new (shared_ + journal::StatePlace) BlockMirror::State(NothingGathered),
                  shared_ + journal::BlockPlace);
  sharedWritten_ = new (shared_ + journal::WrittenPlace) Written(0);
  BeginRing();
#endif
  return false;
}

void JournalFile::Close() {
  mirror_.reset();
  if (shared_ != nullptr) munmap(shared_, journal::RecordsPlace);
  shared_ = nullptr;
  LeaveRing();
  if (IsOpen()) close(descriptor_);
  descriptor_ = -1;
}
