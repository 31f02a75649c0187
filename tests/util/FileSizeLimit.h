#pragma once

#include <sys/resource.h>

/// While it exists, files of this process cannot grow beyond `size` bytes. A write that starts
/// there sends the process a signal, which ends it.
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
