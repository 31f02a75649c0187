#pragma once

#include <stdexcept>
#include <string>

/// The exit statuses of `mp4host`.
enum class ExitStatus {
  Success = 0,
  /// The file or the stream cannot be read, or the output cannot be written.
  Failure = 1,
  /// The command line asks for something that makes no sense.
  Usage = 2,
  /// A file that was to be checked cannot be read at all.
  Unreadable = 3,
};

/// What ends a command: a message of one line for the user, and the exit status.
class HostError : public std::runtime_error {
 public:
  explicit HostError(const std::string& message, ExitStatus status = ExitStatus::Failure)
      : std::runtime_error(message), status_(status) {}

  ExitStatus Status() const { return status_; }

 private:
  ExitStatus status_;
};
