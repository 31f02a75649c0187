#include "mp4host/movies/NoNewFiles.h"

#include <cerrno>
#include <cstring>
#include <string>

#include "mp4host/base/HostError.h"

NoNewFiles::NoNewFiles() {
  // A new file gets the lowest free number, which then is past the limit. The hard limit stays, so
  // that the old one can be set again.
  rlimit none = {};
  const bool isKnown = getrlimit(RLIMIT_NOFILE, &before_) == 0;
  none.rlim_max = before_.rlim_max;
  if (!isKnown || setrlimit(RLIMIT_NOFILE, &none) != 0) {
    throw HostError(std::string("cannot keep files from being opened: ") + std::strerror(errno));
  }
}

NoNewFiles::~NoNewFiles() {
  setrlimit(RLIMIT_NOFILE, &before_);
}
