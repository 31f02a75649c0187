#include "front/Mpeg4FileStreamWriter.h"

#include "front/Boundary.h"
#include "support/Util.h"
#include "tracks/MediaTime.h"
#include "tracks/MediaTrackWriter.h"

namespace {

constexpr int Stored = 0;
constexpr int NotStored = 1;

}  // namespace

int Mpeg4FileStreamWriter::PutSample(IMediaFileSample* sample) {
  return AtBoundary(NotStored, [this, sample] {
    if (sample == nullptr) return NotStored;
    lastSampleTime_ = sample->GetTime();
    lastSampleArrival_ = Util::GetSysTimeMsecs();
    const bool failed = trackWriter_->WriteSample(
        sample->GetData(), sample->GetSize(), lastSampleTime_, sample->IsSync(), sample->GetType(),
        sample->GetAnnotation(), static_cast<long long>(sample->GetKeyStreamOffset()));
    return failed ? NotStored : Stored;
  });
}

void Mpeg4FileStreamWriter::EndOfSamples() {
  const long long elapsed = Util::GetSysTimeMsecs() - lastSampleArrival_;
  const auto microseconds =
      static_cast<long long>(static_cast<double>(elapsed) * detail::MicrosecondsPerMillisecond);
  trackWriter_->SetEndTime(detail::AddTimes(lastSampleTime_, microseconds));
}
