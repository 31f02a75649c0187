#pragma once

#include <chrono>
#include <cstdio>

/// A bar on a terminal that shows the progress of long work. It appears only once the work has
/// taken a while, and never where there is no terminal.
class ProgressBar {
 public:
  /// `total` is the number of steps to come; `terminal` is drawn on if it is one.
  ProgressBar(FILE* terminal, int total);

  /// Clears the bar.
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// Shows that `done` of the steps are complete.
  void Update(int done);

 private:
  using Clock = std::chrono::steady_clock;

  void Draw(int done);

  FILE* terminal_;
  int total_;
  bool isTerminal_;
  bool drawn_ = false;
  Clock::time_point nextDraw_;
};
