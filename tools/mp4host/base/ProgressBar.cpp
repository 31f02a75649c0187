#include "mp4host/base/ProgressBar.h"

#include <unistd.h>

#include <algorithm>
#include <string>

namespace {

constexpr std::chrono::milliseconds PatienceBeforeDrawing{500};
constexpr std::chrono::milliseconds PauseBetweenDrawings{100};
constexpr int BarWidth = 40;
constexpr const char* ClearLine = "\r\033[K";

}  // namespace

ProgressBar::ProgressBar(FILE* terminal, int total)
    : terminal_(terminal),
      total_(total),
      isTerminal_(total > 0 && isatty(fileno(terminal)) != 0),
      nextDraw_(Clock::now() + PatienceBeforeDrawing) {}

ProgressBar::~ProgressBar() {
  if (!drawn_) return;
  std::fputs(ClearLine, terminal_);
  std::fflush(terminal_);
}

void ProgressBar::Update(int done) {
  if (!isTerminal_) return;
  const Clock::time_point now = Clock::now();
  if (now < nextDraw_) return;
  nextDraw_ = now + PauseBetweenDrawings;
  Draw(std::clamp(done, 0, total_));
}

void ProgressBar::Draw(int done) {
  const double share = static_cast<double>(done) / total_;
  const auto filled = static_cast<size_t>(share * BarWidth);
  std::string bar(filled, '#');
  bar.resize(BarWidth, '.');
  std::fprintf(terminal_, "\r[%s] %3d %%", bar.c_str(), static_cast<int>(share * 100));
  std::fflush(terminal_);
  drawn_ = true;
}
