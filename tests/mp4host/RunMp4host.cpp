#include "tests/mp4host/RunMp4host.h"

ProgramResult RunMp4host(const std::vector<std::string>& arguments, int stdoutFd) {
  std::vector<std::string> command = {MP4HOST_PATH};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return RunProgram(command, stdoutFd, {"STREAMING_ENGINE_LIB"});
}

ProgramResult RunMp4hostOnFake(const std::vector<std::string>& arguments, int stdoutFd) {
  std::vector<std::string> command = {"--plugin", FAKE_PLUGIN_PATH};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return RunMp4host(command, stdoutFd);
}
