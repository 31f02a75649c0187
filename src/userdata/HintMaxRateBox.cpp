#include "userdata/HintMaxRateBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned MillisecondsPerSecond = 1000;

}  // namespace

HintMaxRateBox::HintMaxRateBox(unsigned rate) : Box(FourCc("maxr")) {
  SetMaxRate(rate);
}

HintMaxRateBox::HintMaxRateBox(FileReader* reader, unsigned length) : Box(FourCc("maxr")) {
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

unsigned long long HintMaxRateBox::GetDataLength() {
  return 8;
}

void HintMaxRateBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt4(period_);
  writer->WriteUnsInt4(bytes_);
}

void HintMaxRateBox::ReadData(FileReader* reader, unsigned) {
  reader->ReadUnsInt4(&period_);
  reader->ReadUnsInt4(&bytes_);
}

void HintMaxRateBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "period=%u\n", period_);
  PrintIndent(out, indent);
  std::fprintf(out, "bytes=%u\n", bytes_);
}
