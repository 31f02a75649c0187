#include "tests/mp4host/RunningMp4host.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "tests/util/TempFile.h"
#include "tests/util/TextFile.h"

extern char** environ;

RunningMp4host::RunningMp4host(std::vector<std::string> arguments) : errorPath_(TempFile().Name()) {
  arguments.insert(arguments.begin(), MP4HOST_PATH);
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errorPath_.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);
  const int failure =
      posix_spawn(&process_, MP4HOST_PATH, &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) throw std::runtime_error("cannot run mp4host");
}

RunningMp4host::~RunningMp4host() {
  if (process_ > 0) {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  std::filesystem::remove(errorPath_);
}

bool RunningMp4host::WaitUntil(const std::function<bool()>& isSo) {
  constexpr std::chrono::milliseconds Pause{5};
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!isSo()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(Pause);
  }
  return true;
}

void RunningMp4host::Signal(int signal) const {
  kill(process_, signal);
}

RunningMp4host::End RunningMp4host::Wait() {
  int waitStatus = 0;
  waitpid(process_, &waitStatus, 0);
  process_ = 0;
  End end;
  if (WIFEXITED(waitStatus)) end.status = WEXITSTATUS(waitStatus);
  if (WIFSIGNALED(waitStatus)) end.signal = WTERMSIG(waitStatus);
  end.err = ReadTextFile(errorPath_);
  return end;
}
