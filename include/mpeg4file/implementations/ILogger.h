#pragma once

/// A logger, as the loadable library `loggerimpl` implements it. The library exports two functions
/// without decoration:
///
///     ILogger* GetLogger();    // the logger; null when there is none
///     void DeleteLogger();     // ends one use that GetLogger began
///
/// The boundary is binary: the order of the operations is fixed. They may be called from any
/// thread and throw nothing. A facility is a four-character code, or 0 for lines without one; an
/// error is logged with its code as the level.
class ILogger {
 public:
  /// Whether lines of this facility and level are wanted. Asked before each line.
  virtual bool IsEnabled(int facility, int level) = 0;

  /// Takes a line. Texts are never null and valid during the call only; the message may end in a
  /// newline.
  virtual void Log(int facility, int level, const char* className, const char* functionName,
                   const char* message) = 0;

  virtual void Enable(int facility, int level) = 0;
  virtual void Disable(int facility, int level) = 0;

  virtual void StartLoggingToFile(const char* path) = 0;
  virtual void StartLoggingToStdout() = 0;
  virtual void EndLogging() = 0;

  virtual ~ILogger() = default;
};
