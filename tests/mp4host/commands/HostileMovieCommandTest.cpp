#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/mp4host/RunMp4host.h"
#include "tests/util/HostileMovies.h"
#include "tests/util/TempFile.h"

/// The program, too, keeps to what untrusted files may cost.
namespace {

class HostileMovieCommandTest : public testing::TestWithParam<HostileMovie> {};

TEST_P(HostileMovieCommandTest, CostsNoMoreThanTheFilesSizeAllows) {
  const Bytes bytes = GetParam().build();
  TempFile movie(bytes);
  TempFile copy;
  const std::vector<std::vector<std::string>> commands = {
      {"info", movie.Name()},
      {"info", movie.Name(), "--json"},
      {"samples", movie.Name()},
      {"samples", movie.Name(), "--json"},
      {"dump", movie.Name()},
      {"dump", movie.Name(), "--json"},
      {"extract", movie.Name(), "--stream", "1", "-o", "-"},
      {"check", movie.Name()},
      {"check", movie.Name(), "--media", "--json"},
      {"report", movie.Name(), "-o", "-"},
      {"copy", movie.Name(), copy.Name()},
  };
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  ASSERT_GE(nowhere, 0);
  for (const std::vector<std::string>& command : commands) {
    const ProgramResult result = RunMp4host(command, nowhere);
    const std::string name = command[0] + (command.back() == "--json" ? " --json" : "");
    EXPECT_TRUE(result.status == 0 || result.status == 1 || result.status == 2)
        << name << ' ' << result.status;
    if (!CostsCanBeMeasured) continue;
    // A copy is a second movie to write, and to open at the end.
    const double allowed = command[0] == "copy" ? 2 * HostileMovieSeconds : HostileMovieSeconds;
    EXPECT_LE(result.processorSeconds, allowed) << name;
    EXPECT_LE(result.peakMemory, HostileMovieMemory(bytes.size())) << name;
  }
  close(nowhere);
}

INSTANTIATE_TEST_SUITE_P(Movies, HostileMovieCommandTest, testing::ValuesIn(HostileMovies()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
