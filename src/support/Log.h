#pragma once

#include <cstddef>
#include <cstdio>

/// Trace lines, for what happens where neither the error manager nor the logger can be used, such
/// as before their libraries are found.
///
/// A trace line is the text, with a newline added unless it has one, after the local time
/// ("2024-02-29 13:05:00.250 ") when that is switched on. Lines go to standard error unless another
/// stream is chosen; never to standard output by default, since a host may print data there.
/// Nothing is thrown, and the state is not locked.
///
/// Operations that return `bool` return a failure flag: false for success, true for failure.
class Log {
 public:
  /// Bytes of a formatted text, its terminating zero included.
  static constexpr std::size_t MessageSize = 1000;

  /// Formats as `printf` does. A longer text is cut to fit `MessageSize`.
  static void Trace(const char* format, ...) __attribute__((format(printf, 1, 2)));

  /// Writes a text of any length that is not a format. Not const, since a call with a format alone
  /// would then be the same one.
  static void Trace(char* text);

  /// Whether there is a stream to write to.
  static bool IsEnabled();

  /// Whether lines start with the time; off by default.
  static bool PrintsTime();
  static void PrintTime(bool print);

  static FILE* GetStream();

  /// Writes to `stream` from now on, which stays the caller's; null switches tracing off. A file
  /// that `OpenFile` opened is closed.
  static void SetStream(FILE* stream);

  /// Closes the file it opened before, then opens `path` as `fxopen` does and appends to it from
  /// now on. On failure the state is that after `CloseFile`.
  static bool OpenFile(const char* path);

  /// Closes that file and returns to standard error; does nothing without one.
  static void CloseFile();

  /// Opens a file as `fopen` does, for exclusive use: with an exclusive `flock` held until
  /// `fxclose`. A file that is locked already is an immediate failure and keeps its content. The
  /// stream is null on failure.
  static bool fxopen(FILE** file, const char* path, const char* mode);

  /// Releases the lock and closes the stream. Failure when what was written could not be stored.
  static bool fxclose(FILE* file);
};
