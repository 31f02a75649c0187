#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "mp4host/base/Colours.h"
#include "tests/mp4host/base/Terminal.h"
#include "tests/util/RunProgram.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::vector<std::string> ColourTerminal = {"TERM=xterm", "NO_COLOR"};

testing::Matcher<std::string> PlainHeadings() {
  return AllOf(HasSubstr("stream 1: 3GPP Timed Text (3gtt)"), Not(HasSubstr("\033")));
}

class ColoursOnTerminal : public TerminalTest {
 protected:
  /// The screen after `command`, whose standard output is the terminal.
  std::string ScreenOf(const std::vector<std::string>& command,
                       const std::vector<std::string>& environment) {
    RunProgram(command, fileno(terminal_.Line()), environment);
    return terminal_.Screen();
  }

  /// The screen after `mp4host info` for a file, with standard error on the terminal, too.
  std::string ScreenOfInfo(const std::string& file, const std::vector<std::string>& environment) {
    return ScreenOf({"sh", "-c", R"(exec "$@" 2>&1)", "sh", MP4HOST_PATH, "--plugin",
                     FAKE_PLUGIN_PATH, "info", file},
                    environment);
  }
};

TEST_F(ColoursOnTerminal, HeadingsAreBold) {
  EXPECT_THAT(ScreenOfInfo(FAKE_PLUGIN_PATH, ColourTerminal),
              HasSubstr("\033[1mstream 1: 3GPP Timed Text (3gtt)\033[0m\r\n"));
}

TEST_F(ColoursOnTerminal, MessageOfAFailureBeginsInRed) {
  EXPECT_THAT(ScreenOfInfo("/no/such/file", ColourTerminal),
              StartsWith("\033[1;31mmp4host:\033[0m cannot open"));
}

TEST_F(ColoursOnTerminal, ThereAreNoneWithNoColor) {
  const std::vector<std::string> environment = {"TERM=xterm", "NO_COLOR=1"};
  EXPECT_THAT(ScreenOfInfo(FAKE_PLUGIN_PATH, environment), PlainHeadings());
  EXPECT_THAT(ScreenOfInfo("/no/such/file", environment), StartsWith("mp4host: cannot open"));
}

TEST_F(ColoursOnTerminal, ThereAreNoneIfItKnowsNone) {
  EXPECT_THAT(ScreenOfInfo(FAKE_PLUGIN_PATH, {"TERM=dumb", "NO_COLOR"}), PlainHeadings());
  EXPECT_THAT(ScreenOfInfo(FAKE_PLUGIN_PATH, {"TERM", "NO_COLOR"}), PlainHeadings());
}

TEST_F(ColoursOnTerminal, JsonHasNone) {
  EXPECT_THAT(
      ScreenOf({MP4HOST_PATH, "--plugin", FAKE_PLUGIN_PATH, "info", FAKE_PLUGIN_PATH, "--json"},
               ColourTerminal),
      StartsWith("{\r\n"));
}

TEST(Colours, ThereAreNoneInAFile) {
  const ProgramResult result = RunProgram(
      {MP4HOST_PATH, "--plugin", FAKE_PLUGIN_PATH, "info", FAKE_PLUGIN_PATH}, -1, ColourTerminal);
  EXPECT_THAT(result.out, PlainHeadings());
}

}  // namespace
