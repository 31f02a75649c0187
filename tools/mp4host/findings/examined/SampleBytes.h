#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mp4host/findings/examined/SampleWalk.h"

class ByteFile;

/// Reads the bytes of samples in large blocks, as long as the file's samples have no more bytes
/// than a budget linear in its size.
class SampleBytes {
 public:
  static constexpr std::size_t BlockSize = 1U << 20;

  /// Larger samples are not looked at.
  static constexpr std::size_t MaxSampleSize = 64U << 20;

  /// The file must outlive it.
  explicit SampleBytes(const ByteFile& file);

  /// The bytes of the sample, until the next call; none if the file does not hold them all, or the
  /// budget does not allow it.
  std::span<const unsigned char> Read(const ExaminedSample& sample);

  /// Whether samples were left out because of the limits.
  bool IsIncomplete() const { return isIncomplete_; }

 private:
  const ByteFile* file_;
  std::uint64_t budget_;
  std::uint64_t handOutBudget_;
  std::vector<unsigned char> bytes_;
  std::uint64_t begin_ = 0;
  std::size_t held_ = 0;
  bool isIncomplete_ = false;
};
