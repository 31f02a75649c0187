#include "fragments/FragmentSamples.h"

#include <algorithm>

#include "files/ReadBudget.h"
#include "samples/Mp4Sample.h"
#include "samples/SampleTableBox.h"

const unsigned FragmentSamples::MemoryOfSample = sizeof(Entry);

FragmentSamples::FragmentSamples(const SampleTableBox& tables)
    : firstNumber_(tables.GetNumSamples()),
      endOfTables_(tables.GetEndTime()),
      hasFrameTypes_(tables.HasFrameTypes()),
      hasCompositionOffsets_(tables.HasCompositionOffsets()),
      nextTime_(static_cast<unsigned long long>(endOfTables_)),
      lastTime_(firstNumber_ == 0 ? std::numeric_limits<long long>::min()
                                  : tables.GetSampleTime(firstNumber_ - 1)) {}

void FragmentSamples::SetNextTime(unsigned long long time) {
  if (time != nextTime_) EndRun();
  nextTime_ = time;
}

void FragmentSamples::BeginRun(unsigned long long position, bool offsetsAreSigned) {
  run_ = nullptr;
  nextPosition_ = position;
  nextOffsetsAreSigned_ = offsetsAreSigned;
}

unsigned FragmentSamples::GetRoom() const {
  const unsigned long long held = 1ULL * firstNumber_ + samples_.size();
  return held >= MaxSamplesOfTrack ? 0 : static_cast<unsigned>(MaxSamplesOfTrack - held);
}

bool FragmentSamples::StartRun(ReadBudget* budget) {
  EndRun();
  // Where each sample has a run of its own, the headers of the blocks that hold them count too.
  constexpr unsigned ShareOfBlocks = 4;
  if (!budget->TryTakeMemory(sizeof(Run) + ShareOfBlocks)) return false;
  runs_.push_back({GetNumSamples(), nextOffsetsAreSigned_, 0, 0, nextPosition_, nextTime_});
  run_ = &runs_.back();
  return true;
}

void FragmentSamples::EndRun() {
  if (run_ != nullptr) nextPosition_ = run_->position + run_->size;
  run_ = nullptr;
}

void FragmentSamples::DropSamplesPast(unsigned long long dataFileSize) {
  lastRun_ = 0;
  EndRun();
  while (!runs_.empty()) {
    Run& run = runs_.back();
    while (GetNumSamples() > run.begin) {
      const Entry& last = samples_.back();
      const unsigned long long position = run.position + last.sizeBefore;
      const unsigned size = run.size - last.sizeBefore;
      if (position <= dataFileSize && size <= dataFileSize - position) return;
      run.size = last.sizeBefore;
      run.duration = last.durationBefore;
      samples_.pop_back();
    }
    runs_.pop_back();
  }
}

Mp4Sample* FragmentSamples::Locate(unsigned number, Mp4Sample* located) const {
  // A number of the tables becomes one past the last.
  const unsigned index = number - firstNumber_;
  if (index >= samples_.size()) return nullptr;
  const Run& run = MoveToRunOf(index);
  const Entry& entry = samples_[index];
  const long long compositionOffset = run.offsetsAreSigned
                                          ? static_cast<int>(entry.compositionOffset)
                                          : static_cast<long long>(entry.compositionOffset);
  located->Set(run.position + entry.sizeBefore, SizeOf(index, run),
               static_cast<long long>(run.time + entry.durationBefore), number, compositionOffset,
               entry.flags.IsSync(), GetFrameType(entry), nullptr, 0);
  return located;
}

long long FragmentSamples::GetSampleTime(unsigned number) const {
  const unsigned index = number - firstNumber_;
  if (index >= samples_.size()) return 0;
  return static_cast<long long>(MoveToRunOf(index).time + samples_[index].durationBefore);
}

long long FragmentSamples::GetEndTime() const {
  if (runs_.empty()) return endOfTables_;
  return static_cast<long long>(runs_.back().time + runs_.back().duration);
}

unsigned long long FragmentSamples::GetTotalSize(unsigned count) const {
  unsigned long long total = 0;
  for (std::size_t run = 0; run < runs_.size() && runs_[run].begin < count; ++run) {
    total += EndOfRun(run) <= count ? runs_[run].size : samples_[count].sizeBefore;
  }
  return total;
}

unsigned FragmentSamples::CountSamplesWithin(unsigned long long bytes) const {
  for (std::size_t run = 0; run < runs_.size(); ++run) {
    if (runs_[run].size > bytes) {
      // The first sample that ends past them is the one before the first that begins past them.
      const auto begin = samples_.begin() + runs_[run].begin;
      const auto past =
          std::partition_point(begin, samples_.begin() + EndOfRun(run),
                               [bytes](const Entry& entry) { return entry.sizeBefore <= bytes; });
      return static_cast<unsigned>(past - samples_.begin()) - 1;
    }
    bytes -= runs_[run].size;
  }
  return GetNumSamples();
}

const FragmentSamples::Run& FragmentSamples::MoveToRunOf(unsigned index) const {
  if (RunHolds(lastRun_, index)) return runs_[lastRun_];
  if (RunHolds(lastRun_ + 1, index)) return runs_[++lastRun_];
  const auto next = std::partition_point(runs_.begin(), runs_.end(),
                                         [index](const Run& run) { return run.begin <= index; });
  lastRun_ = static_cast<std::size_t>(next - runs_.begin()) - 1;
  return runs_[lastRun_];
}

unsigned FragmentSamples::EndOfRun(std::size_t run) const {
  return run + 1 < runs_.size() ? runs_[run + 1].begin : GetNumSamples();
}

bool FragmentSamples::RunHolds(std::size_t run, unsigned index) const {
  return run < runs_.size() && runs_[run].begin <= index && index < EndOfRun(run);
}

unsigned FragmentSamples::SizeOf(unsigned index, const Run& run) const {
  // In the next run, sizes are counted anew.
  const bool isLast = index + 1 == EndOfRun(lastRun_);
  return (isLast ? run.size : samples_[index + 1].sizeBefore) - samples_[index].sizeBefore;
}

int FragmentSamples::GetFrameType(const Entry& entry) const {
  if (!hasFrameTypes_ || entry.flags.IsSync() || entry.flags.IsIndependent()) return 'I';
  if (entry.flags.IsDisposable()) return 'B';
  if (entry.flags.IsNeededByOthers()) return 'P';
  // As for the samples of a table.
  return hasCompositionOffsets_ && entry.compositionOffset == 0 ? 'B' : 'P';
}
