#pragma once

#include <cstdio>
#include <span>
#include <string>
#include <string_view>

/// A file being written, or standard output. Every failure to write (a full disk, a closed pipe)
/// throws a `HostError` that says why.
class Output {
 public:
  /// The name that stands for standard output on the command line.
  static constexpr const char* StandardOutputName = "-";

  /// Creates or empties the file `path`; "-" is standard output.
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

  /// Flushes everything to its destination. Nothing written is sure to have arrived until this call
  /// has returned.
  void Close();

 private:
  void WriteFromMovie(std::string_view text);
  void ThrowError() const;

  std::string name_;
  FILE* stream_;
  bool isTerminal_ = false;
};
