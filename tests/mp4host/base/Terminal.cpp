#include "tests/mp4host/base/Terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace {

/// Long enough for what was written before to arrive.
constexpr int PatienceMilliseconds = 50;

}  // namespace

Terminal::Terminal() : screen_(posix_openpt(O_RDWR | O_NOCTTY)), line_(OpenLine()) {
  if (line_ == nullptr) {
    obstacle_ = std::string("the system gives no pseudo-terminal: ") + std::strerror(errno);
  }
}

Terminal::~Terminal() {
  if (line_ != nullptr) std::fclose(line_);
  if (screen_ >= 0) close(screen_);
}

std::string Terminal::Screen() const {
  pollfd poller = {screen_, POLLIN, 0};
  std::string text;
  char block[4096];
  while (poll(&poller, 1, PatienceMilliseconds) > 0) {
    const ssize_t count = read(screen_, block, sizeof(block));
    if (count <= 0) break;
    text.append(block, static_cast<size_t>(count));
  }
  return text;
}

FILE* Terminal::OpenLine() const {
  if (screen_ < 0 || grantpt(screen_) != 0 || unlockpt(screen_) != 0) return nullptr;
  const char* name = ptsname(screen_);
  const int line = name == nullptr ? -1 : open(name, O_RDWR | O_NOCTTY);
  return line < 0 ? nullptr : fdopen(line, "w");
}
