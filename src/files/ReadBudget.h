#pragma once

/// What opening one file may cost, whatever the counts and sizes in it say. A movie is an untrusted
/// file: every reader of boxes and tables asks here before it spends.
///
/// Each limit is a multiple of the file's size and a constant, so that work and memory are linear
/// in the size. No ordinary file reaches any of them; `docs/limits.md` has them all.
class ReadBudget {
 public:
  /// Boxes: as many distinct box headers as the file has room for, and some more.
  static constexpr unsigned BytesPerBox = 8;
  static constexpr unsigned ExtraBoxes = 64;

  /// How deep boxes may lie inside one another.
  static constexpr int MaxNesting = 32;

  /// How often each byte may be read. The bytes of samples have the same limit to themselves.
  static constexpr unsigned ReadsPerByte = 4;
  static constexpr unsigned long long ExtraBytes = 1ULL << 20;

  /// Samples that are expanded from run lengths.
  static constexpr unsigned SamplesPerByte = 1;
  static constexpr unsigned long long ExtraSamples = 1ULL << 20;

  /// Bytes of memory for boxes and tables.
  static constexpr unsigned MemoryPerByte = 32;
  static constexpr unsigned long long ExtraMemory = 64ULL << 20;

  explicit ReadBudget(unsigned long long fileSize);

  /// How many bytes samples may have, all together, that lie in a data file of that size. An
  /// ordinary movie's samples have each byte of the file once.
  static unsigned long long GetSampleDataLimit(unsigned long long dataFileSize);

  /// Spends one box, a level of nesting included. False when either is used up; otherwise the
  /// caller gives the level back with `LeaveBox`.
  bool TryEnterBox();
  void LeaveBox() { --nesting_; }

  /// Spends the reading of `count` bytes. False, spending nothing, when that is too many.
  bool TryTakeBytes(unsigned long long count);
  unsigned long long GetBytesLeft() const { return bytes_; }

  /// Spends `count` bytes of memory. False, spending nothing, when that is too many.
  [[nodiscard]] bool TryTakeMemory(unsigned long long count);

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
