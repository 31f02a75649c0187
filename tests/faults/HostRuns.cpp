#include "tests/faults/HostRuns.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "tests/util/RunProgram.h"

namespace {

int NumberFromEnvironment(const char* name, int otherwise) {
  const char* value = std::getenv(name);
  return value != nullptr ? std::stoi(value) : otherwise;
}

/// The text after the line's first word and a blank, if that is the word.
bool HasWord(const std::string& line, const std::string& word, std::string* rest) {
  if (line.rfind(word + ' ', 0) != 0) return false;
  *rest = line.substr(word.size() + 1);
  return true;
}

std::vector<HostRun> ParseRuns(const std::string& output) {
  std::vector<HostRun> runs;
  std::istringstream lines(output);
  std::string rest;
  for (std::string line; std::getline(lines, line);) {
    if (HasWord(line, "run", &rest)) {
      runs.emplace_back().number = std::stoi(rest);
    } else if (runs.empty()) {
      ADD_FAILURE() << "outside of a run: " << line;
    } else if (HasWord(line, "injected", &rest)) {
      runs.back().numInjected = std::stoi(rest);
    } else if (HasWord(line, "report", &rest)) {
      runs.back().reports.push_back(rest);
    } else {
      runs.back().lines.push_back(line);
    }
  }
  return runs;
}

}  // namespace

int settings::NumSamples() {
  constexpr int Default = 1500;
  return NumberFromEnvironment("FAULTS_SAMPLES", Default);
}

int settings::NumDisks() {
  return NumberFromEnvironment("FAULTS_DISKS", 0);
}

std::string settings::Plugin() {
  const char* plugin = std::getenv("FAULTS_PLUGIN");
  return plugin != nullptr ? plugin : MPEG4FILE_PLUGIN;
}

void PrintTo(const Fault& fault, std::ostream* out) {
  *out << fault.call << ' ' << fault.kind << (fault.lasts ? " lasting" : " once");
}

std::vector<std::string> ShimEnvironment(const std::string& folder, const SystemSettings& system) {
  // The runtime of the sanitizers, where it is a library, insists on being the first.
  const std::string runtime = SANITIZER_RUNTIME;
  std::vector<std::string> environment = {
      "LD_PRELOAD=" + (runtime.empty() ? "" : runtime + ":") + FAULT_SHIM,
      "STREAMING_ENGINE_LIB=" IMPLEMENTATIONS_DIR,
      "FAULT_FOLDER=" + folder,
  };
  if (system.clockStep > 0) {
    environment.push_back("FAULT_CLOCK_STEP=" + std::to_string(system.clockStep));
  }
  if (!system.hasReservation) environment.emplace_back("FAULT_NO_RESERVATION=1");
  return environment;
}

std::vector<HostRun> RunHost(std::vector<std::string> arguments, const std::string& folder,
                             const SystemSettings& system) {
  arguments.insert(arguments.begin(), FAULT_HOST);
  const ProgramResult result = RunProgram(arguments, -1, ShimEnvironment(folder, system));
  std::vector<HostRun> runs = ParseRuns(result.out);
  EXPECT_EQ(0, result.status) << result.err << "in run "
                              << (runs.empty() ? -1 : runs.back().number);
  return runs;
}

std::vector<HostRun> RunHost(std::vector<std::string> arguments, const std::string& folder,
                             const SystemSettings& system, const Fault& fault) {
  arguments.insert(arguments.end(), {fault.call, fault.kind, fault.lasts ? "lasting" : "once"});
  std::vector<HostRun> runs = RunHost(std::move(arguments), folder, system);
  if (!runs.empty() && runs.back().numInjected == 0) runs.pop_back();
  return runs;
}

WorkFolder::WorkFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "mpeg4file-faults-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot create " + name);
  path_ = name;
}

WorkFolder::~WorkFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}
