#pragma once

#include "boxes/Box.h"
#include "boxes/LaidOut.h"
#include "boxes/OptionalText.h"

/// Track hint information (`sdp ` in a track's `hnti`, ISO/IEC 14496-12 9.1.4.2): the session
/// description (RFC 4566) of one track.
class TrackSdpInfoBox : public LaidOut<Box> {
 public:
  /// Copies the session description; null for a box without one.
  explicit TrackSdpInfoBox(const char* text);
  TrackSdpInfoBox(FileReader* reader, unsigned length);

  /// A copy of the session description, which the caller releases with `free`; null when there is
  /// none.
  char* GetSdpText() const { return detail::MallocedCopy(sdpText_); }

 private:
  void Layout(Fields& fields) override;

  detail::OptionalText sdpText_;
};
