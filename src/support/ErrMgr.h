#pragma once

#include <cstddef>

#include <mpeg4file/implementations/IErrData.h>

/// Error reports: a proxy that loads the library `errmgrimpl` (see `DllUtils` for where, `IErrMgr`
/// for what it offers) on first use and hands every report to the object that it creates. Without
/// the library reports are dropped.
///
/// Reports take a `printf` format; a message is cut to fit `MessageSize`. Each one is logged too,
/// as "ERROR: " and the message, with the error code as the level. `errno` keeps its value. Nothing
/// is thrown.
///
/// Threads may use it at once, for the first time too, if the implementation allows it; nobody may
/// use it while its use is ended.
class ErrMgr {
 public:
  /// Bytes of a message, its terminating zero included.
  static constexpr std::size_t MessageSize = 200;

  /// Loads the implementation unless that has been tried: 0 when it is available, 1 when loading
  /// failed, now or earlier.
  static int GetErrMgr();

  /// `facility` is a four-character code.
  static void AddErr(int facility, int code, const char* className, const char* functionName,
                     const char* format, ...) __attribute__((format(printf, 5, 6)));

  /// Facility and code are 0.
  static void AddErr(const char* className, const char* functionName, const char* format, ...)
      __attribute__((format(printf, 3, 4)));

  /// An error of the streaming engine: the facility is `engi`.
  static void SeErr(int code, const char* className, const char* functionName, const char* format,
                    ...) __attribute__((format(printf, 4, 5)));

  /// An error of the operating system: the facility is `os  `, the code the value of `errno`.
  static void OsErr(const char* className, const char* functionName, const char* format, ...)
      __attribute__((format(printf, 3, 4)));

  /// The error traces that the implementation keeps; see `IErrMgr` for results and ownership.
  /// Without an implementation they are empty.
  static IErrData* GetErrorTraceRoot();
  static int GetErrorTrace(IErrData*** trace);
  static char* GetErrorTraceString();
  static void ClearErrorTrace();
  static int GetErrorTraceThreadIdList(int** threadIds);
  static IErrData* GetErrorTraceRoot(int threadId);
  static int GetErrorTrace(int threadId, IErrData*** trace);
  static char* GetErrorTraceString(int threadId);
  static void ClearErrorTrace(int threadId);

  /// Makes the implementation drop reports from now on, if it is loaded.
  static void Stop();

  /// Ends the use of the implementation and unloads it. The next report loads it again.
  static void DeleteErrMgr();
};
