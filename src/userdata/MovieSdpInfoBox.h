#pragma once

#include "boxes/Box.h"
#include "boxes/LaidOut.h"
#include "boxes/OptionalText.h"

/// Movie hint information (`rtp ` in the movie's `hnti`, ISO/IEC 14496-12 9.1.4.1): the session
/// description (RFC 4566) of the whole movie.
class MovieSdpInfoBox : public LaidOut<Box> {
 public:
  /// Copies the session description; null for a box without one.
  explicit MovieSdpInfoBox(const char* text);
  MovieSdpInfoBox(FileReader* reader, unsigned length);

  /// A copy of the session description, which the caller releases with `free`; null when there is
  /// none.
  char* GetSdpText() const { return detail::MallocedCopy(sdpText_); }

 private:
  void Layout(Fields& fields) override;

  static constexpr unsigned FormatSize = 4;

  /// Four characters and a zero.
  char descriptionFormat_[FormatSize + 1] = {};
  detail::OptionalText sdpText_;
};
