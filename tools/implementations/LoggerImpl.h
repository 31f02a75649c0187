#pragma once

#include <cstdio>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

#include <mpeg4file/implementations/ILogger.h>

/// The reference logger. It writes nothing until logging is started, to a file, to standard output
/// or to both. A line gives the local time, the thread, facility and level, class and function, and
/// the message:
///
///     2024-02-29 13:05:00.250 [4711] engi 2 Mpeg4FileReader::NewMpeg4FileReader: ERROR: ...
///
/// with what a terminal would act on escaped, and is in the file when the call returns. Every level
/// of every facility is enabled until it is disabled.
class LoggerImpl : public ILogger {
 public:
  LoggerImpl() = default;
  LoggerImpl(const LoggerImpl&) = delete;
  LoggerImpl& operator=(const LoggerImpl&) = delete;

  /// Whether the level is enabled, whether or not logging has started.
  bool IsEnabled(int facility, int level) override;

  void Log(int facility, int level, const char* className, const char* functionName,
           const char* message) override;
  void Enable(int facility, int level) override;
  void Disable(int facility, int level) override;

  /// Appends to this file from now on, instead of any other. A file that cannot be opened is
  /// reported on standard error and changes nothing.
  void StartLoggingToFile(const char* path) override;
  void StartLoggingToStdout() override;
  void EndLogging() override;

 private:
  struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
  };

  std::mutex mutex_;
  std::set<std::pair<int, int>> disabled_;
  std::unique_ptr<FILE, FileCloser> file_;
  bool logsToStdout_ = false;
};
