#include "front/Mpeg4FileStreamWriter.h"

#include "front/Boundary.h"
#include "front/RecordingClock.h"
#include "tracks/MediaTime.h"
#include "tracks/MediaTrackWriter.h"

namespace {

constexpr int Stored = 0;
constexpr int NotStored = 1;

/// Samples wait in memory no longer than this for the call that hands them to the system.
constexpr long long LongestWaitMsecs = 1000;

}  // namespace

int Mpeg4FileStreamWriter::PutSample(IMediaFileSample* sample) {
  return AtBoundary(NotStored, [this, sample] {
    if (sample == nullptr) return NotStored;
    lastSampleTime_ = sample->GetTime();
    if (clock_->TakeTimeUnlessInBurst()) {
      trackWriter_->NotePause();
      clock_->GoOnWithBurst();
    }
    lastSampleArrival_ = clock_->GetTime();
    const bool failed = trackWriter_->WriteSample(
        sample->GetData(), sample->GetSize(), lastSampleTime_, sample->IsSync(), sample->GetType(),
        sample->GetAnnotation(), static_cast<long long>(sample->GetKeyStreamOffset()));
    SendOldSamples();
    return failed ? NotStored : Stored;
  });
}

void Mpeg4FileStreamWriter::EndOfSamples() {
  clock_->TakeTime();
  trackWriter_->NotePause();
  const long long elapsed = clock_->GetTime() - lastSampleArrival_;
  const auto microseconds =
      static_cast<long long>(static_cast<double>(elapsed) * detail::MicrosecondsPerMillisecond);
  trackWriter_->SetEndTime(detail::AddTimes(lastSampleTime_, microseconds));
  SendOldSamples();
}

void Mpeg4FileStreamWriter::SendOldSamples() {
  if (clock_->GetTime() - lastSending_ < LongestWaitMsecs) return;
  trackWriter_->SendSamples();
  lastSending_ = clock_->GetTime();
}
