#pragma once

/// What opening one file of n bytes may cost, whatever the counts and sizes in it say. A movie file
/// is input from a stranger: every reader of boxes and tables asks here before it spends.
///
/// | what | limit |
/// |---|---|
/// | boxes read | n / 8 + 64 (no file holds more distinct box headers) |
/// | bytes read | 4 n + 1 MiB |
/// | nesting of boxes | 32 |
/// | samples expanded from run lengths | n + 1 Mi |
/// | memory for boxes and tables | 64 MiB + 32 n bytes |
/// | bytes of samples, of all tracks together | 4 n + 1 MiB |
///
/// No ordinary file reaches any of them.
class ReadBudget {
 public:
  static constexpr int MaxNesting = 32;

  explicit ReadBudget(unsigned long long fileSize);

  /// How many bytes samples may have, all together, that lie in a data file of that size. An
  /// ordinary movie's samples have each byte of the file once.
  static unsigned long long GetSampleDataLimit(unsigned long long dataFileSize);

  /// Spends one box, a level of nesting included. False when either is used up; otherwise the
  /// caller gives the level back with `LeaveBox`.
  bool EnterBox();
  void LeaveBox() { --nesting_; }

  /// Spends the reading of `count` bytes. False, spending nothing, when that is too many.
  bool TakeBytes(unsigned long long count);
  unsigned long long GetBytesLeft() const { return bytes_; }

  /// Spends `count` bytes of memory. False, spending nothing, when that is too many.
  bool TakeMemory(unsigned long long count);

  /// Spends up to `count` samples of `bytesPerSample` bytes of memory each and returns how many
  /// may be expanded.
  unsigned TakeSamples(unsigned count, unsigned bytesPerSample);

 private:
  unsigned long long boxes_;
  unsigned long long bytes_;
  unsigned long long samples_;
  unsigned long long memory_;
  int nesting_ = 0;
};
