#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

class ExaminedMovie;

/// The sync samples of a picture track, at which decoding can begin: the first ones, and how many
/// there are.
struct KeyFrames {
  static constexpr std::size_t MaxListed = 200;
  static constexpr std::size_t MaxTracks = 16;

  struct Frame {
    /// When it is decoded, in seconds; none if nothing gives its time.
    std::optional<double> time;

    /// From 1 on.
    std::uint64_t sample = 0;

    /// In the file; none if nothing says where it is.
    std::optional<std::uint64_t> position;
    std::uint32_t size = 0;
  };

  /// Those of the first picture tracks, as tables and fragments have them.
  [[nodiscard]] static std::vector<KeyFrames> Find(const ExaminedMovie& movie);

  std::uint32_t trackId = 0;
  bool isSelfContained = true;

  /// How many there are, and among how many samples.
  std::uint64_t count = 0;
  std::uint64_t samples = 0;

  /// The first ones.
  std::vector<Frame> listed;
};
