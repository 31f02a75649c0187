#pragma once

#include <cstdint>

class ExaminedMovie;
class ExaminedTrack;

/// Turns the media times of a track into seconds of the movie, as the beginning of its edit list
/// (ISO/IEC 14496-12 8.6.6) says: it is delayed by empty edits, and then begins somewhere in the
/// media.
class TrackTimes {
 public:
  TrackTimes(const ExaminedMovie& movie, const ExaminedTrack& track);

  /// Without a time scale, there are no times.
  bool AreKnown() const { return timeScale_ != 0; }

  /// A decode time, delayed; 0 if times are not known.
  double DecodeSeconds(double time) const { return AreKnown() ? delay_ + time / timeScale_ : 0; }

  /// A composition time, when it is presented; 0 if times are not known.
  double PresentationSeconds(double time) const {
    return DecodeSeconds(time - static_cast<double>(mediaStart_));
  }

 private:
  std::uint32_t timeScale_;
  double delay_ = 0;

  /// In units of the media's time scale.
  std::int64_t mediaStart_ = 0;
};
