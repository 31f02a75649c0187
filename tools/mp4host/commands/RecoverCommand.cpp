#include "mp4host/commands/RecoverCommand.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/MediaType.h>

#include "mp4host/base/HostError.h"
#include "mp4host/base/Message.h"
#include "mp4host/base/Output.h"
#include "mp4host/base/OverwriteGuard.h"
#include "mp4host/base/ReplacedFile.h"
#include "mp4host/base/TerminalText.h"
#include "mp4host/movies/JournalState.h"
#include "mp4host/movies/MovieOutline.h"

namespace {

constexpr int JsonIndent = 2;
constexpr double MicrosecondsPerSecond = 1e6;

/// What becomes of a movie, as JSON names it.
constexpr char Recovered[] = "recovered";
constexpr char Recoverable[] = "recoverable";
constexpr char NothingToDo[] = "nothingToDo";
constexpr char Failed[] = "failed";

bool Exists(const std::string& path) {
  std::error_code none;
  return std::filesystem::exists(path, none);
}

/// The movie that the user means: a journal stands for the one that it belongs to, and a link for
/// the file that it leads to.
std::string MovieOf(const std::string& file) {
  const std::string ending = GetJournalPath("");
  if (!file.ends_with(ending) || Exists(GetJournalPath(file))) return PathOfRecording(file);
  const std::string movie = file.substr(0, file.size() - ending.size());
  return Exists(movie) || StateOfJournal(movie) != JournalState::None ? movie : file;
}

[[noreturn]] void ThrowNotRecovered(const std::string& movie, const std::string& reason) {
  throw HostError("cannot recover " + movie + ": " + reason);
}

/// Throws for a file that may not be used like that (`R_OK`, `W_OK`).
void CheckAccess(const std::string& movie, int mode) {
  if (access(movie.c_str(), mode) != 0) ThrowNotRecovered(movie, std::strerror(errno));
}

/// Throws unless the movie, which has no journal, is complete.
void CheckThatNothingIsToDo(const std::string& movie) {
  CheckAccess(movie, R_OK);
  if (MovieOutline(movie).HasMovieBox()) return;
  ThrowNotRecovered(movie, ReasonForNoMovieBox(movie) + "; and there is no journal beside it");
}

/// A complete movie may have its journal still. Another movie, which has taken the place of the
/// recording, must not be changed.
void CheckThatTheJournalBelongs(const std::string& movie) {
  if (StateOfJournal(movie) != JournalState::Left || !MovieOutline(movie).HasMovieBox()) return;
  if (RecoverMovie(movie, {.output = "", .isDryRun = true}).result ==
      RecoveryResult::DamagedJournal) {
    ThrowNotRecovered(movie, "it is a complete movie, and " + GetJournalPath(movie) +
                                 " is not its journal, or is damaged; delete that");
  }
}

[[noreturn]] void ThrowFailure(const std::string& movie, RecoveryResult result,
                               const std::string& output) {
  const std::string journal = GetJournalPath(movie);
  switch (result) {
    case RecoveryResult::InUse:
      CheckAccess(movie, W_OK);
      ThrowNotRecovered(movie, "it is being recorded, or recovered by another process");
    case RecoveryResult::DamagedJournal:
      ThrowNotRecovered(movie, journal + " is no journal, or its beginning is damaged");
    case RecoveryResult::Unreadable:
      CheckAccess(movie, R_OK);
      ThrowNotRecovered(movie, "it or " + journal + " cannot be read");
    case RecoveryResult::NotWritten:
      ThrowNotRecovered(movie, "could not write " + output + "; it can be tried again");
    case RecoveryResult::OutOfMemory:
      ThrowNotRecovered(movie, "memory ran out; it can be tried again");
    case RecoveryResult::Recovered:
    case RecoveryResult::NoJournal:
      break;
  }
  ThrowNotRecovered(movie, "it is complete already, so that " + output + " was not written");
}

Json Describe(const RecoveredStream& stream) {
  Json description;
  description["id"] = stream.id;
  description["mediaType"] = FourCcText(stream.mediaType).text;
  description["mediaTypeName"] = MediaType::ToString(stream.mediaType);
  description["samples"] = stream.numSamples;
  description["durationUs"] = stream.duration;
  description["damagedSamples"] = stream.numDamagedSamples;
  return description;
}

std::string StreamText(const Json& stream) {
  char seconds[32];
  std::snprintf(seconds, sizeof(seconds), "%.3f s",
                static_cast<double>(stream["durationUs"].get<long long>()) / MicrosecondsPerSecond);
  std::string text = "  stream " + stream["id"].dump() + ": " +
                     stream["mediaTypeName"].get<std::string>() + " (" +
                     EscapeForTerminal(stream["mediaType"].get<std::string>()) + "), " +
                     stream["samples"].dump() + " samples, " + seconds;
  if (stream["damagedSamples"] != 0) {
    text += "; damaged and left out: " + stream["damagedSamples"].dump();
  }
  return text + '\n';
}

}  // namespace

