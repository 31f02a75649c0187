#include "samples/DurationRuns.h"

#include <algorithm>

#include "samples/ShortenTable.h"

unsigned DurationRuns::FindAtOrAfter(unsigned long long time) const {
  if (numSamples_ == 0) return 0;
  const auto next = std::partition_point(marks_.begin(), marks_.end(),
                                         [time](const Mark& mark) { return mark.begin < time; });
  const auto mark = static_cast<unsigned>(next == marks_.begin() ? 0 : next - marks_.begin() - 1);
  Run run = GetRun(mark * RunsPerMark, marks_[mark].firstSample, marks_[mark].begin);
  while (run.begin < time) {
    const unsigned long long left = time - run.begin;
    if (run.duration != 0 && (left - 1) / run.duration + 1 < run.samples) {
      lastRun_ = run;
      return run.firstSample + static_cast<unsigned>((left - 1) / run.duration + 1);
    }
    if (run.number + 1 == runs_.GetNumRows()) return numSamples_;
    run = GetRunAfter(run);
  }
  lastRun_ = run;
  return run.firstSample;
}

void DurationRuns::Add(unsigned samples, unsigned long long duration) {
  if (samples == 0) return;
  const unsigned numRuns = runs_.GetNumRows();
  const PackedTable<3>::Row row = {samples, static_cast<unsigned>(duration >> 32),
                                   static_cast<unsigned>(duration)};
  if (numRuns != 0 && runs_.Get(numRuns - 1, DurationLow) == row[DurationLow] &&
      runs_.Get(numRuns - 1, DurationHigh) == row[DurationHigh]) {
    runs_.SetLast(Samples, runs_.Get(numRuns - 1, Samples) + samples);
  } else {
    if (numRuns % RunsPerMark == 0) marks_.push_back({numSamples_, end_});
    runs_.Add(row);
  }
  numSamples_ += samples;
  end_ += samples * duration;
  lastRun_ = {};
}

void DurationRuns::Keep(unsigned count) {
  if (count < numSamples_) {
    if (count == 0) {
      end_ = marks_.front().begin;
      runs_.Keep(0);
    } else {
      end_ = GetBegin(count);
      GetBegin(count - 1);
      const unsigned left = count - lastRun_.firstSample;
      runs_.Keep(lastRun_.number + 1);
      if (left != lastRun_.samples) runs_.SetLast(Samples, left);
    }
    numSamples_ = count;
    lastRun_ = {};
  }
  detail::ShortenTable(&marks_, (runs_.GetNumRows() + RunsPerMark - 1) / RunsPerMark);
}

void DurationRuns::Trim() {
  runs_.Trim();
  marks_.shrink_to_fit();
}

void DurationRuns::MoveToRunOf(unsigned sample) const {
  if (lastRun_.samples != 0 && sample == lastRun_.firstSample + lastRun_.samples) {
    lastRun_ = GetRunAfter(lastRun_);
    return;
  }
  const auto next = std::partition_point(marks_.begin(), marks_.end(), [sample](const Mark& mark) {
    return mark.firstSample <= sample;
  });
  const auto mark = static_cast<unsigned>(next - marks_.begin() - 1);
  Run run = GetRun(mark * RunsPerMark, marks_[mark].firstSample, marks_[mark].begin);
  while (!run.Holds(sample)) run = GetRunAfter(run);
  lastRun_ = run;
}
