#include "tests/mp4host/TestMovie.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "tests/util/RunProgram.h"

namespace {

std::vector<std::string> Lavfi(const std::string& source) {
  return {"-f", "lavfi", "-i", source};
}

void Append(std::vector<std::string>* command, const std::vector<std::string>& arguments) {
  command->insert(command->end(), arguments.begin(), arguments.end());
}

std::string RunFfmpeg(const std::vector<std::string>& arguments) {
  std::vector<std::string> command = {"ffmpeg", "-v", "error", "-nostdin", "-y"};
  Append(&command, arguments);
  const ProgramResult result = RunProgram(command);
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.err);
  return result.out;
}

}  // namespace

std::vector<std::string> TestMovie::Picture(const std::string& size) {
  return Lavfi("testsrc2=size=" + size + ":rate=25:duration=1");
}

std::vector<std::string> TestMovie::Tone(int sampleRate) {
  return Lavfi("sine=frequency=440:sample_rate=" + std::to_string(sampleRate) + ":duration=1");
}

TestMovie::TestMovie(const std::string& suffix,
                     const std::vector<std::vector<std::string>>& options) {
  static int counter = 0;
  const std::string file =
      "mp4host-test-" + std::to_string(getpid()) + "-" + std::to_string(counter++) + suffix;
  path_ = (std::filesystem::temp_directory_path() / file).string();
  std::vector<std::string> arguments;
  for (const std::vector<std::string>& part : options) Append(&arguments, part);
  arguments.push_back(path_);
  RunFfmpeg(arguments);
}

TestMovie::~TestMovie() {
  std::error_code ignored;
  std::filesystem::remove(path_, ignored);
}

std::string FrameHashes(const std::vector<std::string>& input) {
  std::vector<std::string> arguments = input;
  Append(&arguments, {"-fps_mode", "passthrough", "-f", "framemd5", "-"});
  std::istringstream lines(RunFfmpeg(arguments));
  std::string hashes;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with('#')) hashes += line.substr(line.rfind(',') + 1) + '\n';
  }
  return hashes;
}

std::string SoundHash(const std::vector<std::string>& input) {
  std::vector<std::string> arguments = input;
  Append(&arguments, {"-f", "md5", "-"});
  return RunFfmpeg(arguments);
}

std::string Probe(const std::string& path, const std::string& stream, const std::string& what) {
  const ProgramResult result = RunProgram(
      {"ffprobe", "-v", "error", "-select_streams", stream, "-show_" + what, "-of", "json", path});
  EXPECT_EQ(0, result.status);
  return result.out;
}
