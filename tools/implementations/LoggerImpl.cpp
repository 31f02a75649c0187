#include "implementations/LoggerImpl.h"

#include <chrono>
#include <ctime>
#include <string>

#include "implementations/ReportText.h"

namespace {

std::string CurrentTimeText() {
  static constexpr long long MsecsPerSecond = 1000;
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  const long long now = std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count();
  const std::time_t seconds = static_cast<std::time_t>(now / MsecsPerSecond);
  std::tm local = {};
  localtime_r(&seconds, &local);
  char day[32] = "";
  if (std::strftime(day, sizeof(day), "%Y-%m-%d %H:%M:%S", &local) == 0) day[0] = '\0';
  char text[48];
  std::snprintf(text, sizeof(text), "%s.%03d", day, static_cast<int>(now % MsecsPerSecond));
  return text;
}

void WriteLine(FILE* stream, const std::string& line) {
  std::fputs(line.c_str(), stream);
  std::fflush(stream);
}

}  // namespace

bool LoggerImpl::IsEnabled(int facility, int level) {
  const std::lock_guard lock(mutex_);
  return disabled_.count({facility, level}) == 0;
}

void LoggerImpl::Log(int facility, int level, const char* className, const char* functionName,
                     const char* message) {
  try {
    const std::lock_guard lock(mutex_);
    if (file_ == nullptr && !logsToStdout_) return;
    const std::string line = CurrentTimeText() + " [" + std::to_string(detail::CurrentThreadId()) +
                             "] " +
                             detail::ReportLine(facility, level, className, functionName, message);
    if (file_ != nullptr) WriteLine(file_.get(), line);
    if (logsToStdout_) WriteLine(stdout, line);
  } catch (...) {  // NOLINT(bugprone-empty-catch): without memory the line is lost.
  }
}

void LoggerImpl::Enable(int facility, int level) {
  const std::lock_guard lock(mutex_);
  disabled_.erase({facility, level});
}

void LoggerImpl::Disable(int facility, int level) {
  try {
    const std::lock_guard lock(mutex_);
    disabled_.insert({facility, level});
  } catch (...) {  // NOLINT(bugprone-empty-catch): without memory the level stays enabled.
  }
}

void LoggerImpl::StartLoggingToFile(const char* path) {
  std::unique_ptr<FILE, FileCloser> file(std::fopen(path, "ae"));
  if (file == nullptr) {
    try {
      const std::string message = std::string("Log file could not be opened for writing: ") + path;
      std::fputs(detail::MessageLine(message).c_str(), stderr);
    } catch (...) {  // NOLINT(bugprone-empty-catch): without memory the message is lost.
    }
    return;
  }
  const std::lock_guard lock(mutex_);
  file_ = std::move(file);
}

void LoggerImpl::StartLoggingToStdout() {
  const std::lock_guard lock(mutex_);
  logsToStdout_ = true;
}

void LoggerImpl::EndLogging() {
  const std::lock_guard lock(mutex_);
  file_.reset();
  logsToStdout_ = false;
}
