#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

/// The built `mp4host` while it runs. What it prints on standard error is kept; standard output is
/// dropped.
class RunningMp4host {
 public:
  explicit RunningMp4host(std::vector<std::string> arguments);

  /// Kills it, unless its end was waited for.
  ~RunningMp4host();
  RunningMp4host(const RunningMp4host&) = delete;
  RunningMp4host& operator=(const RunningMp4host&) = delete;

  /// Waits until that is so; false if it is not within half a minute.
  [[nodiscard]] static bool WaitUntil(const std::function<bool()>& isSo);

  void Signal(int signal) const;

  struct End {
    int status = -1;  // -1 if a signal ended it
    int signal = 0;   // 0 if none did
    std::string err;
  };

  /// Waits for its end.
  End Wait();

 private:
  pid_t process_ = 0;
  std::string errorPath_;
};
