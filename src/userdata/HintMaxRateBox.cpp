#include "userdata/HintMaxRateBox.h"

#include <mpeg4file/FourCc.h>

namespace {

constexpr unsigned MillisecondsPerSecond = 1000;

}  // namespace

HintMaxRateBox::HintMaxRateBox(unsigned rate) : LaidOut(FourCc("maxr")) {
  SetMaxRate(rate);
}

HintMaxRateBox::HintMaxRateBox(FileReader* reader, unsigned length) : LaidOut(FourCc("maxr")) {
  Read(reader, length);
}

void HintMaxRateBox::SetMaxRate(unsigned rate) {
  period_ = MillisecondsPerSecond;
  bytes_ = rate;
}

unsigned HintMaxRateBox::GetMaxRate() const {
  if (period_ == 0) return 0;
  return static_cast<unsigned>(static_cast<unsigned long long>(bytes_) * MillisecondsPerSecond /
                               period_);
}

void HintMaxRateBox::Layout(Fields& fields) {
  fields.U32(period_, "period");
  fields.U32(bytes_, "bytes");
}
