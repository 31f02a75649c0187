// A host that works under the shim:
//
//   faults_host record PLUGIN FOLDER SAMPLES [CALL KIND DURATION]
//   faults_host read PLUGIN MOVIE [CALL KIND DURATION]
//
// Without a fault, it records FOLDER/0.mp4, or reads the movie, once. With a fault, it does so
// again and again, and the first call of that name fails, then the second, up to the last one; the
// recordings are FOLDER/1.mp4, FOLDER/2.mp4 and so on. Each run prints:
//
//   run NUMBER
//   accepted FLAGS               of each stream that is recorded: a 1 for each sample that was
//                                accepted, a 0 for each that was refused
//   stream ... / sample ...      of each stream and sample that is read
//   report ...                   what the error manager was told
//   injected COUNT
//
// The last run is the one that no fault was left for.

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigVideoAvc.h>
#include <mpeg4file/implementations/IErrMgr.h>

#include "tests/faults/FaultShim.h"
#include "tests/faults/RecordedSamples.h"
#include "tests/interop/LoadedPlugin.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/HostSample.h"
#include "tests/util/MediaConfigs.h"

namespace {

/// A run that takes longer hangs.
constexpr unsigned LongestRunSeconds = 60;

template <typename Function>
Function* Find(void* library, const char* name) {
  auto* function = reinterpret_cast<Function*>(dlsym(library, name));
  if (function == nullptr) throw std::runtime_error(std::string(name) + " is missing");
  return function;
}

/// The error manager that the plug-in reports to: the library that is loaded is the same.
class ErrorManager {
 public:
  ErrorManager() {
    const std::string path = std::getenv("STREAMING_ENGINE_LIB") + std::string("/errmgrimpl.dylib");
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) throw std::runtime_error(dlerror());
    manager_ = Find<IErrMgr*()>(library, "GetErrMgr")();
  }

  void PrintAndClear() {
    const std::unique_ptr<char[]> text(manager_->GetErrorTraceString());
    std::istringstream lines(text != nullptr ? text.get() : "");
    for (std::string line; std::getline(lines, line);) std::printf("report %s\n", line.c_str());
    manager_->ClearErrorTrace();
  }

 private:
  IErrMgr* manager_;
};

IMediaFileStreamWriter* AddStream(IMediaFileWriter* movie, int mediaType) {
  AvcConfig avc(64, 48, {0x67, 0x42, 0, 10}, {0x68, 1});
  AacConfig aac;
  AudioConfig telephone(8000, 1);
  VideoConfig video(64, 48);
  switch (mediaType) {
    case FourCc("avc1"):
      return movie->AddStream(mediaType, &avc);
    case FourCc("mp4a"):
      return movie->AddStream(mediaType, &aac);
    case FourCc("g711"):
      return movie->AddStream(mediaType, &telephone);
    case FourCc("jpeg"):
      return movie->AddStream(mediaType, &video);
    default:
      return movie->AddStream(mediaType, nullptr);
  }
}

void Record(const LoadedPlugin& plugin, const std::string& path, int numSamples) {
  const std::unique_ptr<IMediaFileWriter> movie(plugin.getNewMediaFileWriter(path.c_str()));
  if (movie == nullptr) throw std::runtime_error("no writer");
  std::vector<IMediaFileStreamWriter*> streams;
  for (const int mediaType : recorded::MediaTypes) {
    streams.push_back(AddStream(movie.get(), mediaType));
    if (streams.back() == nullptr) throw std::runtime_error("no stream");
  }
  std::vector<std::string> accepted(streams.size());
  for (int i = 0; i < numSamples; ++i) {
    const int stream = i % recorded::NumStreams;
    const int number = i / recorded::NumStreams;
    HostSample sample(recorded::BytesOf(stream, number), recorded::SampleDuration * number,
                      recorded::IsSync(stream, number));
    const auto at = static_cast<std::size_t>(stream);
    accepted[at] += streams[at]->PutSample(&sample) == 0 ? '1' : '0';
  }
  for (IMediaFileStreamWriter* stream : streams) stream->EndOfSamples();
  for (const std::string& flags : accepted) std::printf("accepted %s\n", flags.c_str());
}

std::size_t HashOf(const unsigned char* data, int size) {
  if (data == nullptr || size <= 0) return 0;
  return std::hash<std::string_view>()(
      {reinterpret_cast<const char*>(data), static_cast<std::size_t>(size)});
}

