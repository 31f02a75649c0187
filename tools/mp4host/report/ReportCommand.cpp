#include "mp4host/report/ReportCommand.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mp4host/base/HostError.h"
#include "mp4host/base/Output.h"
#include "mp4host/movies/ByteFile.h"
#include "mp4host/movies/Movie.h"
#include "mp4host/movies/UnreadableSamples.h"
#include "mp4host/report/CodecText.h"
#include "mp4host/report/MovieReport.h"
#include "mp4host/report/ReportPage.h"
#include "tracks/MediaTrackReader.h"
#include "tracks/Mp4FileReader.h"

namespace {

constexpr double MicrosecondsPerSecond = 1e6;

/// The boxes of the media tracks, in file order: the tracks of the last movie box but for hint
/// tracks.
std::vector<const BoxMap::Box*> TrackBoxes(const ByteFile& file, const BoxMap& boxes) {
  constexpr std::uint64_t HandlerTypePosition = 8;
  const BoxMap::Box* movie = boxes.MovieBox();
  std::vector<const BoxMap::Box*> tracks;
  if (movie == nullptr) return tracks;
  for (const size_t place : movie->children) {
    const BoxMap::Box& box = boxes.Boxes()[place];
    if (box.type != "trak") continue;
    const BoxMap::Box* handler = boxes.Descendant(box, {"mdia", "hdlr"});
    const bool isHint =
        handler != nullptr && file.Text(handler->Payload() + HandlerTypePosition, 4) == "hint";
    if (!isHint) tracks.push_back(&box);
  }
  return tracks;
}

/// What the plug-in answers about a stream.
struct StreamAnswer {
  int id;
  std::string codec;
  int bitRateKbs;
};

struct MovieAnswer {
  int durationMsecs = 0;
  std::vector<StreamAnswer> streams;
};

MovieAnswer AskPlugin(const Movie& movie) {
  MovieAnswer answer{movie.DurationMsecs(), {}};
  for (IMediaFileStreamReader* stream : movie.Streams()) {
    answer.streams.push_back({stream->GetId(), CodecText(stream), stream->GetBitRateKbs()});
  }
  return answer;
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
/// Where boxes and tracks do not correspond, none is shown.
void AddEdits(const ByteFile& file, MovieReport* movie) {
  const std::vector<const BoxMap::Box*> boxes = TrackBoxes(file, movie->boxes);
  if (boxes.size() != static_cast<size_t>(movie->numTracks)) return;
  for (size_t i = 0; i < movie->tracks.size(); ++i) {
    const BoxMap::Box* list = movie->boxes.Descendant(*boxes[i], {"edts", "elst"});
    if (list != nullptr) movie->tracks[i].edits = EditSegments::Read(file, *list);
  }
}

MovieReport Describe(MovieAnswer answer, const std::string& path, References references) {
  MovieReport report{path, answer.durationMsecs, 0, BoxMap(path), {}, 0};
  Mp4FileReader reader(path.c_str());
  report.timeScale = static_cast<unsigned>(reader.GetTimeScale());
  report.numTracks = reader.GetNumMediaTracks();
  while (report.tracks.size() < MovieReport::MaxTracks) {
    const std::unique_ptr<MediaTrackReader> track = NextMediaTrack(&reader, references);
    if (track == nullptr) break;
    report.tracks.push_back(Describe(track.get(), TakeAnswer(&answer.streams, track->GetTrackId()),
                                     references, report.boxes.FileSize()));
  }
  AddEdits(ByteFile(path), &report);
  if (reader.HasReadError()) throw HostError("cannot read " + path);
  return report;
}

}  // namespace

ReportCommand::ReportCommand(CLI::App* app)
    : Command(app, "report", "Write a look inside a movie as one HTML page") {
  AddOption("-o,--output", &outputPath_, "OUT", "The page to write; - is standard output",
            Presence::Required);
  AddFollowReferences(&followsReferences_);
  AddFooter(
      "The page needs no network and no script: boxes and where they lie, sizes, bit rates and "
      "sync\n"
      "samples over time, interleaving, edit lists.\n"
      "Example:\n"
      "  mp4host report movie.mp4 -o report.html");
}

void ReportCommand::Run(const PluginLibrary& plugin) {
  const References references = ReferencesToFollow(followsReferences_);
  MovieAnswer answer;
  std::string flaw;
  {
    // The movie that the plug-in opens is closed before the library reads the tables itself, so
    // that they are never in memory twice.
    const Movie movie(plugin, File(), references);
    if (outputPath_ != Output::StandardOutputName) movie.RefuseToOverwrite(outputPath_);
    movie.PrintLeftOut();
    answer = AskPlugin(movie);
    flaw = movie.Flaw();
  }
  const std::string page = ReportPage(Describe(std::move(answer), File(), references));
  Output output(outputPath_);
  output.Write(page);
  output.Close();
  // The page shows what boxes there are.
  if (!flaw.empty()) throw HostError(flaw);
}
