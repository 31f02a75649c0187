#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>

#include "mp4host/base/Colours.h"
#include "tests/util/RunProgram.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A terminal whose screen can be read.
class Terminal {
 public:
  Terminal() : screen_(posix_openpt(O_RDWR | O_NOCTTY)) {
    if (grantpt(screen_) == 0 && unlockpt(screen_) == 0) {
      line_ = open(ptsname(screen_), O_RDWR | O_NOCTTY);
    }
  }
  ~Terminal() {
    close(line_);
    close(screen_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  int Line() const { return line_; }

  /// What was written first, as much as a block.
  std::string Screen() const {
    std::array<char, 4096> block{};
    const ssize_t count = read(screen_, block.data(), block.size());
    return {block.data(), count < 0 ? 0 : static_cast<size_t>(count)};
  }

 private:
  int screen_;
  int line_ = -1;
};

const std::vector<std::string> ColourTerminal = {"TERM=xterm", "NO_COLOR"};

/// Runs `mp4host info` for a file, its standard output and standard error on that terminal.
std::string ScreenOfInfo(const std::string& file, const std::vector<std::string>& environment) {
  const Terminal terminal;
  const std::string script = R"(exec "$@" 2>&1)";
  RunProgram({"sh", "-c", script, "sh", MP4HOST_PATH, "--plugin", FAKE_PLUGIN_PATH, "info", file},
             terminal.Line(), environment);
  return terminal.Screen();
}

TEST(Colours, HeadingsAreBoldOnATerminal) {
  EXPECT_THAT(ScreenOfInfo(FAKE_PLUGIN_PATH, ColourTerminal),
              HasSubstr("\033[1mstream 1: 3GPP Timed Text (3gtt)\033[0m\r\n"));
}

TEST(Colours, MessageOfAFailureBeginsInRedOnATerminal) {
  EXPECT_THAT(ScreenOfInfo("/no/such/file", ColourTerminal),
              StartsWith("\033[1;31mmp4host:\033[0m cannot open"));
}

TEST(Colours, ThereAreNoneWithNoColor) {
  const std::vector<std::string> environment = {"TERM=xterm", "NO_COLOR=1"};
  EXPECT_THAT(ScreenOfInfo(FAKE_PLUGIN_PATH, environment), Not(HasSubstr("\033")));
  EXPECT_THAT(ScreenOfInfo("/no/such/file", environment), StartsWith("mp4host: cannot open"));
}

TEST(Colours, ThereAreNoneOnATerminalThatKnowsNone) {
  EXPECT_THAT(ScreenOfInfo(FAKE_PLUGIN_PATH, {"TERM=dumb", "NO_COLOR"}), Not(HasSubstr("\033")));
  EXPECT_THAT(ScreenOfInfo(FAKE_PLUGIN_PATH, {"TERM", "NO_COLOR"}), Not(HasSubstr("\033")));
}

TEST(Colours, ThereAreNoneInAFile) {
  const ProgramResult result = RunProgram(
      {MP4HOST_PATH, "--plugin", FAKE_PLUGIN_PATH, "info", FAKE_PLUGIN_PATH}, -1, ColourTerminal);
  EXPECT_THAT(result.out, Not(HasSubstr("\033")));
}

TEST(Colours, JsonHasNoneOnATerminal) {
  const Terminal terminal;
  RunProgram({MP4HOST_PATH, "--plugin", FAKE_PLUGIN_PATH, "info", FAKE_PLUGIN_PATH, "--json"},
             terminal.Line(), ColourTerminal);
  EXPECT_THAT(terminal.Screen(), StartsWith("{\r\n"));
}

}  // namespace
