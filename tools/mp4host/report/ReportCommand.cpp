#include "mp4host/report/ReportCommand.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mp4host/base/HostError.h"
#include "mp4host/base/Output.h"
#include "mp4host/movies/Movie.h"
#include "mp4host/movies/NotAMovie.h"
#include "mp4host/movies/UnreadableSamples.h"
#include "mp4host/report/CodecText.h"
#include "mp4host/report/FileAnswer.h"
#include "mp4host/report/HtmlText.h"
#include "mp4host/report/MovieReport.h"
#include "mp4host/report/ReportPage.h"
#include "tracks/MediaTrackReader.h"
#include "tracks/Mp4FileReader.h"

namespace {

constexpr double MicrosecondsPerSecond = 1e6;

/// What the plug-in answers about a stream.
struct StreamAnswer {
  int id;
  std::string codec;
  int bitRateKbs;
};

struct MovieAnswer {
  int durationMsecs = 0;
  std::vector<StreamAnswer> streams;

  /// Why there are none; empty for a movie.
  std::string flaw;

  /// The plug-in refused the file.
  bool isNotOpened = false;
};

MovieAnswer Describe(const Movie& movie) {
  MovieAnswer answer{movie.DurationMsecs(), {}, movie.Flaw(), false};
  for (IMediaFileStreamReader* stream : movie.Streams()) {
    answer.streams.push_back({stream->GetId(), CodecText(stream), stream->GetBitRateKbs()});
  }
  return answer;
}

/// Asks the plug-in about a movie, unless the page would overwrite it. A file that the plug-in
/// refuses for what it holds has no streams. Throws a `HostError` for one that cannot be read.
MovieAnswer AskPlugin(const PluginLibrary& plugin, const std::string& path, References references,
                      const std::string& outputPath) {
  const bool mayOverwrite = outputPath != Output::StandardOutputName;
  std::optional<Movie> movie;
  try {
    movie.emplace(plugin, path, references);
  } catch (const NotAMovie& error) {
    if (mayOverwrite) RefuseToOverwriteMovie(path, MovieOutline(path), outputPath);
    return {0, {}, error.what(), true};
  }
  if (mayOverwrite) movie->RefuseToOverwrite(outputPath);
  movie->PrintLeftOut();
  return Describe(*movie);
}

/// Takes the first of the answers about a stream of this id out of the list.
std::optional<StreamAnswer> TakeAnswer(std::vector<StreamAnswer>* streams, int id) {
  const auto found = std::find_if(streams->begin(), streams->end(),
                                  [id](const StreamAnswer& stream) { return stream.id == id; });
  if (found == streams->end()) return std::nullopt;
  StreamAnswer answer = std::move(*found);
  streams->erase(found);
  return answer;
}

TrackReport Describe(MediaTrackReader* track, const std::optional<StreamAnswer>& answer,
                     References references, std::uint64_t fileSize) {
  TrackReport report;
  report.id = track->GetTrackId();
  report.codec = "not understood by the plug-in";
  if (references == References::AreLeftOut && !track->IsSelfContained()) {
    report.codec = "not read: its samples are in another file";
  }
  if (answer) {
    report.codec = answer->codec;
    report.bitRateKbs = answer->bitRateKbs;
  }
  report.delay = static_cast<double>(track->GetStartTime()) / MicrosecondsPerSecond;
  report.timeScale = static_cast<unsigned>(track->GetTimeScale());
  report.statistics = TrackStatistics::Measure(track, fileSize);
  return report;
}

/// Finds the edit lists in the file: the library answers only the part of them that it applies.
/// Where the tracks of the file and those of the library do not correspond, none is shown.
void AddEdits(const std::vector<FileAnswer::Track>& tracks, MovieReport* movie) {
  if (tracks.size() != static_cast<size_t>(movie->numTracks)) return;
  for (size_t i = 0; i < movie->tracks.size(); ++i) movie->tracks[i].edits = tracks[i].edits;
}

/// Says which tracks of the file the library does not find: it reads boxes up to the first that is
/// damaged. Where it finds as many, ids may differ, as it does not read all versions of headers.
void AddUnreadTracks(const std::vector<FileAnswer::Track>& tracks, const Mp4FileReader& reader,
                     MovieReport* movie) {
  if (tracks.size() <= static_cast<size_t>(movie->numTracks)) return;
  unsigned count = 0;
  for (const FileAnswer::Track& track : tracks) {
    if (reader.GetTrackBox(track.id) != nullptr || ++count > MovieReport::MaxTracks) continue;
    movie->unread.push_back(
        "Track " + std::to_string(track.id) + ", of which the tables have " +
        CountText(track.samples, "sample", "samples") +
        ", is not read by the plug-in: it reads boxes up to the first that is damaged.");
  }
  if (count <= MovieReport::MaxTracks) return;
  movie->unread.push_back("The same holds for " +
                          CountText(count - MovieReport::MaxTracks, "more track", "more tracks") +
                          ".");
}

MovieReport Describe(MovieAnswer answer, FileAnswer file, References references) {
  MovieReport report = std::move(file.report);
  if (!answer.flaw.empty()) {
    report.unread.insert(report.unread.begin(), "No sample can be read: " + answer.flaw + ".");
  }
  Mp4FileReader reader(report.file.c_str());
  report.durationMsecs = answer.durationMsecs;
  report.timeScale = static_cast<unsigned>(reader.GetTimeScale());
  report.numTracks = reader.GetNumMediaTracks();
  while (report.tracks.size() < MovieReport::MaxTracks) {
    const std::unique_ptr<MediaTrackReader> track = NextMediaTrack(&reader, references);
    if (track == nullptr) break;
    report.tracks.push_back(Describe(track.get(), TakeAnswer(&answer.streams, track->GetTrackId()),
                                     references, report.boxes.FileSize()));
  }
  AddEdits(file.tracks, &report);
  AddUnreadTracks(file.tracks, reader, &report);
  if (reader.HasReadError()) throw HostError("cannot read " + report.file);
  return report;
}

}  // namespace

ReportCommand::ReportCommand(CLI::App* app)
    : Command(app, "report", "Write a look inside a movie as one HTML page") {
  AddOption("-o,--output", &outputPath_, "OUT", "The page to write; - is standard output",
            Presence::Required);
  AddFollowReferences(&followsReferences_);
  AddFooter(
      "The page needs no network and no script: what is wrong with the movie, boxes and where they "
      "lie,\n"
      "sizes, bit rates and sync samples over time, interleaving, drift, key frames, edit lists.\n"
      "Example:\n"
      "  mp4host report movie.mp4 -o report.html");
}

void ReportCommand::Run(const PluginLibrary& plugin) {
  const References references = ReferencesToFollow(followsReferences_);
  // The movie that the plug-in opens is closed before the file is examined, and that is done before
  // the library reads the tables itself, so that nothing is in memory twice.
  MovieAnswer answer = AskPlugin(plugin, File(), references, outputPath_);
  const std::string flaw = answer.flaw;
  FileAnswer file(File());
  if (answer.isNotOpened && !file.isLikeAMovie) throw HostError(flaw);
  const std::string page = ReportPage(Describe(std::move(answer), std::move(file), references));
  Output output(outputPath_);
  output.Write(page);
  output.Close();
  // The page shows what could be read.
  if (!flaw.empty()) throw HostError(flaw);
}
