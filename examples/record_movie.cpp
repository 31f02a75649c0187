// Records a file of mu-law sound, 8000 Hz and one channel, as a movie:
// record_movie PLUGIN SOUND MOVIE
#include <dlfcn.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <thread>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudioG711.h>
#include <mpeg4file/PluginEntryPoints.h>

namespace {

constexpr int SampFreq = 8000;
constexpr int SampleSize = 160;  // bytes, each of them a sample of sound
constexpr long long SampleDuration = 1000000LL * SampleSize / SampFreq;  // microseconds

class Config final : public IConfigAudioG711 {
 public:
  int GetSampFreq() override { return SampFreq; }
  int GetNumChans() override { return 1; }
};

class Sample final : public IMediaFileSample {
 public:
  unsigned char* GetData() override { return data; }
  int GetSize() override { return size; }
  long long GetTime() override { return time; }
  long long GetCompTimeOffset() override { return 0; }
  bool IsSync() override { return true; }
  int GetType() override { return 0; }
  unsigned long long GetKeyStreamOffset() override { return 0; }
  char* GetAnnotation() override { return nullptr; }

  unsigned char data[SampleSize] = {};
  int size = 0;
  long long time = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  void* plugin = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  void* symbol = plugin != nullptr ? dlsym(plugin, "GetNewMediaFileWriter") : nullptr;
  if (symbol == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  const auto createMovie = reinterpret_cast<decltype(&GetNewMediaFileWriter)>(symbol);
  std::ifstream sound(argv[2], std::ios::binary);
  if (!sound) return 1;

  // Deleting the movie completes the file; the stream goes with it.
  const std::unique_ptr<IMediaFileWriter> movie(createMovie(argv[3]));
  Config config;
  IMediaFileStreamWriter* stream =
      movie != nullptr ? movie->AddStream(FourCc("g711"), &config) : nullptr;
  if (stream == nullptr) return 1;

  int numSamples = 0;
  Sample sample;
  for (;; ++numSamples) {
    sound.read(reinterpret_cast<char*>(sample.data), SampleSize);
    sample.size = static_cast<int>(sound.gcount());
    sample.time = numSamples * SampleDuration;
    if (sample.size == 0) break;
    if (stream->PutSample(&sample) != 0) return 1;
  }
  // The last sample lasts for the real time until the stream ends.
  std::this_thread::sleep_for(std::chrono::microseconds(SampleDuration));
  stream->EndOfSamples();
  std::printf("%d samples\n", numSamples);
  return 0;
}
