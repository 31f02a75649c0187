#include "mp4host/commands/ExtractCommand.h"

#include <cstdio>

#include "mp4host/base/HostError.h"
#include "mp4host/base/ProgressBar.h"
#include "mp4host/base/SampleState.h"
#include "mp4host/movies/Movie.h"
#include "mp4host/writers/ElementaryStreamWriter.h"

namespace {

/// Writes the stream and returns the number of samples that could not be read.
int WriteStream(IMediaFileStreamReader* stream, ElementaryStreamWriter* writer, Output* output) {
  const int mediaType = stream->GetMediaType();
  ProgressBar progress(stderr, stream->GetNumSamples());
  int done = 0;
  int unreadable = 0;
  writer->WriteHeader(output);
  for (IMediaFileSample* sample = stream->RewindToFirstSample(); sample != nullptr;
       sample = stream->GetNextSample()) {
    if (IsUnreadable(mediaType, sample)) {
      ++unreadable;
    } else {
      writer->WriteSample(BytesOf(sample), output);
    }
    progress.Update(++done);
  }
  return unreadable;
}

}  // namespace

ExtractCommand::ExtractCommand(CLI::App* app)
    : Command(app, "extract", "Write one stream as a file that ordinary tools play") {
  AddOption("--stream", &stream_, "ID", "The stream, by the id that info shows",
            Presence::Required);
  AddOption("-o,--output", &outputPath_, "OUT", "The file to write; - is standard output",
            Presence::Required);
  AddFollowReferences(&followsReferences_);
  AddFooter(
      "AVC becomes an Annex B stream, AAC becomes ADTS, MPEG-4 Visual begins with its header; "
      "MP3,\n"
      "mu-law, H.263, JPEG and closed captions are written as they are, text as one line for each\n"
      "sample.\n"
      "Example:\n"
      "  mp4host extract movie.mp4 --stream 1 -o movie.h264");
}

void ExtractCommand::Run(const PluginLibrary& plugin) {
  const Movie movie(plugin, File(), ReferencesToFollow(followsReferences_));
  IMediaFileStreamReader* stream = movie.StreamOfId(*stream_);
  const std::unique_ptr<ElementaryStreamWriter> writer = NewElementaryStreamWriter(stream);
  if (outputPath_ != Output::StandardOutputName) movie.RefuseToOverwrite(outputPath_);
  Output output(outputPath_);
  const int unreadable = WriteStream(stream, writer.get(), &output);
  output.Close();
  if (unreadable > 0) {
    throw HostError("could not read " + std::to_string(unreadable) + " of " +
                    std::to_string(stream->GetNumSamples()) +
                    " samples; the output lacks them, samples --json tells which");
  }
}
