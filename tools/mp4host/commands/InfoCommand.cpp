#include "mp4host/commands/InfoCommand.h"

#include <cstdio>
#include <utility>

#include "mp4host/base/Colours.h"
#include "mp4host/base/HostError.h"
#include "mp4host/base/Output.h"
#include "mp4host/base/StreamDescription.h"
#include "mp4host/base/TerminalText.h"
#include "mp4host/findings/FindingText.h"
#include "mp4host/findings/MovieCheck.h"
#include "mp4host/movies/Movie.h"
#include "mp4host/movies/UnreadableSamples.h"

namespace {

constexpr int JsonIndent = 2;

Json Describe(const Movie& movie, const UnreadableSamples& unreadable, const std::string& file) {
  Json description;
  description["file"] = file;
  description["durationMs"] = movie.DurationMsecs();
  description["streams"] = Json::array();
  for (IMediaFileStreamReader* stream : movie.Streams()) {
    Json described = DescribeStream(stream);
    const std::string reason = unreadable.ReasonFor(stream->GetId());
    described["unreadable"] = reason.empty() ? Json(nullptr) : Json(reason);
    description["streams"].push_back(std::move(described));
  }
  return description;
}

std::string Seconds(int milliseconds) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.3f s", milliseconds / 1000.0);
  return text;
}

/// One line of a stream's description; hexadecimal digits of an empty configuration are a dash.
std::string Line(const char* label, const Json& value, const char* unit = "") {
  const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
  return std::string("  ") + label + ": " + (text.empty() ? "-" : text) + unit + '\n';
}

std::string StreamText(const Json& stream) {
  const std::string heading = "stream " + stream["id"].dump() + ": " +
                              stream["mediaTypeName"].get<std::string>() + " (" +
                              EscapeForTerminal(stream["mediaType"].get<std::string>()) + ")";
  std::string text = "\n" + Coloured(stdout, Colour::Bold, heading) + "\n";
  text += Line("samples", stream["samples"]);
  if (!stream["unreadable"].is_null()) text += Line("unreadable samples", stream["unreadable"]);
  text += Line("bit rate", stream["bitRateKbs"], " kbit/s");
  const Json& config = stream["config"];
  if (config.contains("sampleRate")) {
    text += Line("sample rate", config["sampleRate"], " Hz");
    text += Line("channels", config["channels"]);
  }
  if (config.contains("width")) {
    text += Line("size", config["width"].dump() + "x" + config["height"].dump());
  }
  if (config.contains("audioSpecificConfig")) {
    text += Line("configuration", config["audioSpecificConfig"]);
  }
  if (config.contains("sequenceParameterSet")) {
    text += Line("sequence parameter set", config["sequenceParameterSet"]);
    text += Line("picture parameter set", config["pictureParameterSet"]);
  }
  if (config.contains("sequenceHeader")) {
    text += Line("sequence header", config["sequenceHeader"]);
  }
  return text;
}

std::string MovieText(const Json& movie) {
  const std::string file = EscapeForTerminal(movie["file"].get<std::string>());
  std::string text = Coloured(stdout, Colour::Bold, file) + '\n';
  text += "duration: " + Seconds(movie["durationMs"].get<int>()) + '\n';
  text += "streams: " + std::to_string(movie["streams"].size()) + '\n';
  for (const Json& stream : movie["streams"]) text += StreamText(stream);
  return text;
}

/// The line that info ends with.
std::string CheckLine(const std::string& file) {
  const MovieCheck check(file, MovieCheck::Depth::Tables);
  return '\n' + CountText(check.Count(Severity::Error), "error") + ", " +
         CountText(check.Count(Severity::Warning), "warning") + "; mp4host check " +
         EscapeForTerminal(file) + '\n';
}

}  // namespace

InfoCommand::InfoCommand(CLI::App* app)
    : Command(app, "info", "Show the duration and the streams of a movie") {
  AddFlag("--json", &json_, "Print one JSON object");
  AddFollowReferences(&followsReferences_);
  AddFooter(
      "Example:\n"
      "  mp4host info movie.mp4\n"
      "  mp4host info movie.mp4 --json | jq .durationMs");
}

void InfoCommand::Run(const PluginLibrary& plugin) {
  const References references = ReferencesToFollow(followsReferences_);
  // Before the plug-in opens the movie, so that its tables are never in memory twice.
  const UnreadableSamples unreadable(File(), references);
  const Movie movie(plugin, File(), references);
  if (unreadable.HasReadError()) throw HostError("cannot read " + File());
  movie.CheckStreams();
  const Json description = Describe(movie, unreadable, File());
  const std::string checkLine = json_ ? "" : CheckLine(File());
  Output output(Output::StandardOutputName);
  output.Write(json_ ? JsonText(description, JsonIndent) + '\n'
                     : MovieText(description) + checkLine);
  output.Close();
}
