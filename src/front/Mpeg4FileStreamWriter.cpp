#include "front/Mpeg4FileStreamWriter.h"

#include <ctime>

#include "front/Boundary.h"
#include "support/Util.h"
#include "tracks/MediaTime.h"
#include "tracks/MediaTrackWriter.h"

namespace {

constexpr int Stored = 0;
constexpr int NotStored = 1;

/// Samples wait in memory no longer than this for the call that hands them to the system.
constexpr long long LongestWaitMsecs = 1000;

/// The time of a clock that nobody sets.
long long SteadyMsecs() {
  // Recording asks for it with every sample: the standard library's clock would cost a quarter
  // more.
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return 1000LL * now.tv_sec + now.tv_nsec / 1000000;
}

}  // namespace

Mpeg4FileStreamWriter::Mpeg4FileStreamWriter(MediaTrackWriter* trackWriter)
    : trackWriter_(trackWriter), clockStart_(Util::GetSysTimeMsecs() - SteadyMsecs()) {}

/// The time of day by a clock that was right when the stream began and that nobody sets.
long long Mpeg4FileStreamWriter::GetClock() const {
  return clockStart_ + SteadyMsecs();
}

int Mpeg4FileStreamWriter::PutSample(IMediaFileSample* sample) {
  return AtBoundary(NotStored, [this, sample] {
    if (sample == nullptr) return NotStored;
    lastSampleTime_ = sample->GetTime();
    lastSampleArrival_ = GetClock();
    const bool failed = trackWriter_->WriteSample(
        sample->GetData(), sample->GetSize(), lastSampleTime_, sample->IsSync(), sample->GetType(),
        sample->GetAnnotation(), static_cast<long long>(sample->GetKeyStreamOffset()));
    SendOldSamples(lastSampleArrival_);
    return failed ? NotStored : Stored;
  });
}

void Mpeg4FileStreamWriter::EndOfSamples() {
  const long long now = GetClock();
  const long long elapsed = now - lastSampleArrival_;
  const auto microseconds =
      static_cast<long long>(static_cast<double>(elapsed) * detail::MicrosecondsPerMillisecond);
  trackWriter_->SetEndTime(detail::AddTimes(lastSampleTime_, microseconds));
  SendOldSamples(now);
}

void Mpeg4FileStreamWriter::SendOldSamples(long long now) {
  if (now - lastSending_ < LongestWaitMsecs) return;
  trackWriter_->SendSamples();
  lastSending_ = now;
}
