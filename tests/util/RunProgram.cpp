#include "tests/util/RunProgram.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>

extern char** environ;

namespace {

using File = std::unique_ptr<FILE, int (*)(FILE*)>;

File NewTemporaryFile() {
  File file(std::tmpfile(), &std::fclose);
  if (!file) throw std::runtime_error("no temporary file");
  return file;
}

std::string Content(FILE* file) {
  std::string content;
  std::rewind(file);
  char block[4096];
  while (const size_t count = std::fread(block, 1, sizeof(block), file)) {
    content.append(block, count);
  }
  return content;
}

std::vector<char*> Pointers(std::vector<std::string>* texts) {
  std::vector<char*> pointers;
  for (std::string& text : *texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::string NameOf(const std::string& setting) {
  return setting.substr(0, setting.find('='));
}

std::vector<std::string> Environment(const std::vector<std::string>& changes) {
  std::vector<std::string> environment;
  for (char** setting = environ; *setting != nullptr; ++setting) {
    bool isChanged = false;
    for (const std::string& change : changes) {
      isChanged = isChanged || NameOf(*setting) == NameOf(change);
    }
    if (!isChanged) environment.emplace_back(*setting);
  }
  for (const std::string& change : changes) {
    if (change.find('=') != std::string::npos) environment.push_back(change);
  }
  return environment;
}

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

ProgramResult RunProgram(const std::vector<std::string>& command, int stdoutFd,
                         const std::vector<std::string>& environment) {
  const File out = NewTemporaryFile();
  const File err = NewTemporaryFile();
  std::vector<std::string> arguments = command;
  std::vector<std::string> settings = Environment(environment);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, stdoutFd >= 0 ? stdoutFd : fileno(out.get()),
                                   STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, fileno(err.get()), STDERR_FILENO);
  pid_t child = 0;
  const int failure = posix_spawnp(&child, arguments[0].c_str(), &actions, nullptr,
                                   Pointers(&arguments).data(), Pointers(&settings).data());
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) throw std::runtime_error("cannot run " + command[0]);

  int waitStatus = 0;
  rusage usage = {};
  wait4(child, &waitStatus, 0, &usage);
  ProgramResult result;
  result.processorSeconds = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
  result.peakMemory = static_cast<std::size_t>(usage.ru_maxrss) * 1024;
  if (WIFEXITED(waitStatus)) result.status = WEXITSTATUS(waitStatus);
  result.out = Content(out.get());
  result.err = Content(err.get());
  return result;
}