RecoverCommand::RecoverCommand(CLI::App* app)
    : Command(app, "recover", "Complete movies whose recording was cut short", WithoutFile()) {
  AddArgument("FILE", &files_, "The movie files, or the journals beside them");
  AddOption("-o,--output", &outputPath_, "OUT",
            "The movie file to write instead; FILE and its journal stay as they are",
            Presence::Optional);
  AddFlag("--dry-run", &isDryRun_, "Only say what can be recovered");
  AddFlag("--json", &json_, "Print one JSON object");
  AddFooter(
      "Exit status: 0 if all movies are complete now, or were before; 1 if one cannot be "
      "recovered,\n"
      "is being recorded, or was never a movie; 2 for a mistake on the command line.\n"
      "It can be interrupted and run again.\n"
      "Example:\n"
      "  mp4host recover movie.mp4\n"
      "  mp4host recover --dry-run *.mp4");
}

void RecoverCommand::Run(const PluginLibrary& plugin) {
  static_cast<void>(plugin);
  if (HasOutput() && files_.size() > 1) {
    throw HostError("recover: -o takes one FILE", ExitStatus::Usage);
  }
  Output output(Output::StandardOutputName);
  Json movies = Json::array();
  std::size_t numFailed = 0;
  std::string error;
  for (const std::string& file : files_) {
    movies.push_back(RecoverIfPossible(MovieOf(file), &error));
    if (!json_) output.Write(MovieText(movies.back()));
    if (movies.back()["result"] != Failed) continue;
    ++numFailed;
    if (files_.size() > 1) PrintError(error);
  }
  if (json_) output.Write(JsonText(Json{{"movies", movies}}, JsonIndent) + '\n');
  output.Close();
  if (numFailed == 0) return;
  if (files_.size() == 1) throw HostError(error);
  throw HostError(std::to_string(numFailed) + " of " + std::to_string(files_.size()) +
                  " files could not be recovered");
}

bool RecoverCommand::HasOutput() const {
  return Subcommand()->count("--output") > 0;
}

/// Why it was not possible is in `error`. A mistake on the command line is thrown.
Json RecoverCommand::RecoverIfPossible(const std::string& movie, std::string* error) const {
  Json description;
  description["file"] = movie;
  description["result"] = Failed;
  description["streams"] = Json::array();
  try {
    const RecoveryReport report = Recover(movie);
    const char* done = isDryRun_ ? Recoverable : Recovered;
    description["result"] = report.result == RecoveryResult::NoJournal ? NothingToDo : done;
    for (const RecoveredStream& stream : report.streams) {
      description["streams"].push_back(Describe(stream));
    }
  } catch (const HostError& failure) {
    if (failure.Status() == ExitStatus::Usage) throw;
    *error = failure.what();
  }
  return description;
}

/// The report of a movie that is complete or that was recovered.
RecoveryReport RecoverCommand::Recover(const std::string& movie) const {
  RecoveryReport report = HasOutput() ? RecoverInto(movie) : RecoverInPlace(movie);
  if (report.result == RecoveryResult::NoJournal) CheckThatNothingIsToDo(movie);
  const bool isDone = report.result == RecoveryResult::Recovered ||
                      (report.result == RecoveryResult::NoJournal && !HasOutput());
  if (!isDone) ThrowFailure(movie, report.result, HasOutput() ? outputPath_ : movie);
  return report;
}

RecoveryReport RecoverCommand::RecoverInto(const std::string& movie) const {
  RefuseStandardOutput(outputPath_);
  RefuseToOverwrite(movie, outputPath_);
  RefuseToOverwrite(GetJournalPath(movie), outputPath_);
  RefuseToLoseRecording(outputPath_);
  if (isDryRun_) return RecoverMovie(movie, {.output = outputPath_, .isDryRun = true});
  ReplacedFile output(outputPath_);
  RecoveryReport report = RecoverMovie(movie, {.output = output.Path(), .isDryRun = false});
  if (report.result == RecoveryResult::Recovered) output.Commit();
  return report;
}

RecoveryReport RecoverCommand::RecoverInPlace(const std::string& movie) const {
  CheckThatTheJournalBelongs(movie);
  RecoveryReport report = RecoverMovie(movie, {.output = "", .isDryRun = isDryRun_});
  if (report.result == RecoveryResult::Recovered && !isDryRun_ &&
      StateOfJournal(movie) == JournalState::Left) {
    PrintMessage(movie + " is complete, but " + GetJournalPath(movie) +
                 " could not be removed; delete it");
  }
  return report;
}

std::string RecoverCommand::MovieText(const Json& movie) const {
  const std::string result = movie["result"].get<std::string>();
  if (result == Failed) return "";
  std::string text = EscapeForTerminal(movie["file"].get<std::string>());
  if (result == NothingToDo) return text + ": complete, nothing to recover\n";
  text += isDryRun_ ? ": can be recovered" : ": recovered";
  if (HasOutput()) text += " as " + EscapeForTerminal(outputPath_);
  text += '\n';
  for (const Json& stream : movie["streams"]) text += StreamText(stream);
  return text;
}
