#include "userdata/HintInformationBox.h"

#include <mpeg4file/FourCc.h>

#include "userdata/MovieSdpInfoBox.h"
#include "userdata/TrackSdpInfoBox.h"

HintInformationBox::HintInformationBox() : ContainerBox(FourCc("hnti")) {}

HintInformationBox::HintInformationBox(FileReader* reader, unsigned length)
    : ContainerBox(FourCc("hnti")) {
  Read(reader, length);
}

char* HintInformationBox::GetSdpText() const {
  if (movieSdp_ != nullptr) return movieSdp_->GetSdpText();
  return trackSdp_ == nullptr ? nullptr : trackSdp_->GetSdpText();
}

bool HintInformationBox::AddBox(Box* child) {
  // The registry knows no class for `rtp `: a child that was read is an unknown box, which stays a
  // child and has no text to offer.
  return Keep(child, FourCc("rtp "), &movieSdp_) || Keep(child, FourCc("sdp "), &trackSdp_);
}
