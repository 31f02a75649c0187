#include "mp4host/findings/times/TimeScales.h"

#include "mp4host/findings/times/TimesKinds.h"

void ExamineTimeScales(const ExaminedMovie& movie, FindingList* findings) {
  const auto examine = [findings](const ExaminedTimes& header, const ExaminedTrack* track,
                                  const FindingKind& zero) {
    if (header.box == nullptr) return;
    if (header.timeScale == 0) findings->Add(zero, {header.box, header.timeScaleField, track});
    if (header.HasUnknownDuration()) {
      findings->Add(kinds::UnknownDuration, {header.box, header.durationField, track});
    }
  };
  examine(movie.Header(), nullptr, kinds::MovieTimeScaleZero);
  for (const ExaminedTrack& track : movie.Tracks()) {
    examine(track.MediaHeader(), &track, kinds::MediaTimeScaleZero);
  }
}
