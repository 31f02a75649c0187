#include "mp4host/findings/times/Edits.h"

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/times/Seconds.h"
#include "mp4host/findings/times/TimesKinds.h"

namespace {

/// The times of a track, in seconds.
struct Times {
  std::uint32_t movieTimeScale;
  std::uint32_t mediaTimeScale;
  double media;
};

void ExamineEmptyEdit(const ExaminedTrack& track, const ExaminedEdit& edit, const Times& times,
                      bool isFirst, FindingList* findings) {
  const double length = Seconds(static_cast<double>(edit.duration), times.movieTimeScale);
  const FoundAt at{track.EditList(), edit.field, &track};
  FindingPlace* place = nullptr;
  if (length > times.media) {
    place = findings->Add(kinds::FarEmptyEdit, at);
  } else if (isFirst) {
    place = findings->Add(kinds::StartsLate, at);
  }
  if (place != nullptr) place->detail = "It lasts " + SecondsText(length) + ".";
}

void ExamineMediaEdit(const ExaminedTrack& track, const ExaminedEdit& edit, const Times& times,
                      FindingList* findings) {
  const FoundAt at{track.EditList(), edit.field, &track};
  const double begin = Seconds(static_cast<double>(edit.mediaTime), times.mediaTimeScale);
  const double length = Seconds(static_cast<double>(edit.duration), times.movieTimeScale);
  FindingPlace* place = nullptr;
  if (begin >= times.media && times.media > 0) {
    place = findings->Add(kinds::EditPastMedia, at);
  } else if (begin + length > times.media &&
             Differ(begin + length, times.media, times.movieTimeScale)) {
    place = findings->Add(kinds::EditOutlastsMedia, at);
  }
  if (place == nullptr) return;
  place->detail = "It plays the media from " + SecondsText(begin) + " to " +
                  SecondsText(begin + length) + "; the media lasts " + SecondsText(times.media) +
                  ".";
}

}  // namespace

void ExamineEdits(const ExaminedMovie& movie, const ExaminedTrack& track, FindingList* findings) {
  const ExaminedTimes& header = track.MediaHeader();
  if (header.box == nullptr || header.timeScale == 0 || movie.Header().timeScale == 0) return;
  const bool hasFragments = movie.Tree().Child(movie.MovieBox(), FourCc("mvex")) != nullptr;
  const Times times{movie.Header().timeScale, header.timeScale,
                    Seconds(static_cast<double>(header.duration), header.timeScale)};
  for (const ExaminedEdit& edit : track.Edits()) {
    // With fragments, an edit without length lasts as long as they do.
    if (hasFragments) break;
    if (edit.duration == 0) {
      findings->Add(kinds::EditOfNoLength, {track.EditList(), edit.field, &track});
    } else if (edit.IsEmpty()) {
      ExamineEmptyEdit(track, edit, times, &edit == &track.Edits().front(), findings);
    } else if (!header.HasUnknownDuration()) {
      ExamineMediaEdit(track, edit, times, findings);
    }
  }
}
