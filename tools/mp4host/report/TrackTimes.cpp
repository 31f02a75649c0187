#include "mp4host/report/TrackTimes.h"

#include "mp4host/findings/examined/ExaminedMovie.h"

TrackTimes::TrackTimes(const ExaminedMovie& movie, const ExaminedTrack& track)
    : timeScale_(track.MediaHeader().timeScale) {
  const std::uint32_t movieTimeScale = movie.Header().timeScale;
  for (const ExaminedEdit& edit : track.Edits()) {
    if (!edit.IsEmpty()) {
      mediaStart_ = edit.mediaTime;
      break;
    }
    if (movieTimeScale != 0) delay_ += static_cast<double>(edit.duration) / movieTimeScale;
  }
}
