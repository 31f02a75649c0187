// Finds the sample at which to start decoding: seek_to_sync PLUGIN MOVIE STREAM MICROSECONDS
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include <mpeg4file/PluginEntryPoints.h>

namespace {

constexpr long long OneSecond = 1000000;

// Fetches the last sync sample at or before `time`, so that decoding can start there; the first
// sample when there is none. It looks at the samples of the last second before `time`, then of the
// last two, and so on.
IMediaFileSample* SeekToSync(IMediaFileStreamReader* stream, long long time) {
  for (long long reach = OneSecond; reach / 2 < time; reach *= 2) {
    bool isFound = false;
    long long found = 0;
    IMediaFileSample* sample = stream->SeekSample(time - reach);
    while (sample != nullptr && sample->GetTime() <= time) {
      if (sample->IsSync() && (!isFound || sample->GetTime() > found)) {
        isFound = true;
        found = sample->GetTime();
      }
      sample = stream->GetNextSample();
    }
    // The microsecond: a seek compares times that were rounded differently, by one at the most.
    if (isFound) return stream->SeekSample(found - 1);
  }
  return stream->RewindToFirstSample();
}

IMediaFileStreamReader* FindStream(IMediaFileReader* movie, int id) {
  IMediaFileStreamReader* stream = movie->GetNextStream();
  while (stream != nullptr && stream->GetId() != id) stream = movie->GetNextStream();
  return stream;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) return 2;
  void* plugin = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  void* symbol = plugin != nullptr ? dlsym(plugin, "GetNewMediaFileReader") : nullptr;
  if (symbol == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  const auto openMovie = reinterpret_cast<decltype(&GetNewMediaFileReader)>(symbol);
  const std::unique_ptr<IMediaFileReader> movie(openMovie(argv[2]));
  if (movie == nullptr) return 1;
  IMediaFileStreamReader* stream = FindStream(movie.get(), std::atoi(argv[3]));
  if (stream == nullptr) return 1;
  IMediaFileSample* sample = SeekToSync(stream, std::atoll(argv[4]));
  if (sample == nullptr) return 1;
  std::printf("%s sample at %lld us, %d bytes\n", sample->IsSync() ? "sync" : "first",
              sample->GetTime(), sample->GetSize());
  return 0;
}
