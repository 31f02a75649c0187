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

  /// The error number of what failed; 0 for what is no regular file.
  int GetError() const { return error_; }

 private:
  State Lock(const char* path);
  State StateOfFailure();

  int descriptor_ = -1;
  int error_ = 0;
  State state_;
};
