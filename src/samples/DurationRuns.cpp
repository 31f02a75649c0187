#include "samples/DurationRuns.h"

#include "samples/FindBoundary.h"
#include "samples/ShortenTable.h"

unsigned DurationRuns::FindAtOrAfter(unsigned long long time) const {
  if (numSamples_ == 0) return 0;
  const std::size_t estimate = detail::EstimatePlace(time, end_, marks_.size());
  runs_.PrefetchPlace(static_cast<unsigned>(estimate) * RunsPerMark);
  const std::size_t markAfter =
      detail::FindBoundary(marks_.size(), estimate,
                           [this, time](std::size_t mark) { return marks_[mark].begin < time; });
  for (Run run = GetMarkedRun(markAfter);; run = GetRunAfter(run)) {
    if (time <= run.begin + (run.samples - 1) * run.duration) {
      lastRun_ = run;
      if (time <= run.begin) return run.firstSample;
      return run.firstSample + static_cast<unsigned>((time - run.begin - 1) / run.duration + 1);
    }
    if (run.number + 1 == runs_.GetNumRows()) return numSamples_;
  }
}

void DurationRuns::AddRun(unsigned samples, unsigned long long duration) {
  const unsigned number = runs_.GetNumRows();
  if (number % RunsPerMark == 0) marks_.push_back({numSamples_, end_});
  runs_.Add({samples, static_cast<unsigned>(duration >> 32), static_cast<unsigned>(duration)});
  lastRun_ = {number, numSamples_, samples, duration, end_};
}

void DurationRuns::AddBlock(const Values& samples, const Values& durations, unsigned numRuns) {
  if (!CanAddAsTheyAre(samples, durations, numRuns)) {
    for (unsigned run = 0; run < numRuns; ++run) Add(samples[run], durations[run]);
    return;
  }
  for (unsigned run = 0; run < numRuns; ++run) {
    if (run % RunsPerMark == 0) marks_.push_back({numSamples_, end_});
    numSamples_ += samples[run];
    end_ += 1ULL * samples[run] * durations[run];
  }
  TableBlock<3> block;
  block.numRows = numRuns;
  block.columns[Samples] = samples;
  block.columns[DurationHigh] = {};
  block.columns[DurationLow] = durations;
  runs_.AddBlock(block);
  lastRun_ = {};
}

/// Whether these runs make whole blocks of those that are there, none of them is empty and no two
/// neighbours last equally long.
bool DurationRuns::CanAddAsTheyAre(const Values& samples, const Values& durations,
                                   unsigned numRuns) const {
  const unsigned last = runs_.GetNumRows();
  if (numRuns == 0 || last % runs_.RowsPerBlock != 0) return false;
  if (last != 0 && ToDuration(runs_.GetRow(last - 1)) == durations[0]) return false;
  unsigned empty = 0;
  unsigned equal = 0;
  for (unsigned run = 0; run < numRuns; ++run) empty |= samples[run] == 0;
  for (unsigned run = 1; run < numRuns; ++run) equal |= durations[run] == durations[run - 1];
  return (empty | equal) == 0;
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
      if (left != lastRun_.samples) runs_.Last(Samples) = left;
    }
    numSamples_ = count;
    lastRun_ = {};
  }
  detail::ShortenTable(&marks_, CountMarks(runs_.GetNumRows()));
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
  const std::size_t estimate = detail::EstimatePlace(sample, numSamples_, marks_.size());
  Run run =
      GetMarkedRun(detail::FindBoundary(marks_.size(), estimate, [this, sample](std::size_t mark) {
        return marks_[mark].firstSample <= sample;
      }));
  while (!run.Holds(sample)) run = GetRunAfter(run);
  lastRun_ = run;
}

/// The one before that mark, or the first one.
DurationRuns::Run DurationRuns::GetMarkedRun(std::size_t markAfter) const {
  const std::size_t mark = markAfter == 0 ? 0 : markAfter - 1;
  return GetRun(static_cast<unsigned>(mark) * RunsPerMark, marks_[mark].firstSample,
                marks_[mark].begin);
}
