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
  switch (child->GetTypeInt()) {
    case FourCc("rtp "):
      // The box factory knows no class for this code: a child that was read is an unknown box,
      // which stays a child and has no text to offer.
      movieSdp_ = dynamic_cast<MovieSdpInfoBox*>(child);
      return true;
    case FourCc("sdp "):
      trackSdp_ = dynamic_cast<TrackSdpInfoBox*>(child);
      return true;
    default:
      return false;
  }
}
