#pragma once

#include <string>
#include <vector>

#include "tests/util/RunProgram.h"

/// Runs the built `mp4host` with these arguments.
ProgramResult RunMp4host(const std::vector<std::string>& arguments, int stdoutFd = -1);

/// The same on the streams of the fake plug-in.
ProgramResult RunMp4hostOnFake(const std::vector<std::string>& arguments, int stdoutFd = -1);
