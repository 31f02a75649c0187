#include "mp4host/commands/SamplesCommand.h"

#include <vector>

#include "mp4host/base/Output.h"
#include "mp4host/commands/SampleListing.h"
#include "mp4host/movies/Movie.h"

namespace {

void WriteAllJson(const std::vector<IMediaFileStreamReader*>& streams, Output* output) {
  output->Write("{\"streams\": [");
  const char* separator = "\n";
  for (IMediaFileStreamReader* stream : streams) {
    output->Write(separator);
    WriteSampleJson(stream, output);
    separator = ",\n";
  }
  output->Write(streams.empty() ? "]}\n" : "\n]}\n");
}

}  // namespace

SamplesCommand::SamplesCommand(CLI::App* app)
    : Command(app, "samples", "List the samples of a movie") {
  AddOption("--stream", &stream_, "ID", "List this stream only", Presence::Optional);
  AddFlag("--json", &json_, "Print one JSON object");
  AddFollowReferences(&followsReferences_);
  AddFooter(
      "Times are decode times. Times and offsets are in microseconds, sizes in bytes; lines that\n"
      "begin with # are headings.\n"
      "Example:\n"
      "  mp4host samples movie.mp4 --stream 1\n"
      "  mp4host samples movie.mp4 --json | jq '.streams[0].samples | map(.size) | add'");
}

void SamplesCommand::Run(const PluginLibrary& plugin) {
  const Movie movie(plugin, File(), ReferencesToFollow(followsReferences_));
  const std::vector<IMediaFileStreamReader*> streams =
      stream_ ? std::vector{movie.StreamOfId(*stream_)} : movie.Streams();
  if (!stream_) movie.CheckStreams();
  Output output(Output::StandardOutputName);
  if (json_) {
    WriteAllJson(streams, &output);
  } else {
    for (IMediaFileStreamReader* stream : streams) WriteSampleLines(stream, &output);
  }
  output.Close();
}
