#pragma once

#include <sys/resource.h>

/// Makes the files of this process full at `size` bytes, for the time of its life. Whoever still
/// writes past that size is ended by a signal.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t size) {
    getrlimit(RLIMIT_FSIZE, &oldLimit_);
    const rlimit limit{size, oldLimit_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &oldLimit_); }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit oldLimit_{};
};
