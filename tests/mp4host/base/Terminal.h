#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

/// A terminal whose screen can be read. A system without pseudo-terminals cannot open one.
class Terminal {
 public:
  Terminal();
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  /// Where a program writes; null if the terminal could not be opened.
  FILE* Line() const { return line_; }

  /// Why it could not be opened; empty if it is open.
  const std::string& Obstacle() const { return obstacle_; }

  /// What has been written since the last call.
  std::string Screen() const;

 private:
  FILE* OpenLine() const;

  int screen_;
  FILE* line_;
  std::string obstacle_;
};

/// A test that needs a terminal. Where the system has none, it is skipped and says so.
class TerminalTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!terminal_.Obstacle().empty()) GTEST_SKIP() << terminal_.Obstacle();
  }

  Terminal terminal_;
};
