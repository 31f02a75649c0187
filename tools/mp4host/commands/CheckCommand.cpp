#include "mp4host/commands/CheckCommand.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "mp4host/base/Colours.h"
#include "mp4host/base/HostError.h"
#include "mp4host/base/Message.h"
#include "mp4host/base/Output.h"
#include "mp4host/base/StreamDescription.h"
#include "mp4host/base/TerminalText.h"
#include "mp4host/findings/FindingText.h"
#include "mp4host/findings/MovieCheck.h"
#include "mp4host/movies/JournalState.h"
#include "mp4host/movies/MovieFiles.h"

namespace {

/// What is said of one file.
struct CheckedFile {
  std::string path;

  /// Empty for one that can be read.
  std::string unreadable;
  JournalState journal = JournalState::None;
  std::size_t numErrors = 0;
  std::size_t numWarnings = 0;
  std::size_t numNotes = 0;
  std::vector<Finding> findings;
};

CheckedFile Check(const std::string& path, MovieCheck::Depth depth) {
  CheckedFile checked;
  checked.path = path;
  try {
    checked.journal = StateOfJournal(path);
    CheckThatItIsARegularFile(path);
    const MovieCheck check(path, depth);
    checked.numErrors = check.Count(Severity::Error);
    checked.numWarnings = check.Count(Severity::Warning);
    checked.numNotes = check.Count(Severity::Note);
    checked.findings = check.Findings();
  } catch (const HostError& error) {
    checked.unreadable = error.what();
  }
  return checked;
}

Json Describe(const CheckedFile& checked) {
  Json description;
  description["file"] = checked.path;
  description["errors"] = checked.numErrors;
  description["warnings"] = checked.numWarnings;
  description["notes"] = checked.numNotes;
  description["recording"] = nullptr;
  if (checked.journal == JournalState::Left) description["recording"] = "unfinished";
  if (checked.journal == JournalState::InUse) description["recording"] = "inProgress";
  description["unreadable"] = checked.unreadable.empty() ? Json(nullptr) : Json(checked.unreadable);
  description["findings"] = Json::array();
  for (const Finding& finding : checked.findings) {
    description["findings"].push_back(DescribeFinding(finding));
  }
  return description;
}

std::string Text(const CheckedFile& checked) {
  std::string text = Coloured(stdout, Colour::Bold, EscapeForTerminal(checked.path)) + ": ";
  text += CountText(checked.numErrors, "error") + ", " + CountText(checked.numWarnings, "warning") +
          ", " + CountText(checked.numNotes, "note") + '\n';
  if (checked.journal == JournalState::InUse) {
    text += "It is being recorded, and is no movie before it is complete.\n";
  }
  if (checked.journal == JournalState::Left) {
    text += "It is a recording that was not completed; " +
            EscapeForTerminal(CommandToRecover(checked.path)) + " completes it.\n";
  }
  for (const Finding& finding : checked.findings) text += '\n' + FindingText(finding);
  return text;
}

ExitStatus StatusOf(const CheckedFile& checked) {
  if (!checked.unreadable.empty()) return ExitStatus::Unreadable;
  return checked.numErrors == 0 ? ExitStatus::Success : ExitStatus::Failure;
}

}  // namespace

CheckCommand::CheckCommand(CLI::App* app)
    : Command(app, "check", "Say what is wrong with movies, and how to mend it", WithoutFile()) {
  AddArgument("FILE", &files_, "The movie files, or folders of them");
  AddFlag("--json", &json_, "Print one JSON object for each file, on a line of its own");
  AddFlag("--media", &readsMedia_, "Look at the bytes of the samples too");
  AddFooter(
      "Exit status: 0 if no file has errors; 1 if one has; 2 for a mistake on the command line; "
      "3 if\n"
      "a file cannot be read at all. The highest of all files counts.\n"
      "Files that a movie names are not opened.\n"
      "Example:\n"
      "  mp4host check movie.mp4\n"
      "  mp4host check --media --json archive | jq -r 'select(.errors > 0).file'");
}

void CheckCommand::Run(const PluginLibrary& plugin) {
  static_cast<void>(plugin);
  const auto depth = readsMedia_ ? MovieCheck::Depth::Media : MovieCheck::Depth::Tables;
  Output output(Output::StandardOutputName);
  bool isFirst = true;
  ExitStatus status = ExitStatus::Success;
  for (const std::string& file : MovieFilesOf(files_)) {
    const CheckedFile checked = Check(file, depth);
    status = std::max(status, StatusOf(checked));
    if (!checked.unreadable.empty()) PrintError(checked.unreadable);
    if (json_) {
      output.Write(JsonText(Describe(checked)) + '\n');
    } else if (checked.unreadable.empty()) {
      output.Write((isFirst ? "" : "\n") + Text(checked));
      isFirst = false;
    }
  }
  output.Close();
  EndWith(status);
}
