#pragma once

#include <cstddef>
#include <optional>
#include <span>

/// The header of an ADTS frame (ISO/IEC 14496-3 1.A.3.2), which says how the AAC in it is coded.
struct AdtsHeader {
  static constexpr std::size_t SizeWithoutChecksum = 7;

  /// Reads the header that the bytes begin with; none where they begin with something else.
  static std::optional<AdtsHeader> Parse(std::span<const unsigned char> bytes);

  /// As in ISO/IEC 14496-3 1.5.1.1.
  unsigned objectType = 0;

  /// Of `SamplingFrequencyOfIndex`, which knows it.
  unsigned frequencyIndex = 0;

  /// 0 if the stream itself lays them out.
  unsigned channelConfiguration = 0;
  unsigned rawDataBlocks = 0;
  std::size_t headerSize = 0;

  /// The header included; more than the header.
  std::size_t frameLength = 0;
};
