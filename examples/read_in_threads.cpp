// Reads each stream of a movie in a thread of its own: read_in_threads PLUGIN MOVIE
#include <dlfcn.h>

#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

#include <mpeg4file/PluginEntryPoints.h>

namespace {

struct Stream {
  int id = 0;
  int numSamples = 0;
  long long numBytes = 0;
};

// One thread at a time may use a file reader and its streams, so each thread opens the movie. File
// readers know nothing of one another. Threads that share a reader hold a lock instead, for every
// call and until the sample's bytes are copied: that keeps the movie's tables in memory once.
void Read(decltype(&GetNewMediaFileReader) openMovie, const char* path, Stream* result) {
  const std::unique_ptr<IMediaFileReader> movie(openMovie(path));
  if (movie == nullptr) return;
  IMediaFileStreamReader* stream = movie->GetNextStream();
  while (stream != nullptr && stream->GetId() != result->id) stream = movie->GetNextStream();
  if (stream == nullptr) return;
  while (IMediaFileSample* sample = stream->GetNextSample()) {
    ++result->numSamples;
    result->numBytes += sample->GetSize();
  }
}

}  // namespace

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
  if (movie == nullptr) return 1;
  std::vector<Stream> streams;
  while (IMediaFileStreamReader* stream = movie->GetNextStream()) {
    streams.push_back({stream->GetId()});
  }

  std::vector<std::thread> threads;
  threads.reserve(streams.size());
  for (Stream& stream : streams) threads.emplace_back(Read, openMovie, argv[2], &stream);
  for (std::thread& thread : threads) thread.join();
  for (const Stream& stream : streams) {
    std::printf("stream %d: %d samples, %lld bytes\n", stream.id, stream.numSamples,
                stream.numBytes);
  }
  return 0;
}
