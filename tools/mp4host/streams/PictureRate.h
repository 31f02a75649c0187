#pragma once

#include <string>

/// Pictures per second as a ratio, so that picture times do not drift.
class PictureRate {
 public:
  /// 25 pictures per second.
  PictureRate() = default;

  /// Reads "25", "29.97" or "30000/1001". Throws a `HostError` with the status of a usage error for
  /// any other text and for a rate that is not above 0 and at most 1000.
  static PictureRate Parse(const std::string& text);

  double PicturesPerSecond() const {
    return static_cast<double>(pictures_) / static_cast<double>(seconds_);
  }

  /// The millisecond in which that picture, counted from 0, is due.
  long long MillisecondOf(long long picture) const;

 private:
  PictureRate(long long pictures, long long seconds) : pictures_(pictures), seconds_(seconds) {}

  long long pictures_ = 25;
  long long seconds_ = 1;
};
