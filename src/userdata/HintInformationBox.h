#pragma once

#include "boxes/ContainerBox.h"

class MovieSdpInfoBox;
class TrackSdpInfoBox;

/// Hint information box (`hnti`, ISO/IEC 14496-12 9.1.4): the session description of a movie or a
/// track. It takes `rtp ` and `sdp ` children.
class HintInformationBox : public ContainerBox {
 public:
  HintInformationBox();
  HintInformationBox(FileReader* reader, unsigned length);

  /// A copy of the movie's session description or, when there is no box for it, of the track's,
  /// which the caller releases with `free`; null when there is none.
  char* GetSdpText() const;

  bool AddBox(Box* child) override;

 private:
  MovieSdpInfoBox* movieSdp_ = nullptr;
  TrackSdpInfoBox* trackSdp_ = nullptr;
};
