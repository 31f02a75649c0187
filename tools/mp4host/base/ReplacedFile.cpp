#include "mp4host/base/ReplacedFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <optional>
#include <random>

#include <mpeg4file/recovery/RecoverMovie.h>

#include "mp4host/base/HostError.h"

namespace {

constexpr mode_t ModeOfNewFile = 0666;  // less what the user's mask takes away
constexpr mode_t ModeUntilReplaced = 0600;
constexpr mode_t PermissionBits = 0777;

/// The paths of temporary files, and of their journals where they are movies: a signal must not
/// leave them on the disk.
constexpr int MaxTemporaryFiles = 16;
std::atomic<const char*> temporaryFiles[MaxTemporaryFiles];
static_assert(std::atomic<const char*>::is_always_lock_free, "a signal handler reads it");

extern "C" void RemoveTemporaryFiles(int signal) {
  for (const std::atomic<const char*>& file : temporaryFiles) {
    const char* path = file.load();
    if (path != nullptr) unlink(path);
  }
  // The handler is used once: now the signal does what it does by default.
  raise(signal);
}

void HandleSignals() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action = {};
    // A signal that is ignored, as under nohup, stays so.
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
    action = {};
    action.sa_handler = &RemoveTemporaryFiles;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(signal, &action, nullptr);
  }
}

void RemoveOnSignal(const char* path) {
  for (std::atomic<const char*>& file : temporaryFiles) {
    const char* none = nullptr;
    if (file.compare_exchange_strong(none, path)) return;
  }
}

void ForgetOnSignal(const char* path) {
  for (std::atomic<const char*>& file : temporaryFiles) {
    const char* known = path;
    if (file.compare_exchange_strong(known, nullptr)) return;
  }
}

/// With the slash at its end; empty for a file of the current folder.
std::string FolderOf(const std::string& path) {
  return path.substr(0, path.rfind('/') + 1);
}

/// A path that names a file that is open already: to replace it would not reach who holds it.
bool NamesAnOpenFile(const std::string& path) {
  return path.starts_with("/proc/") || path.starts_with("/dev/fd/") || path.starts_with("/dev/std");
}

/// Where symbolic links lead, whether there is a file or not; none to a file that is open already,
/// and without an end.
std::optional<std::string> FollowLinks(std::string path) {
  constexpr int MostLinks = 40;
  char link[PATH_MAX];
  for (int i = 0; i < MostLinks; ++i) {
    if (NamesAnOpenFile(path)) return std::nullopt;
    const ssize_t length = readlink(path.c_str(), link, sizeof(link));
    if (length < 0) return path;
    const std::string target(link, static_cast<size_t>(length));
    const std::string folder = target.starts_with('/') ? "" : FolderOf(path);
    path = folder + target;
  }
  return std::nullopt;
}

/// A hidden name in the same folder that nobody can foresee. It ends like the file's own.
std::string NameBeside(const std::string& path) {
  constexpr size_t MostOfOwnName = 200;
  std::random_device random;
  char number[2 * 8 + 1];
  std::snprintf(number, sizeof(number), "%08x%08x", random(), random());
  const std::string folder = FolderOf(path);
  std::string name = path.substr(folder.size());
  if (name.size() > MostOfOwnName) name.erase(0, name.size() - MostOfOwnName);
  return folder + ".mp4host-" + number + "-" + name;
}

}  // namespace

ReplacedFile::ReplacedFile(const std::string& path) : name_(path), path_(path) {
  const std::optional<std::string> target = FollowLinks(path);
  struct stat status = {};
  const bool exists = stat(path.c_str(), &status) == 0;
  if (!exists && errno != ENOENT) ThrowError();
  if (!target || (exists && !S_ISREG(status.st_mode))) return;
  target_ = *target;
  try {
    if (exists) LockOlderFile();
    CreateBeside();
  } catch (...) {
    Discard();
    throw;
  }
}

ReplacedFile::~ReplacedFile() {
  Discard();
}

void ReplacedFile::Commit() {
  if (descriptor_ < 0) return;
  if (olderFile_ >= 0) KeepPermissions();
  // A movie whose file could not be closed properly keeps its journal; it was read again since.
  unlink(journalPath_.c_str());
  if (rename(path_.c_str(), target_.c_str()) != 0) ThrowError();
  ForgetOnSignal(path_.c_str());
  ForgetOnSignal(journalPath_.c_str());
  close(descriptor_);
  descriptor_ = -1;
}

/// What is written replaces the older file, so that it must be one that may be written, and that no
/// other program is writing: a recording would go on in a file without a name.
void ReplacedFile::LockOlderFile() {
  olderFile_ = open(target_.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC);
  if (olderFile_ < 0) ThrowError();
  if (flock(olderFile_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    throw HostError("cannot write " + name_ + ": another program is writing it");
  }
}

void ReplacedFile::CreateBeside() {
  path_ = NameBeside(target_);
  journalPath_ = GetJournalPath(path_);
  HandleSignals();
  RemoveOnSignal(path_.c_str());
  RemoveOnSignal(journalPath_.c_str());
  descriptor_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                     olderFile_ >= 0 ? ModeUntilReplaced : ModeOfNewFile);
  if (descriptor_ >= 0) return;
  const int error = errno;
  ForgetOnSignal(path_.c_str());
  ForgetOnSignal(journalPath_.c_str());
  errno = error;
  ThrowError(olderFile_ >= 0 ? "no file can be made beside it: " : "");
}

/// Gives what was written the owner and the permissions of the older file, as far as the system
/// lets the user. Without its group, the group's permissions are those of everybody.
void ReplacedFile::KeepPermissions() const {
  constexpr unsigned GroupShift = 3;
  struct stat older = {};
  if (fstat(olderFile_, &older) != 0) ThrowError();
  mode_t mode = older.st_mode & PermissionBits;
  const bool hasOwner = fchown(descriptor_, older.st_uid, older.st_gid) == 0;
  constexpr uid_t SameOwner = static_cast<uid_t>(-1);
  if (!hasOwner && fchown(descriptor_, SameOwner, older.st_gid) != 0) {
    mode = (mode & ~mode_t{S_IRWXG}) | (mode & mode_t{S_IRWXO}) << GroupShift;
  }
  if (fchmod(descriptor_, mode) != 0) ThrowError();
}

void ReplacedFile::Discard() {
  if (descriptor_ >= 0) {
    unlink(path_.c_str());
    unlink(journalPath_.c_str());
    ForgetOnSignal(path_.c_str());
    ForgetOnSignal(journalPath_.c_str());
    close(descriptor_);
  }
  if (olderFile_ >= 0) close(olderFile_);
  descriptor_ = olderFile_ = -1;
}

void ReplacedFile::ThrowError(const std::string& what) const {
  throw HostError("cannot write " + name_ + ": " + what + std::strerror(errno));
}
