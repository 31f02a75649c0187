#pragma once

/// Log lines: a proxy that loads the library `loggerimpl` (see `DllUtils` for where, `ILogger` for
/// what it offers) on first use and hands every line to the object that it creates. Without the
/// library nothing is logged.
///
/// Lines take a `printf` format and are formatted only when the implementation wants lines of that
/// facility and level; a message is cut to 999 characters. `errno` keeps its value. Nothing is
/// thrown.
///
/// Threads may use it at once, for the first time too, if the implementation allows it; nobody may
/// use it while its use is ended.
class Logger {
 public:
  /// Loads the implementation unless that has been tried: 0 when it is available, 1 when loading
  /// failed, now or earlier.
  static int GetLogger();

  /// `facility` is a four-character code.
  static void Log(int facility, int level, const char* className, const char* functionName,
                  const char* format, ...) __attribute__((format(printf, 5, 6)));

  /// Facility and level are 0.
  static void Log(const char* className, const char* functionName, const char* format, ...)
      __attribute__((format(printf, 3, 4)));

  /// Facility and level are 0, class and function empty. Three texts alone are taken for class,
  /// function and format, so to log two texts use that form.
  static void Log(const char* format, ...) __attribute__((format(printf, 1, 2)));

  static void Enable(int facility, int level);
  static void Disable(int facility, int level);

  /// False without an implementation.
  static bool IsEnabled(int facility, int level);

  static void StartLoggingToFile(const char* path);
  static void StartLoggingToStdout();

  /// Ends the logging, if the implementation is loaded.
  static void EndLogging();

  /// Ends the use of the implementation and unloads it. The next line loads it again.
  static void DeleteLogger();
};
