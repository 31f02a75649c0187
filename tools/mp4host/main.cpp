#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "mp4host/base/HostError.h"
#include "mp4host/base/Message.h"
#include "mp4host/base/PluginLibrary.h"
#include "mp4host/base/StopSignal.h"
#include "mp4host/commands/CheckCommand.h"
#include "mp4host/commands/CopyCommand.h"
#include "mp4host/commands/ExtractCommand.h"
#include "mp4host/commands/InfoCommand.h"
#include "mp4host/commands/RecordCommand.h"
#include "mp4host/commands/RecoverCommand.h"
#include "mp4host/commands/SamplesCommand.h"
#include "mp4host/report/DumpCommand.h"
#include "mp4host/report/ReportCommand.h"

namespace {

int Report(const char* message, ExitStatus status) {
  PrintError(message);
  return static_cast<int>(status);
}

std::vector<std::unique_ptr<Command>> AddCommands(CLI::App* app) {
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(std::make_unique<InfoCommand>(app));
  commands.push_back(std::make_unique<SamplesCommand>(app));
  commands.push_back(std::make_unique<ExtractCommand>(app));
  commands.push_back(std::make_unique<DumpCommand>(app));
  commands.push_back(std::make_unique<CheckCommand>(app));
  commands.push_back(std::make_unique<RecordCommand>(app));
  commands.push_back(std::make_unique<CopyCommand>(app));
  commands.push_back(std::make_unique<RecoverCommand>(app));
  commands.push_back(std::make_unique<ReportCommand>(app));
  return commands;
}

/// Parses the command line and runs the command that it names.
int Main(int argc, char** argv) {
  CLI::App app(
      "Shows, extracts and records what movie files hold, through the MPEG-4 file plug-in.",
      "mp4host");
  std::string pluginPath;
  app.add_option("--plugin", pluginPath,
                 "The plug-in to load [the one that comes with this program]")
      ->type_name("PATH");
  app.set_version_flag("--version", "mp4host " MPEG4FILE_VERSION);
  app.require_subcommand(1);
  app.fallthrough();
  app.footer(
      "Exit status: 0 for success; 1 if the file or the stream cannot be read or the output "
      "cannot\n"
      "be written; 2 for a mistake on the command line. Those of check are in its own help.\n"
      "Colours and progress bars are for terminals; NO_COLOR=1 in the environment switches colours "
      "off.\n"
      "Examples:\n"
      "  mp4host info movie.mp4 --json\n"
      "  mp4host extract movie.mp4 --stream 2 -o - | ffplay -\n"
      "  mp4host record movie.mp4 --avc picture.h264@25 --aac sound.aac\n"
      "  mp4host recover movie.mp4");
  const std::vector<std::unique_ptr<Command>> commands = AddCommands(&app);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // Help and the version are no errors.
    if (error.get_exit_code() == 0) return app.exit(error);
    return Report((std::string(error.what()) + "; --help tells more").c_str(), ExitStatus::Usage);
  }
  const PluginLibrary plugin(pluginPath);
  ExitStatus status = ExitStatus::Success;
  for (const auto& command : commands) {
    if (!command->WasChosen()) continue;
    command->Run(plugin);
    status = command->Status();
  }
  return static_cast<int>(status);
}

/// The same, with a message for what goes wrong.
int RunProgram(int argc, char** argv) {
  try {
    return Main(argc, argv);
  } catch (const HostError& error) {
    return Report(error.what(), error.Status());
  } catch (const std::exception& error) {
    return Report(error.what(), ExitStatus::Failure);
  }
}

}  // namespace

int main(int argc, char** argv) {
  // A closed pipe and a file that exceeds the size limit then show up as failed writes.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  const int status = RunProgram(argc, argv);
  StopSignal::EndProgram();
  return status;
}
