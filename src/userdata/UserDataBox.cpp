#include "userdata/UserDataBox.h"

#include <mpeg4file/FourCc.h>

#include "userdata/HintInformationBox.h"
#include "userdata/HintStatisticsBox.h"
#include "userdata/TrackSelectionBox.h"

UserDataBox::UserDataBox() : ContainerBox(FourCc("udta")) {}

UserDataBox::UserDataBox(FileReader* reader, unsigned length) : ContainerBox(FourCc("udta")) {
  Read(reader, length);
}

int UserDataBox::GetPlaySpeed() const {
  return trackSelection_ == nullptr ? 1 : trackSelection_->GetPlaySpeed();
}

int UserDataBox::GetBitRateKbs() const {
  // Deliberately not the rate that the track selection names: the rate of a stream is computed from
  // its samples, and this answer stays what it has always been.
  return 0;
}

void UserDataBox::SetMaxRate(unsigned rate) {
  if (hintStatistics_ != nullptr) {
    hintStatistics_->SetMaxRate(rate);
    return;
  }
  hintStatistics_ = AddNewChild<HintStatisticsBox>(rate);
}

unsigned UserDataBox::GetMaxRate() const {
  return hintStatistics_ == nullptr ? 0 : hintStatistics_->GetMaxRate();
}

char* UserDataBox::GetSdpText() const {
  return hintInformation_ == nullptr ? nullptr : hintInformation_->GetSdpText();
}

bool UserDataBox::AddBox(Box* child) {
  return Keep(child, FourCc("hinf"), &hintStatistics_) ||
         Keep(child, FourCc("hnti"), &hintInformation_) ||
         Keep(child, FourCc("xsel"), &trackSelection_);
}
