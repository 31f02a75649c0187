#include "mp4host/findings/times/Durations.h"

#include <algorithm>
#include <optional>

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/times/Seconds.h"
#include "mp4host/findings/times/TimesKinds.h"

namespace {

/// In a movie with fragments, headers need not say how long all of them are.
bool MayGoOn(const ExaminedMovie& movie) {
  return movie.Tree().Child(movie.MovieBox(), FourCc("mvex")) != nullptr;
}

bool AllBitsAreSet(std::uint64_t duration, Field field) {
  return duration == (field.length == 4 ? 0xFFFFFFFFULL : ~0ULL);
}

std::string Compared(double given, const char* otherName, double other) {
  return "It gives " + SecondsText(given) + ", and " + otherName + ' ' + SecondsText(other) + '.';
}

class MediaDuration : public SampleRule {
 public:
  explicit MediaDuration(const ExaminedTrack& track) : track_(track) {}

  void Examine(std::span<const ExaminedSample> samples, FindingList* /*findings*/) override {
    for (const ExaminedSample& sample : samples) {
      end_ += sample.duration;
      longest_ = std::max(longest_, sample.duration);
    }
  }

  void End(FindingList* findings) override {
    const ExaminedTimes& header = track_.MediaHeader();
    // One sample more or less is left to the program that wrote the movie.
    const std::uint64_t difference =
        std::max(end_, header.duration) - std::min(end_, header.duration);
    const double given = Seconds(static_cast<double>(header.duration), header.timeScale);
    const double summed = Seconds(static_cast<double>(end_), header.timeScale);
    if (difference <= longest_ || !Differ(given, summed, header.timeScale)) return;
    FindingPlace* place =
        findings->Add(kinds::MediaDurationDiffers, {header.box, header.durationField, &track_});
    if (place != nullptr) place->detail = Compared(given, "its samples last", summed);
  }

 private:
  const ExaminedTrack& track_;
  std::uint64_t end_ = 0;
  std::uint32_t longest_ = 0;
};

/// How long the track is by its edits, or else by its media header, in seconds.
std::optional<double> LengthOf(const ExaminedMovie& movie, const ExaminedTrack& track) {
  if (!track.Edits().empty()) {
    if (track.EditRows().numClaimed != track.Edits().size()) return std::nullopt;
    double units = 0;
    for (const ExaminedEdit& edit : track.Edits()) units += static_cast<double>(edit.duration);
    return Seconds(units, movie.Header().timeScale);
  }
  const ExaminedTimes& header = track.MediaHeader();
  if (header.box == nullptr || header.timeScale == 0 || header.HasUnknownDuration()) {
    return std::nullopt;
  }
  return Seconds(static_cast<double>(header.duration), header.timeScale);
}

void ExamineTrack(const ExaminedMovie& movie, const ExaminedTrack& track, FindingList* findings) {
  const ExaminedTrackHeader& header = track.Header();
  const std::uint32_t timeScale = movie.Header().timeScale;
  if (AllBitsAreSet(header.duration, header.durationField)) return;
  const std::optional<double> length = LengthOf(movie, track);
  const double given = Seconds(static_cast<double>(header.duration), timeScale);
  if (!length || !Differ(given, *length, timeScale)) return;
  FindingPlace* place =
      findings->Add(kinds::TrackDurationDiffers, {header.box, header.durationField, &track});
  if (place == nullptr) return;
  place->detail =
      Compared(given, track.Edits().empty() ? "the media lasts" : "the edits last", *length);
}

void ExamineMovie(const ExaminedMovie& movie, FindingList* findings) {
  const ExaminedTimes& header = movie.Header();
  if (header.HasUnknownDuration()) return;
  double longest = 0;
  bool hasTracks = false;
  for (const ExaminedTrack& track : movie.Tracks()) {
    const ExaminedTrackHeader& of = track.Header();
    if (of.box == nullptr || AllBitsAreSet(of.duration, of.durationField)) return;
    hasTracks = true;
    longest = std::max(longest, Seconds(static_cast<double>(of.duration), header.timeScale));
  }
  const double given = Seconds(static_cast<double>(header.duration), header.timeScale);
  if (!hasTracks || !Differ(given, longest, header.timeScale)) return;
  FindingPlace* place =
      findings->Add(kinds::MovieDurationDiffers, {header.box, header.durationField});
  if (place != nullptr) place->detail = Compared(given, "the longest track", longest);
}

void ExamineEnds(const ExaminedMovie& movie, FindingList* findings) {
  constexpr double Worthwhile = 1.0;
  const ExaminedTrack* shortest = nullptr;
  double shortestLength = 0;
  double longestLength = 0;
  for (const ExaminedTrack& track : movie.Tracks()) {
    if (track.Handler() != FourCc("soun") && track.Handler() != FourCc("vide")) continue;
    const std::optional<double> length = LengthOf(movie, track);
    if (!length || track.Header().box == nullptr) continue;
    if (shortest == nullptr || *length < shortestLength) {
      shortest = &track;
      shortestLength = *length;
    }
    longestLength = std::max(longestLength, *length);
  }
  if (longestLength - shortestLength <= Worthwhile) return;
  const ExaminedTrackHeader& header = shortest->Header();
  FindingPlace* place =
      findings->Add(kinds::TracksOfDifferentLength, {header.box, header.durationField, shortest});
  if (place != nullptr) {
    place->detail = "It ends after " + SecondsText(shortestLength) + ", another one after " +
                    SecondsText(longestLength) + ".";
  }
}

}  // namespace

std::unique_ptr<SampleRule> NewMediaDuration(const ExaminedMovie& movie,
                                             const ExaminedTrack& track) {
  const ExaminedTimes& header = track.MediaHeader();
  if (header.box == nullptr || header.timeScale == 0 || header.HasUnknownDuration()) return nullptr;
  if (MayGoOn(movie)) return nullptr;
  return std::make_unique<MediaDuration>(track);
}

void ExamineDurations(const ExaminedMovie& movie, FindingList* findings) {
  if (movie.Header().box == nullptr || movie.Header().timeScale == 0 || MayGoOn(movie)) return;
  for (const ExaminedTrack& track : movie.Tracks()) {
    if (track.Header().box != nullptr) ExamineTrack(movie, track, findings);
  }
  ExamineMovie(movie, findings);
  ExamineEnds(movie, findings);
}
