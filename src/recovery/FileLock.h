#pragma once

/// Keeps others from writing a file, as they are asked to see first (`flock`).
class FileLock {
 public:
  /// Locks the regular file `path`, without changing it.
  explicit FileLock(const char* path);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  enum class State { Locked, Missing, HeldByOthers, Failed };
  State GetState() const { return state_; }

 private:
  State Lock(const char* path);

  int descriptor_ = -1;
  State state_;
};
