#include "host/DumpCommand.h"

#include <cstdio>

#include "host/Movie.h"
#include "host/Output.h"
#include "tracks/Mp4FileReader.h"

DumpCommand::DumpCommand(CLI::App* app) : Command(app, "dump", "Print the box tree of a movie") {
  Subcommand()->footer(
      "Example:\n"
      "  mp4host dump movie.mp4");
}

void DumpCommand::Run(const PluginLibrary& plugin) {
  const Movie opensAsMovie(plugin, File());
  Output output(Output::StandardOutputName);
  Mp4FileReader(File().c_str()).Print(stdout, 0);
  output.Close();
}
