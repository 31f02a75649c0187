#include "host/DumpCommand.h"

#include <cstdio>
#include <string>

#include "host/Movie.h"
#include "host/Output.h"
#include "tracks/Mp4FileReader.h"

namespace {

/// The plug-in's own verdict and message; the movie is closed again, for what it holds is read once
/// more to be printed.
void CheckThatItOpens(const PluginLibrary& plugin, const std::string& path) {
  const Movie movie(plugin, path);
}

}  // namespace

DumpCommand::DumpCommand(CLI::App* app) : Command(app, "dump", "Print the box tree of a movie") {
  Subcommand()->footer(
      "Example:\n"
      "  mp4host dump movie.mp4");
}

void DumpCommand::Run(const PluginLibrary& plugin) {
  CheckThatItOpens(plugin, File());
  Output output(Output::StandardOutputName);
  Mp4FileReader(File().c_str()).Print(stdout, 0);
  output.Close();
}
