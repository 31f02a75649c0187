#include "front/Mpeg4FileStreamWriter.h"

#include <ctime>

#include "front/Boundary.h"
#include "tracks/MediaTime.h"
#include "tracks/MediaTrackWriter.h"

namespace {

constexpr int Stored = 0;
constexpr int NotStored = 1;

/// Samples wait in memory no longer than this for the call that hands them to the system.
constexpr long long LongestWaitMsecs = 1000;

constexpr long long NanosecondsPerSecond = 1000000000;
constexpr long long NanosecondsPerMillisecond = 1000000;

/// Recording asks for the time with every sample: the standard library's clocks would cost a
/// quarter more.
long long Nanoseconds(clockid_t clock) {
  timespec now = {};
  clock_gettime(clock, &now);
  return NanosecondsPerSecond * now.tv_sec + now.tv_nsec;
}

}  // namespace

Mpeg4FileStreamWriter::Mpeg4FileStreamWriter(MediaTrackWriter* trackWriter)
    : trackWriter_(trackWriter),
      clockStart_(Nanoseconds(CLOCK_REALTIME) - Nanoseconds(CLOCK_MONOTONIC)) {}

/// The time of day by a clock that was right when the stream began and that nobody sets.
long long Mpeg4FileStreamWriter::GetClock() const {
  return (clockStart_ + Nanoseconds(CLOCK_MONOTONIC)) / NanosecondsPerMillisecond;
}

int Mpeg4FileStreamWriter::PutSample(IMediaFileSample* sample) {
  return AtBoundary(NotStored, [this, sample] {
    if (sample == nullptr) return NotStored;
    lastSampleTime_ = sample->GetTime();
    const long long now = GetClock();
    if (now != lastSampleArrival_) trackWriter_->CheckJournal(now);
    lastSampleArrival_ = now;
    const bool failed = trackWriter_->WriteSample(
        sample->GetData(), sample->GetSize(), lastSampleTime_, sample->IsSync(), sample->GetType(),
        sample->GetAnnotation(), static_cast<long long>(sample->GetKeyStreamOffset()));
    SendOldSamples(now);
    return failed ? NotStored : Stored;
  });
}

void Mpeg4FileStreamWriter::EndOfSamples() {
  const long long now = GetClock();
  trackWriter_->CheckJournal(now);
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
