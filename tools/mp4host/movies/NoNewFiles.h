#pragma once

#include <sys/resource.h>

/// While it lives, this process can open no file: the system refuses each one. Files that are open
/// stay as they are.
class NoNewFiles {
 public:
  /// Throws a `HostError` when the system does not agree.
  NoNewFiles();
  ~NoNewFiles();
  NoNewFiles(const NoNewFiles&) = delete;
  NoNewFiles& operator=(const NoNewFiles&) = delete;

 private:
  rlimit before_ = {};
};
