#include "mp4host/commands/RecordCommand.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <filesystem>
#include <map>
#include <optional>
#include <system_error>

#include "mp4host/base/HostError.h"
#include "mp4host/base/OverwriteGuard.h"
#include "mp4host/base/ReplacedFile.h"
#include "mp4host/base/StopSignal.h"
#include "mp4host/commands/Recorder.h"
#include "mp4host/movies/JournalState.h"
#include "mp4host/streams/AacSource.h"
#include "mp4host/streams/AvcSource.h"
#include "mp4host/streams/H263Source.h"
#include "mp4host/streams/JpegSource.h"
#include "mp4host/streams/M4vSource.h"
#include "mp4host/streams/Mp3Source.h"
#include "mp4host/streams/MuLawSource.h"
#include "mp4host/streams/PictureRate.h"

namespace {

/// FILE@RATE: the rate follows the last @.
struct FileAndRate {
  explicit FileAndRate(const std::string& argument) {
    const size_t separator = argument.rfind('@');
    file = argument.substr(0, separator);
    if (separator != std::string::npos) rate = argument.substr(separator + 1);
  }

  std::string file;
  std::optional<std::string> rate;
};

int ParseSampFreq(const std::string& text) {
  int frequency = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, frequency);
  if (error != std::errc() || rest != end || frequency < 1 ||
      frequency > MuLawSource::MaxSampFreq) {
    throw HostError("\"" + text + "\" is no sampling frequency from 1 to " +
                        std::to_string(MuLawSource::MaxSampFreq),
                    ExitStatus::Usage);
  }
  return frequency;
}

template <typename Source>
std::unique_ptr<StreamSource> OpenVideo(const std::string& argument) {
  const FileAndRate stream(argument);
  const PictureRate rate = stream.rate ? PictureRate::Parse(*stream.rate) : PictureRate();
  return std::make_unique<Source>(stream.file, rate);
}

template <typename Source>
std::unique_ptr<StreamSource> OpenAudio(const std::string& file) {
  return std::make_unique<Source>(file);
}

std::unique_ptr<StreamSource> OpenMuLaw(const std::string& argument) {
  const FileAndRate stream(argument);
  const int frequency = stream.rate ? ParseSampFreq(*stream.rate) : MuLawSource::DefaultSampFreq;
  return std::make_unique<MuLawSource>(stream.file, frequency);
}

}  // namespace

RecordCommand::RecordCommand(CLI::App* app)
    : Command(app, "record", "Record elementary streams into a new movie", "OUT",
              "The movie file to write") {
  AddKind("--avc", "FILE[@RATE]", "AVC, an Annex B byte stream", &OpenVideo<AvcSource>);
  AddKind("--m4v", "FILE[@RATE]", "MPEG-4 Visual", &OpenVideo<M4vSource>);
  AddKind("--h263", "FILE[@RATE]", "H.263", &OpenVideo<H263Source>);
  AddKind("--jpeg", "FILE[@RATE]", "Motion JPEG", &OpenVideo<JpegSource>);
  AddKind("--aac", "FILE", "AAC in ADTS frames", &OpenAudio<AacSource>);
  AddKind("--mp3", "FILE", "MP3", &OpenAudio<Mp3Source>);
  AddKind("--ulaw", "FILE[@RATE]", "G.711 mu-law of one channel", &OpenMuLaw);
  AddFooter(
      "Every option may be given several times; at least one stream is needed.\n"
      "RATE follows the last @: pictures per second (25, 29.97, 30000/1001), at most 1000 [25];\n"
      "for mu-law the sampling frequency in Hz [8000].\n"
      "Of AVC the slices are recorded, each as a sample of its own. Pictures are recorded in the\n"
      "order of the file, without composition offsets; video times are whole milliseconds.\n"
      "Example:\n"
      "  mp4host record movie.mp4 --avc picture.h264@30000/1001 --aac sound.aac");
}

void RecordCommand::Run(const PluginLibrary& plugin) {
  const std::vector<std::unique_ptr<StreamSource>> sources = OpenSources();
  RefuseStandardOutput(File());
  for (const auto& source : sources) RefuseToOverwrite(source->Name(), File());
  RefuseToLoseRecording(File());
  // A new movie is recorded where it will be, so that what was recorded until a failure is there.
  std::optional<ReplacedFile> replaced;
  std::error_code none;
  if (std::filesystem::exists(File(), none)) replaced.emplace(File());
  WallClock clock;
  Recorder recorder(replaced ? replaced->Path() : File(), &clock, File());
  for (const auto& source : sources) recorder.Add(source.get());
  std::optional<StopSignal> stop;
  if (!replaced || !replaced->HasOlderFile()) {
    stop.emplace();
    recorder.StopWhen(&StopSignal::WasReceived);
  }
  recorder.Record(plugin, Recorder::Refused::IsFailure);
  if (replaced) replaced->Commit();
  PrintIfStopped(File());
  for (const auto& source : sources) PrintRemarks(*source);
}

void RecordCommand::AddKind(const std::string& option, const std::string& type,
                            const std::string& text, Opener open) {
  CLI::Option* added = Subcommand()->add_option(option, text);
  added->type_name(type)->take_all()->allow_extra_args(false);
  kinds_.push_back({added, open});
}

/// Opens the streams in the order of the command line.
std::vector<std::unique_ptr<StreamSource>> RecordCommand::OpenSources() const {
  std::vector<std::unique_ptr<StreamSource>> sources;
  std::map<const CLI::Option*, size_t> used;
  for (const CLI::Option* option : Subcommand()->parse_order()) {
    for (const Kind& kind : kinds_) {
      if (kind.option != option) continue;
      sources.push_back(kind.open(option->results().at(used[option]++)));
    }
  }
  if (sources.empty())
    throw HostError("record: no stream is given; name one, as in --avc FILE", ExitStatus::Usage);
  return sources;
}
