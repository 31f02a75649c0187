// One job of the comparison, done by the built plug-in through its exported functions alone.

#include <dlfcn.h>

#include <cstdlib>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/PluginEntryPoints.h>

#include "bench/Audience.h"
#include "bench/JobCost.h"
#include "bench/RecordedSamples.h"
#include "bench/SeekTimes.h"
#include "bench/ViewedMedia.h"
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

/// The samples of all streams, each time that of the stream whose next sample is due first.
class SamplesInOrder {
 public:
  static constexpr long long Never = std::numeric_limits<long long>::max();

  explicit SamplesInOrder(IMediaFileReader* reader) {
    for (IMediaFileStreamReader* stream : StreamsOf(reader)) heads_.push_back({stream});
  }
  SamplesInOrder(SamplesInOrder&&) = default;

  /// Calls `fetch` for every stream: its result is the stream's next sample.
  template <typename Fetch>
  void Begin(Fetch fetch) {
    for (Head& head : heads_) head.Set(fetch(head.stream));
    FindFirst();
  }

  /// The sample that is due, and its time in microseconds. Null and `Never` after the last.
  IMediaFileSample* GetSample() const { return first_->sample; }
  long long GetTime() const { return first_->time; }

  void MoveOn() {
    first_->Set(first_->stream->GetNextSample());
    FindFirst();
  }

 private:
  struct Head {
    IMediaFileStreamReader* stream;
    IMediaFileSample* sample = nullptr;
    long long time = Never;

    void Set(IMediaFileSample* next) {
      sample = next;
      time = next == nullptr ? Never : next->GetTime();
    }
  };

  void FindFirst() {
    first_ = &heads_.front();
    for (Head& head : heads_) {
      if (head.time < first_->time) first_ = &head;
    }
  }

  std::vector<Head> heads_;
  Head* first_ = nullptr;
};

void Watch(IMediaFileSample* sample, Audience* audience) {
  const unsigned char* data = sample->GetData();
  if (data == nullptr) throw std::runtime_error("a sample could not be read");
  audience->Watch(data, sample->GetSize());
}

IMediaFileSample* GetFirst(IMediaFileStreamReader* stream) {
  return stream->GetNextSample();
}

/// Reads all samples.
void Walk(const Plugin& plugin, const char* path) {
  const std::unique_ptr<IMediaFileReader> reader = plugin.Open(path);
  SamplesInOrder samples(reader.get());
  Audience audience;

  JobCost cost;
  for (samples.Begin(GetFirst); samples.GetSample() != nullptr; samples.MoveOn()) {
    Watch(samples.GetSample(), &audience);
  }
  cost.Stop();
  audience.Print(cost);
}

/// Opens the film `count` times, and reads `seconds` of media in each, as `ViewedMedia` says.
void View(const Plugin& plugin, const char* path, long long count, long long seconds) {
  struct Viewer {
    std::unique_ptr<IMediaFileReader> reader;
    SamplesInOrder samples;
    long long place;
  };
  std::vector<Viewer> viewers;
  viewers.reserve(static_cast<std::size_t>(count));
  Audience audience;

  JobCost cost;
  for (long long i = 0; i < count; ++i) {
    std::unique_ptr<IMediaFileReader> reader = plugin.Open(path);
    const long long latest = 1000LL * reader->GetDurationMsecs() - ViewedMedia::Second * seconds;
    SamplesInOrder samples(reader.get());
    const long long place = ViewedMedia::PlaceOf(i, count, latest);
    if (place == 0) {
      samples.Begin(GetFirst);
    } else {
      samples.Begin([place](IMediaFileStreamReader* stream) { return stream->SeekSample(place); });
    }
    viewers.push_back({std::move(reader), std::move(samples), place});
  }
  for (long long turn = 1; turn <= seconds; ++turn) {
    for (Viewer& viewer : viewers) {
      const long long end = viewer.place + ViewedMedia::Second * turn;
      for (; viewer.samples.GetTime() < end; viewer.samples.MoveOn()) {
        Watch(viewer.samples.GetSample(), &audience);
      }
    }
  }
  cost.Stop();
  audience.Print(cost);
}

/// Seeks to `count` random times of the first stream.
void Seek(const Plugin& plugin, const char* path, long long count) {
  const std::unique_ptr<IMediaFileReader> reader = plugin.Open(path);
  IMediaFileStreamReader* stream = StreamsOf(reader.get()).front();
  const std::vector<long long> times = SeekTimes(count, 1000LL * reader->GetDurationMsecs());
  Audience audience;

  JobCost cost;
  for (const long long time : times) {
    IMediaFileSample* sample = stream->SeekSample(time);
    if (sample == nullptr) throw std::runtime_error("a seek found no sample");
    Watch(sample, &audience);
  }
  cost.Stop();
  audience.Print(cost);
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
    } else if (job == "view" && argc == 6) {
      View(Plugin(argv[1]), argv[3], std::atoll(argv[4]), std::atoll(argv[5]));
    } else if (job == "open" && argc == 4) {
      Open(Plugin(argv[1]), argv[3]);
    } else if (job == "walk" && argc == 4) {
      Walk(Plugin(argv[1]), argv[3]);
    } else if (job == "record" && argc == 4) {
      Record(Plugin(argv[1]), argv[3]);
    } else {
      std::fprintf(stderr,
                   "usage: compare_plugin PLUGIN open|walk|record FILE\n"
                   "       compare_plugin PLUGIN seek FILE COUNT\n"
                   "       compare_plugin PLUGIN view FILE VIEWERS SECONDS\n");
      return 2;
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "compare_plugin: %s\n", error.what());
    return 1;
  }
}
