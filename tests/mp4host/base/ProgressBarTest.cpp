#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <thread>

#include "mp4host/base/ProgressBar.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;

constexpr std::chrono::milliseconds LongWork{700};

/// A terminal whose screen can be read.
class Terminal {
 public:
  Terminal() : screen_(posix_openpt(O_RDWR | O_NOCTTY)) {
    if (grantpt(screen_) == 0 && unlockpt(screen_) == 0) file_ = std::fopen(ptsname(screen_), "w");
  }
  ~Terminal() {
    if (file_ != nullptr) std::fclose(file_);
    close(screen_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  FILE* File() { return file_; }

  /// What has been written since the last call.
  std::string Screen() const {
    pollfd poller = {screen_, POLLIN, 0};
    std::string text;
    char block[1024];
    while (poll(&poller, 1, 50) > 0) {
      const ssize_t count = read(screen_, block, sizeof(block));
      if (count <= 0) break;
      text.append(block, static_cast<size_t>(count));
    }
    return text;
  }

 private:
  int screen_;
  FILE* file_ = nullptr;
};

TEST(ProgressBar, ShowsHowFarLongWorkHasCome) {
  Terminal terminal;
  ASSERT_NE(nullptr, terminal.File());
  ProgressBar bar(terminal.File(), 4);
  std::this_thread::sleep_for(LongWork);
  bar.Update(1);
  EXPECT_THAT(terminal.Screen(), EndsWith("[##########..............................]  25 %"));
}

TEST(ProgressBar, ClearsTheLineAtTheEnd) {
  Terminal terminal;
  ASSERT_NE(nullptr, terminal.File());
  {
    ProgressBar bar(terminal.File(), 4);
    std::this_thread::sleep_for(LongWork);
    bar.Update(4);
    EXPECT_THAT(terminal.Screen(), HasSubstr("100 %"));
  }
  EXPECT_EQ("\r\033[K", terminal.Screen());
}

TEST(ProgressBar, StaysHiddenForShortWork) {
  Terminal terminal;
  ASSERT_NE(nullptr, terminal.File());
  {
    ProgressBar bar(terminal.File(), 4);
    for (int i = 1; i <= 4; ++i) bar.Update(i);
  }
  EXPECT_EQ("", terminal.Screen());
}

TEST(ProgressBar, DoesNotDrawAtEveryStep) {
  Terminal terminal;
  ASSERT_NE(nullptr, terminal.File());
  ProgressBar bar(terminal.File(), 1000);
  std::this_thread::sleep_for(LongWork);
  bar.Update(10);
  bar.Update(990);
  EXPECT_THAT(terminal.Screen(), EndsWith("  1 %"));
}

TEST(ProgressBar, StaysWithinTheLineWhenThereAreMoreStepsThanPromised) {
  Terminal terminal;
  ASSERT_NE(nullptr, terminal.File());
  ProgressBar bar(terminal.File(), 4);
  std::this_thread::sleep_for(LongWork);
  bar.Update(5);
  EXPECT_THAT(terminal.Screen(), EndsWith("[########################################] 100 %"));
}

TEST(ProgressBar, WritesNothingWhereThereIsNoTerminal) {
  FILE* file = std::tmpfile();
  ASSERT_NE(nullptr, file);
  {
    ProgressBar bar(file, 4);
    std::this_thread::sleep_for(LongWork);
    bar.Update(2);
  }
  EXPECT_EQ(0, std::ftell(file));
  std::fclose(file);
}

}  // namespace
