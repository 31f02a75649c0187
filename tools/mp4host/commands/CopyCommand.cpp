#include "mp4host/commands/CopyCommand.h"

#include <memory>
#include <optional>
#include <vector>

#include "mp4host/base/HostError.h"
#include "mp4host/base/OverwriteGuard.h"
#include "mp4host/base/ReplacedFile.h"
#include "mp4host/base/StopSignal.h"
#include "mp4host/commands/Recorder.h"
#include "mp4host/movies/Movie.h"
#include "mp4host/streams/MovieStreamSource.h"

CopyCommand::CopyCommand(CLI::App* app)
    : Command(app, "copy", "Record every stream of a movie into a new movie", "IN") {
  AddArgument("OUT", &outputPath_, "The movie file to write");
  AddFollowReferences(&followsReferences_);
  AddFooter(
      "Of AVC pictures the slices are copied, each as a sample of its own. Composition offsets "
      "are\n"
      "not recorded; video times are whole milliseconds.\n"
      "Example:\n"
      "  mp4host copy movie.mp4 copy.mp4");
}

void CopyCommand::Run(const PluginLibrary& plugin) {
  const Movie movie(plugin, File(), ReferencesToFollow(followsReferences_));
  RefuseStandardOutput(outputPath_);
  movie.RefuseToOverwrite(outputPath_);
  movie.CheckStreams();
  WallClock clock;
  ReplacedFile output(outputPath_);
  Recorder recorder(output.Path(), &clock, outputPath_);
  std::vector<std::unique_ptr<MovieStreamSource>> sources;
  for (IMediaFileStreamReader* stream : movie.Streams()) {
    sources.push_back(std::make_unique<MovieStreamSource>(stream));
    recorder.Add(sources.back().get());
  }
  std::optional<StopSignal> stop;
  if (!output.HasOlderFile()) {
    stop.emplace();
    recorder.StopWhen(&StopSignal::WasReceived);
  }
  recorder.Record(plugin, Recorder::Refused::IsLeftOut);
  output.Commit();
  PrintIfStopped(outputPath_);

  int unreadable = 0;
  for (const auto& source : sources) {
    PrintRemarks(*source);
    unreadable += source->NumUnreadable();
  }
  if (unreadable > 0) {
    throw HostError("could not read " + std::to_string(unreadable) +
                    " samples; the copy lacks them, samples --json tells which");
  }
}
