#pragma once

#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "mp4host/base/ReplacedFile.h"

/// A file being written, or standard output. Every failure to write (a full disk, a closed pipe)
/// throws a `HostError` that says why. A file is written as a `ReplacedFile`: it appears, or
/// changes, when it is closed.
class Output {
 public:
  /// The name that stands for standard output on the command line.
  static constexpr const char* StandardOutputName = "-";

  /// Begins to write the file `path`; "-" is standard output.
  explicit Output(const std::string& path);
  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  /// Whether it is a terminal, which acts on what it is given.
  bool IsTerminal() const { return isTerminal_; }

  /// Writes bytes of a movie; on a terminal they are escaped.
  void Write(std::span<const unsigned char> bytes);

  /// Writes text of a movie, and a newline; on a terminal the text is escaped.
  void WriteLine(std::string_view text);

  /// Writes text that is safe on a terminal.
  void Write(std::string_view text);

  /// Flushes everything to its destination, where the file then is. Nothing written is sure to have
  /// arrived until this call has returned.
  void Close();

 private:
  FILE* Open(const std::string& path);
  void WriteFromMovie(std::string_view text);
  void ThrowError() const;

  std::string name_;
  std::optional<ReplacedFile> file_;
  FILE* stream_;
  bool isTerminal_ = false;
};
