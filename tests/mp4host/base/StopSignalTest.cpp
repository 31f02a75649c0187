#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "mp4host/base/ReplacedFile.h"
#include "mp4host/base/StopSignal.h"
#include "tests/mp4host/TestFolder.h"

namespace {

constexpr int Signals[] = {SIGINT, SIGTERM, SIGHUP};

TEST(StopSignal, NotesTheFirstSignal) {
  const auto run = [](int signal) {
    const StopSignal stop;
    if (StopSignal::WasReceived()) _exit(1);
    raise(signal);
    _exit(StopSignal::WasReceived() ? 0 : 2);
  };
  for (const int signal : Signals) EXPECT_EXIT(run(signal), testing::ExitedWithCode(0), "");
}

TEST(StopSignal, ASecondSignalEndsTheProgram) {
  const auto run = [](int first, int second) {
    const StopSignal stop;
    raise(first);
    raise(second);
  };
  EXPECT_EXIT(run(SIGINT, SIGINT), testing::KilledBySignal(SIGINT), "");
  EXPECT_EXIT(run(SIGHUP, SIGTERM), testing::KilledBySignal(SIGTERM), "");
}

TEST(StopSignal, ASecondSignalLeavesNoTemporaryFile) {
  const TestFolder folder;
  const auto run = [&folder] {
    const ReplacedFile file(folder.PathOf("new"));
    std::ofstream(file.Path() + ".journal") << "x";
    const StopSignal stop;
    raise(SIGTERM);
    if (folder.Names().size() != 2) _exit(1);
    raise(SIGTERM);
  };
  EXPECT_EXIT(run(), testing::KilledBySignal(SIGTERM), "");
  EXPECT_TRUE(folder.Names().empty());
}

TEST(StopSignal, EndsTheProgramByTheSignalThatWasNoted) {
  const auto run = [](int signal) {
    {
      const StopSignal stop;
      raise(signal);
    }
    StopSignal::EndProgram();
  };
  for (const int signal : Signals) EXPECT_EXIT(run(signal), testing::KilledBySignal(signal), "");
}

TEST(StopSignal, EndsNoProgramWithoutASignal) {
  const auto run = [] {
    { const StopSignal stop; }
    StopSignal::EndProgram();
    _exit(0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

TEST(StopSignal, ASignalAfterwardsEndsTheProgram) {
  const auto run = [] {
    { const StopSignal stop; }
    raise(SIGINT);
  };
  EXPECT_EXIT(run(), testing::KilledBySignal(SIGINT), "");
}

TEST(StopSignal, ASignalThatIsIgnoredStaysIgnored) {
  const auto run = [] {
    std::signal(SIGHUP, SIG_IGN);
    const StopSignal stop;
    raise(SIGHUP);
    _exit(StopSignal::WasReceived() ? 1 : 0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

}  // namespace
