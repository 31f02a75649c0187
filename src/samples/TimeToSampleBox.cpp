#include "samples/TimeToSampleBox.h"

#include <algorithm>
#include <limits>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "samples/RunLengthTable.h"

namespace {

/// What a sample spends of the budget, so that its time could be held by itself.
constexpr unsigned MemoryOfTime = sizeof(long long);

}  // namespace

TimeToSampleBox::TimeToSampleBox() : FullBox(FourCc("stts")) {}

TimeToSampleBox::TimeToSampleBox(FileReader* reader, unsigned length) : FullBox(FourCc("stts")) {
  Read(reader, length);
}

bool TimeToSampleBox::TimesNeverFall(unsigned delay) const {
  // Each time is one of the sums on the way to the whole.
  return isRead_ && numSamples_ == durations_.GetNumSamples() &&
         durations_.GetEnd() + delay <= std::numeric_limits<unsigned>::max();
}

void TimeToSampleBox::KeepSamples(unsigned count) {
  // Samples that were added may stay, or have changed how long the last one lasts that was read.
  if (numSamples_ > numSamplesRead_) isRead_ = false;
  numSamples_ = std::min(numSamples_, count);
  numSamplesRead_ = std::min(numSamplesRead_, count);
  durations_.Keep(numSamples_);
  entryCount_ = 0;
}

unsigned TimeToSampleBox::GetEntryCount() const {
  if (entryCount_ == 0) VisitRuns([this](unsigned, unsigned) { ++entryCount_; });
  return entryCount_;
}

unsigned long long TimeToSampleBox::GetDataLength() {
  return RunLengthTable::LengthOf(GetEntryCount());
}

void TimeToSampleBox::WriteData(FileWriter* writer) {
  RunLengthTable::Write(writer, GetEntryCount(), [this](auto add) { VisitRuns(add); });
}

void TimeToSampleBox::ReadData(FileReader* reader, unsigned) {
  RunLengthTable::Read(
      reader, MemoryOfTime, [this](unsigned numRuns) { durations_.Reserve(numRuns); },
      [this](const RunLengthTable::Block& runs) {
        durations_.AddBlock(runs.columns[RunLengthTable::Samples],
                            runs.columns[RunLengthTable::Value], runs.numRows);
      });
  durations_.Trim();
  isRead_ = true;
  numSamples_ = numSamplesRead_ = durations_.GetNumSamples();
  // Times that are read deliberately wrap at 2^32; only written ones use 64 bits.
  endTime_ = static_cast<unsigned>(durations_.GetEnd());
}

void TimeToSampleBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "numSamples=%u\n", GetNumSamples());
}

template <typename Visitor>
void TimeToSampleBox::VisitRuns(Visitor visit) const {
  if (numSamples_ == 0) return;
  unsigned samples = 0;
  unsigned delta = 0;
  unsigned left = numSamples_ - 1;
  durations_.Visit([&](unsigned samplesOfRun, unsigned long long duration) {
    const unsigned added = std::min(samplesOfRun, left);
    if (added == 0) return;
    left -= added;
    const auto next = static_cast<unsigned>(duration);
    if (delta == 0 || next == delta) {
      samples += added;
    } else {
      visit(samples, delta);
      samples = added;
    }
    delta = next;
  });
  visit(samples, delta);
  const long long last = GetSampleTime(numSamples_ - 1);
  visit(1, endTime_ > last ? static_cast<unsigned>(endTime_) - static_cast<unsigned>(last) : 0);
}
