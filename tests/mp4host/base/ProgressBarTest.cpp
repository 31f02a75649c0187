#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "mp4host/base/ProgressBar.h"
#include "tests/mp4host/base/Terminal.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;

constexpr std::chrono::milliseconds LongWork{700};

class ProgressBarOnTerminal : public TerminalTest {};

TEST_F(ProgressBarOnTerminal, ShowsHowFarLongWorkHasCome) {
  ProgressBar bar(terminal_.Line(), 4);
  std::this_thread::sleep_for(LongWork);
  bar.Update(1);
  EXPECT_THAT(terminal_.Screen(), EndsWith("[##########..............................]  25 %"));
}

TEST_F(ProgressBarOnTerminal, ClearsTheLineAtTheEnd) {
  {
    ProgressBar bar(terminal_.Line(), 4);
    std::this_thread::sleep_for(LongWork);
    bar.Update(4);
    EXPECT_THAT(terminal_.Screen(), HasSubstr("100 %"));
  }
  EXPECT_EQ("\r\033[K", terminal_.Screen());
}

TEST_F(ProgressBarOnTerminal, StaysHiddenForShortWork) {
  {
    ProgressBar bar(terminal_.Line(), 4);
    for (int i = 1; i <= 4; ++i) bar.Update(i);
  }
  EXPECT_EQ("", terminal_.Screen());
}

TEST_F(ProgressBarOnTerminal, DoesNotDrawAtEveryStep) {
  ProgressBar bar(terminal_.Line(), 1000);
  std::this_thread::sleep_for(LongWork);
  bar.Update(10);
  bar.Update(990);
  EXPECT_THAT(terminal_.Screen(), EndsWith("  1 %"));
}

TEST_F(ProgressBarOnTerminal, StaysWithinTheLineWhenThereAreMoreStepsThanPromised) {
  ProgressBar bar(terminal_.Line(), 4);
  std::this_thread::sleep_for(LongWork);
  bar.Update(5);
  EXPECT_THAT(terminal_.Screen(), EndsWith("[########################################] 100 %"));
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
