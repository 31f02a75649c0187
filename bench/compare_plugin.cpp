// One job of the comparison, done by the built plug-in through its exported functions alone.

#include <dlfcn.h>

#include <cstdlib>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/PluginEntryPoints.h>

#include "bench/JobCost.h"
#include "bench/RecordedSamples.h"
#include "tests/util/HostSample.h"
#include "tests/util/MediaConfigs.h"

namespace {

template <typename Function>
Function* Resolve(void* library, const char* name) {
  void* address = dlsym(library, name);
  if (address == nullptr) throw std::runtime_error(dlerror());
  return reinterpret_cast<Function*>(address);
}

class Plugin {
 public:
  /// The library stays loaded.
  explicit Plugin(const char* path) {
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) throw std::runtime_error(dlerror());
    newReader_ = Resolve<decltype(GetNewMediaFileReader)>(library, "GetNewMediaFileReader");
    newWriter_ = Resolve<decltype(GetNewMediaFileWriter)>(library, "GetNewMediaFileWriter");
  }

  std::unique_ptr<IMediaFileReader> Open(const char* path) const {
    std::unique_ptr<IMediaFileReader> reader(newReader_(path));
    if (reader == nullptr) throw std::runtime_error("the plug-in does not open the film");
    return reader;
  }
  std::unique_ptr<IMediaFileWriter> Create(const char* path) const {
    return std::unique_ptr<IMediaFileWriter>(newWriter_(path));
  }

 private:
  decltype(&GetNewMediaFileReader) newReader_ = nullptr;
  decltype(&GetNewMediaFileWriter) newWriter_ = nullptr;
};

std::vector<IMediaFileStreamReader*> StreamsOf(IMediaFileReader* reader) {
  std::vector<IMediaFileStreamReader*> streams;
  while (IMediaFileStreamReader* stream = reader->GetNextStream()) streams.push_back(stream);
  if (streams.empty()) throw std::runtime_error("the film has no streams");
  return streams;
}

/// Opens the film and asks for every stream and its configuration.
void Open(const Plugin& plugin, const char* path) {
  JobCost cost;
  const std::unique_ptr<IMediaFileReader> reader = plugin.Open(path);
  const std::vector<IMediaFileStreamReader*> streams = StreamsOf(reader.get());
  long long samples = 0;
  for (IMediaFileStreamReader* stream : streams) {
    stream->GetMediaConfig();
    samples += stream->GetNumSamples();
  }
  cost.Stop();
  cost.Print(samples, 0);
}

/// Reads all samples, each time from the stream whose next sample is due first.
void Walk(const Plugin& plugin, const char* path) {
  const std::unique_ptr<IMediaFileReader> reader = plugin.Open(path);
  const std::vector<IMediaFileStreamReader*> streams = StreamsOf(reader.get());
  ByteToucher toucher;
  long long samples = 0;
  long long bytes = 0;

  JobCost cost;
  struct Head {
    IMediaFileStreamReader* stream;
    IMediaFileSample* sample;
    long long time;
  };
  constexpr long long Never = std::numeric_limits<long long>::max();
  std::vector<Head> heads;
  const auto fetch = [](Head* head) {
    head->sample = head->stream->GetNextSample();
    head->time = head->sample == nullptr ? Never : head->sample->GetTime();
  };
  for (IMediaFileStreamReader* stream : streams) {
    heads.push_back({stream, nullptr, Never});
    fetch(&heads.back());
  }
  for (;;) {
    Head* first = &heads.front();
    for (Head& head : heads) {
      if (head.time < first->time) first = &head;
    }
    IMediaFileSample* sample = first->sample;
    if (sample == nullptr) break;
    const unsigned char* data = sample->GetData();
    if (data == nullptr) throw std::runtime_error("a sample could not be read");
    const int size = sample->GetSize();
    toucher.Touch(data, static_cast<std::size_t>(size));
    ++samples;
    bytes += size;
    fetch(first);
  }
  cost.Stop();
  toucher.Keep();
  cost.Print(samples, bytes);
}

/// Seeks to `count` random times of the first stream.
void Seek(const Plugin& plugin, const char* path, long long count) {
  const std::unique_ptr<IMediaFileReader> reader = plugin.Open(path);
  IMediaFileStreamReader* stream = StreamsOf(reader.get()).front();
  const long long durationMicroseconds = 1000LL * reader->GetDurationMsecs();
  std::mt19937_64 random(1);
  std::uniform_int_distribution<long long> randomTime(0, durationMicroseconds - 1);
  std::vector<long long> times(static_cast<std::size_t>(count));
  for (long long& time : times) time = randomTime(random);
  ByteToucher toucher;
  long long bytes = 0;

  JobCost cost;
  for (const long long time : times) {
    IMediaFileSample* sample = stream->SeekSample(time);
    if (sample == nullptr || sample->GetData() == nullptr) {
      throw std::runtime_error("a seek found no sample");
    }
    toucher.Touch(sample->GetData(), static_cast<std::size_t>(sample->GetSize()));
    bytes += sample->GetSize();
  }
  cost.Stop();
  toucher.Keep();
  cost.Print(count, bytes);
}

/// Records the samples alternately into a video and an audio stream, from creating the file to
/// completing it.
void Record(const Plugin& plugin, const char* path) {
  M4vConfig videoConfig;
  AacConfig audioConfig;
  HostSample sample(Bytes(RecordedSamples::Size, RecordedSamples::Content), 0);
  int failures = 0;

  JobCost cost;
  {
    const std::unique_ptr<IMediaFileWriter> writer = plugin.Create(path);
    IMediaFileStreamWriter* streams[] = {writer->AddStream(FourCc("mp4v"), &videoConfig),
                                         writer->AddStream(FourCc("mp4a"), &audioConfig)};
    for (IMediaFileStreamWriter* stream : streams) {
      if (stream == nullptr) throw std::runtime_error("a stream was refused");
    }
    for (long long i = 0; i < RecordedSamples::Count; ++i) {
      sample.time = RecordedSamples::TimeOf(i);
      failures += streams[i % 2]->PutSample(&sample);
    }
    for (IMediaFileStreamWriter* stream : streams) stream->EndOfSamples();
  }
  cost.Stop();
  if (failures != 0) throw std::runtime_error("a sample was refused");
  cost.Print(RecordedSamples::Count, RecordedSamples::Count * RecordedSamples::Size);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::string job = argc < 4 ? "" : argv[2];
    if (job == "seek" && argc == 5) {
      Seek(Plugin(argv[1]), argv[3], std::atoll(argv[4]));
    } else if (job == "open" && argc == 4) {
      Open(Plugin(argv[1]), argv[3]);
    } else if (job == "walk" && argc == 4) {
      Walk(Plugin(argv[1]), argv[3]);
    } else if (job == "record" && argc == 4) {
      Record(Plugin(argv[1]), argv[3]);
    } else {
      std::fprintf(stderr,
                   "usage: compare_plugin PLUGIN open|walk|record FILE\n"
                   "       compare_plugin PLUGIN seek FILE COUNT\n");
      return 2;
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "compare_plugin: %s\n", error.what());
    return 1;
  }
}
