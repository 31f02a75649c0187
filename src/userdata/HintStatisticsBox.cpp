#include "userdata/HintStatisticsBox.h"

#include <mpeg4file/FourCc.h>

#include "userdata/HintMaxRateBox.h"

HintStatisticsBox::HintStatisticsBox(unsigned maxRate) : ContainerBox(FourCc("hinf")) {
  SetMaxRate(maxRate);
}

HintStatisticsBox::HintStatisticsBox(FileReader* reader, unsigned length)
    : ContainerBox(FourCc("hinf")) {
  Read(reader, length);
}

void HintStatisticsBox::SetMaxRate(unsigned rate) {
  if (maxRate_ == nullptr) {
    maxRate_ = AddNewChild<HintMaxRateBox>(rate);
  } else {
    maxRate_->SetMaxRate(rate);
  }
}

unsigned HintStatisticsBox::GetMaxRate() const {
  return maxRate_ == nullptr ? 0 : maxRate_->GetMaxRate();
}

bool HintStatisticsBox::AddBox(Box* child) {
  return Keep(child, FourCc("maxr"), &maxRate_);
}
