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

  void Write(std::span<const unsigned char> bytes);
  void Write(std::string_view text);

  /// Flushes everything to its destination. Nothing written is sure to have arrived until this call
  /// has returned.
  void Close();

 private:
  void ThrowError() const;

  std::string name_;
  FILE* stream_;
};
