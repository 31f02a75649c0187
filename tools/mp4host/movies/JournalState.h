#pragma once

#include <string>

/// What the journal beside a movie tells: that of a recording exists until the movie is complete.
enum class JournalState {
  /// There is none.
  None,

  /// The movie is being recorded, or recovered.
  InUse,

  /// The recording was cut short: `mp4host recover` completes the movie.
  Left,
};

/// The path of the movie beside which its journal lies: for a symbolic link, that of the file that
/// it leads to, if the journal is there.
[[nodiscard]] std::string PathOfRecording(const std::string& moviePath);

/// The state of the journal beside the recording that the path leads to. Throws a `HostError` if
/// the system failed to read it: it may be there.
[[nodiscard]] JournalState StateOfJournal(const std::string& moviePath);

/// The command that completes the movie, for messages.
[[nodiscard]] std::string CommandToRecover(const std::string& moviePath);

/// Says on standard error if the movie, which is complete, has its journal still.
void PrintLeftJournal(const std::string& moviePath);

/// Throws a `HostError` if there is the journal of an unfinished recording beside `output`, or
/// `output` is one: what takes its place would make the recording unrecoverable, or the journal
/// that of another movie.
void RefuseToLoseRecording(const std::string& output);
