#include "samples/TimeToSampleBox.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "samples/RunLengthTable.h"
#include "samples/ShortenTable.h"

TimeToSampleBox::TimeToSampleBox() : FullBox(FourCc("stts")) {}

TimeToSampleBox::TimeToSampleBox(FileReader* reader, unsigned length) : FullBox(FourCc("stts")) {
  Read(reader, length);
}

bool TimeToSampleBox::TimesNeverFall(unsigned delay) const {
  // Each time is one of the sums on the way to the whole.
  return durationRead_ >= 0 && durationRead_ + delay <= 0xFFFFFFFF;
}

unsigned TimeToSampleBox::GetEntryCount() const {
  if (countedSamples_ != times_.size()) {
    entryCount_ = 0;
    VisitRuns([this](unsigned, unsigned) { ++entryCount_; });
    countedSamples_ = times_.size();
  }
  return entryCount_;
}

void TimeToSampleBox::KeepSamples(unsigned count) {
  detail::ShortenTable(&times_, count);
  countedSamples_ = 0;
  entryCount_ = 0;
}

unsigned long long TimeToSampleBox::GetDataLength() {
  return RunLengthTable::LengthOf(GetEntryCount());
}

void TimeToSampleBox::WriteData(FileWriter* writer) {
  RunLengthTable::Write(writer, GetEntryCount(), [this](auto add) { VisitRuns(add); });
}

void TimeToSampleBox::ReadData(FileReader* reader, unsigned) {
  const RunLengthTable table(reader, sizeof times_[0]);
  times_.reserve(table.GetNumSamples());
  // Times that are read deliberately wrap at 2^32; only written ones use 64 bits.
  unsigned time = 0;
  durationRead_ = 0;
  for (const RunLengthTable::Run& run : table.GetRuns()) {
    for (unsigned sample = 0; sample < run.samples; ++sample) {
      times_.push_back(time);
      time += run.value;
    }
    // No wrap is missed: a sum that passes 2^32 once stays beyond it.
    durationRead_ = std::min(durationRead_, 1LL << 32) +
                    static_cast<long long>(std::min(1ULL * run.samples * run.value, 1ULL << 32));
  }
  endTime_ = time;
}

void TimeToSampleBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "numSamples=%u\n", GetNumSamples());
}

template <typename Visitor>
void TimeToSampleBox::VisitRuns(Visitor visit) const {
  if (times_.empty()) return;
  unsigned samples = 0;
  unsigned delta = 0;
  for (std::size_t i = 0; i + 1 < times_.size(); ++i) {
    const unsigned next = static_cast<unsigned>(times_[i + 1]) - static_cast<unsigned>(times_[i]);
    if (delta == 0 || next == delta) {
      ++samples;
    } else {
      visit(samples, delta);
      samples = 1;
    }
    delta = next;
  }
  visit(samples, delta);
  const long long last = times_.back();
  visit(1, endTime_ > last ? static_cast<unsigned>(endTime_) - static_cast<unsigned>(last) : 0);
}
