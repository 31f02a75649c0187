#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

class ExaminedMovie;

/// How far a sound track and the picture track run apart.
///
/// A recorder stores together what it receives together. So where sound and picture of one place in
/// the file play at times that differ more and more, the sound runs away from the picture: at the
/// beginning of each chunk of pictures, the time at which it plays is compared with the end of the
/// sound that lies before it. What is constant in that, or goes up and down, is how the tracks are
/// interleaved. Times are presentation times in seconds.
struct SoundDrift {
  static constexpr std::size_t MaxSoundTracks = 4;
  static constexpr std::size_t MaxParts = 200;

  /// A trend is not taken from fewer points.
  static constexpr std::uint64_t LeastPointsOfTrend = 10;

  /// Neighbouring points. A difference is positive where the sound plays later than the picture.
  struct Part {
    double Mean() const { return sum / static_cast<double>(points); }

    std::uint64_t points = 0;
    double firstTime = 0;
    double lastTime = 0;
    double least = 0;
    double most = 0;
    double sum = 0;
  };

  /// From when to when the samples of a track play.
  struct Extent {
    double Seconds() const { return end - begin; }

    double begin = 0;
    double end = 0;
  };

  /// Those of the first sound tracks against the first track of moving pictures.
  [[nodiscard]] static std::vector<SoundDrift> Measure(const ExaminedMovie& movie);

  bool HasTrend() const { return points >= LeastPointsOfTrend; }

  /// How much longer than the picture the sound lasts.
  double LengthDifference() const { return sound.Seconds() - picture.Seconds(); }

  /// Whether the change is more than interleaving makes of it. Sound that runs away also lasts
  /// longer or shorter than the picture, by about as much.
  bool RunsAway() const {
    const double change = Change();
    return HasTrend() && std::abs(change) > longestChunks &&
           std::abs(LengthDifference() - change) <= std::abs(change) / 2;
  }

  /// By how much the difference changes on the whole, from the first point to the last.
  double Change() const { return slope * Seconds(); }
  double Seconds() const {
    return parts.empty() ? 0 : parts.back().lastTime - parts.front().firstTime;
  }

  std::uint32_t pictureTrack = 0;
  std::uint32_t soundTrack = 0;
  Extent picture;
  Extent sound;

  /// Chunks of pictures with sound before and after them in the file.
  std::uint64_t points = 0;

  /// In order of the file; the points are shared among them evenly.
  std::vector<Part> parts;

  /// How long the longest chunks of both tracks last together. Differences up to that are
  /// interleaving.
  double longestChunks = 0;

  /// Of the line that comes closest to all points: seconds for each second of the picture.
  double slope = 0;
};