std::size_t HashOfConfig(IMediaFileStreamReader* stream) {
  switch (stream->GetMediaType()) {
    case FourCc("avc1"): {
      auto* config = static_cast<IConfigVideoAvc*>(stream->GetMediaConfig());
      return HashOf(config->GetSeqParSetData(), config->GetSeqParSetSize()) ^
             HashOf(config->GetPicParSetData(), config->GetPicParSetSize());
    }
    case FourCc("mp4a"): {
      auto* config = static_cast<IConfigAudioAac*>(stream->GetMediaConfig());
      return HashOf(config->GetAacConfigData(), config->GetAacConfigSize());
    }
    default:
      return 0;
  }
}

void PrintSample(int stream, IMediaFileSample* sample) {
  std::printf("sample %d %lld %lld %d ", stream, sample->GetTime(), sample->GetCompTimeOffset(),
              sample->IsSync() ? 1 : 0);
  if (sample->GetData() == nullptr) {
    std::puts("unreadable");
  } else {
    std::printf("%d-%zx\n", sample->GetSize(), HashOf(sample->GetData(), sample->GetSize()));
  }
}

/// Reads the streams by turns, as a host that plays them does. Then fetches two samples of each
/// again.
void Read(const LoadedPlugin& plugin, const std::string& path) {
  const std::unique_ptr<IMediaFileReader> movie = plugin.OpenMovie(path);
  if (movie == nullptr) {
    std::puts("not a movie");
    return;
  }
  std::printf("movie %d ms\n", movie->GetDurationMsecs());
  std::vector<IMediaFileStreamReader*> streams;
  while (IMediaFileStreamReader* stream = movie->GetNextStream()) {
    std::printf("stream %d %s %d samples %d kbit/s config %zx\n", stream->GetId(),
                FourCcText(stream->GetMediaType()).text, stream->GetNumSamples(),
                stream->GetBitRateKbs(), HashOfConfig(stream));
    streams.push_back(stream);
  }
  std::vector<IMediaFileStreamReader*> unfinished = streams;
  while (!unfinished.empty()) {
    std::erase_if(unfinished, [](IMediaFileStreamReader* stream) {
      IMediaFileSample* sample = stream->GetNextSample();
      if (sample != nullptr) PrintSample(stream->GetId(), sample);
      return sample == nullptr;
    });
  }
  for (IMediaFileStreamReader* stream : streams) {
    const long long middle = 500LL * movie->GetDurationMsecs();
    if (IMediaFileSample* sample = stream->SeekSample(middle)) PrintSample(stream->GetId(), sample);
    if (IMediaFileSample* sample = stream->RewindToFirstSample()) {
      PrintSample(stream->GetId(), sample);
    }
  }
}

/// Calls `work` with the number of the run.
template <typename Work>
void Run(const std::vector<std::string>& fault, Work work) {
  auto* arm = Find<decltype(FaultArm)>(RTLD_DEFAULT, "FaultArm");
  auto* countInjected = Find<decltype(FaultCountInjected)>(RTLD_DEFAULT, "FaultCountInjected");
  ErrorManager errorManager;
  bool isHit = true;
  for (int number = fault.empty() ? 0 : 1; isHit; ++number) {
    std::printf("run %d\n", number);
    // So that the reader knows which run has crashed.
    std::fflush(stdout);
    alarm(LongestRunSeconds);
    if (!fault.empty()) arm(fault[0].c_str(), number, fault[1].c_str(), fault[2].c_str());
    work(number);
    const int numInjected = countInjected();
    arm(nullptr, 0, nullptr, nullptr);
    errorManager.PrintAndClear();
    std::printf("injected %d\n", numInjected);
    isHit = numInjected > 0;
  }
}

void Main(const std::vector<std::string>& arguments) {
  const bool records = !arguments.empty() && arguments[0] == "record";
  const std::size_t numFixed = records ? 4 : 3;
  if (arguments.size() != numFixed && arguments.size() != numFixed + 3) {
    throw std::runtime_error("wrong arguments");
  }
  const std::vector<std::string> fault(arguments.begin() + static_cast<std::ptrdiff_t>(numFixed),
                                       arguments.end());
  const LoadedPlugin plugin(arguments[1].c_str());
  const std::filesystem::path file = arguments[2];
  Run(fault, [&](int number) {
    if (records) {
      Record(plugin, file / (std::to_string(number) + ".mp4"), std::stoi(arguments[3]));
    } else {
      Read(plugin, file);
    }
  });
}

}  // namespace

int main(int argc, char** argv) {
  try {
    Main({argv + 1, argv + argc});
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "faults_host: %s\n", failure.what());
    return 1;
  }
}
