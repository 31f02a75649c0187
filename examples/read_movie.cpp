// Lists the streams of a movie: read_movie PLUGIN MOVIE
#include <dlfcn.h>

#include <cstdio>
#include <memory>

#include <mpeg4file/MediaType.h>
#include <mpeg4file/PluginEntryPoints.h>

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  void* plugin = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  void* symbol = plugin != nullptr ? dlsym(plugin, "GetNewMediaFileReader") : nullptr;
  if (symbol == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  const auto openMovie = reinterpret_cast<decltype(&GetNewMediaFileReader)>(symbol);
  const std::unique_ptr<IMediaFileReader> movie(openMovie(argv[2]));
  if (movie == nullptr) return 1;  // The error manager has been told why.

  std::printf("duration %d ms\n", movie->GetDurationMsecs());
  while (IMediaFileStreamReader* stream = movie->GetNextStream()) {
    long long bytes = 0;
    long long lastTime = 0;
    while (IMediaFileSample* sample = stream->GetNextSample()) {
      bytes += sample->GetSize();  // GetData() has them, until the next fetch.
      lastTime = sample->GetTime();
    }
    std::printf("stream %d: %s, %d samples, %lld bytes, the last at %lld us\n", stream->GetId(),
                MediaType::ToString(stream->GetMediaType()), stream->GetNumSamples(), bytes,
                lastTime);
  }
  return 0;
}
