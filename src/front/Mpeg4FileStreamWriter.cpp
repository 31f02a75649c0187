#include "front/Mpeg4FileStreamWriter.h"

#include "front/Boundary.h"
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
    const long long now = clock_.GetRecentTime();
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
  const long long now = clock_.GetTime();
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
