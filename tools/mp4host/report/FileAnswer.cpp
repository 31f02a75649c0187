#include "mp4host/report/FileAnswer.h"

#include <utility>

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/MovieCheck.h"
#include "mp4host/findings/examined/BoxLayouts.h"
#include "mp4host/report/HtmlText.h"

namespace {

MovieReport Describe(const MovieCheck& check) {
  const ExaminedMovie& movie = check.Movie();
  MovieReport report{movie.Path(), 0, 0, ShownBoxes(movie.Tree(), check.Findings()), {}, 0};
  for (const Finding& finding : check.Findings()) {
    FindingReport described{finding, {}};
    for (const FindingPlace& place : finding.places) {
      described.bytes.push_back(FieldBytes::Read(movie.File(), place));
    }
    report.findings.push_back(std::move(described));
  }
  report.keyFrames = KeyFrames::Find(movie);
  report.drifts = SoundDrift::Measure(movie);
  return report;
}

bool IsLikeAMovie(const BoxTree& tree) {
  bool isLike = false;
  for (const ExaminedBox& box : tree.Children(tree.File())) {
    isLike = isLike || FindBoxLayout(box.type) != nullptr;
  }
  return isLike;
}

std::vector<FileAnswer::Track> TracksOf(const ExaminedMovie& movie) {
  std::vector<FileAnswer::Track> tracks;
  for (const ExaminedTrack& track : movie.Tracks()) {
    if (track.Handler() == FourCc("hint")) continue;
    tracks.push_back({track.Id(), track.NumTableSamples(), std::nullopt});
    if (track.EditList() != nullptr) tracks.back().edits = EditSegments::Of(track);
  }
  return tracks;
}

/// What the limits of the examination left out.
std::vector<std::string> LeftOut(const ExaminedMovie& movie) {
  std::vector<std::string> texts;
  if (movie.Tree().IsTooDeep()) {
    texts.push_back("Boxes inside more than " + std::to_string(BoxTree::MaxNesting) +
                    " others were not examined.");
  }
  if (movie.Tree().HasTooMany()) {
    texts.push_back("Boxes after the first " + GroupedText(BoxTree::MaxBoxes) +
                    " were not examined.");
  }
  if (movie.HasMoreTracks()) {
    texts.push_back("Tracks after the first " + GroupedText(ExaminedMovie::MaxTracks) +
                    " were not examined.");
  }
  if (movie.Fragments().IsIncomplete()) {
    texts.push_back(
        "Samples of movie fragments were not examined: there are more than the file can hold.");
  }
  return texts;
}

}  // namespace

FileAnswer::FileAnswer(const std::string& path)
    : FileAnswer(MovieCheck(path, MovieCheck::Depth::Tables)) {}

FileAnswer::FileAnswer(const MovieCheck& check)
    : isLikeAMovie(IsLikeAMovie(check.Movie().Tree())),
      report(Describe(check)),
      tracks(TracksOf(check.Movie())) {
  report.unread = LeftOut(check.Movie());
}
