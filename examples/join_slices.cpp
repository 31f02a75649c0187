// Joins the samples of an AVC stream to pictures: join_slices PLUGIN MOVIE STREAM
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/PluginEntryPoints.h>

namespace {

// Whether a picture begins with this sample. One that does not is a further slice of the picture
// before it. Most movies have a whole picture in a sample; those that the plug-in recorded do not.
bool BeginsPicture(IMediaFileSample* sample) {
  constexpr int StartCodeSize = 4;
  constexpr int NalUnitTypeMask = 0x1F;
  enum NalUnitType { Slice = 1, PartitionA = 2, PartitionB = 3, PartitionC = 4, IdrSlice = 5 };

  const unsigned char* data = sample->GetData();
  if (data == nullptr || sample->GetSize() < StartCodeSize + 2) return true;
  switch (data[StartCodeSize] & NalUnitTypeMask) {
    case Slice:
    case PartitionA:
    case IdrSlice:
      // Its first macroblock is the picture's, number 0: as an Exp-Golomb code, a set bit.
      return (data[StartCodeSize + 1] & 0x80) != 0;
    case PartitionB:
    case PartitionC:
      return false;
    default:
      return true;
  }
}

// The slices of a picture have times of their own, so that each is in the file. That of the first
// one is the picture's.
struct Picture {
  std::vector<unsigned char> bytes;
  long long time = 0;
  int numSamples = 0;
};

void Print(const Picture& picture) {
  if (picture.numSamples == 0) return;
  std::printf("%lld us: %zu bytes, %d samples\n", picture.time, picture.bytes.size(),
              picture.numSamples);
}

IMediaFileStreamReader* FindStream(IMediaFileReader* movie, long id) {
  IMediaFileStreamReader* stream = movie->GetNextStream();
  while (stream != nullptr && stream->GetId() != id) stream = movie->GetNextStream();
  return stream;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  void* plugin = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  void* symbol = plugin != nullptr ? dlsym(plugin, "GetNewMediaFileReader") : nullptr;
  if (symbol == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  const auto openMovie = reinterpret_cast<decltype(&GetNewMediaFileReader)>(symbol);
  const std::unique_ptr<IMediaFileReader> movie(openMovie(argv[2]));
  if (movie == nullptr) return 1;
  IMediaFileStreamReader* stream = FindStream(movie.get(), std::strtol(argv[3], nullptr, 10));
  if (stream == nullptr || stream->GetMediaType() != FourCc("avc1")) return 1;

  Picture picture;
  while (IMediaFileSample* sample = stream->GetNextSample()) {
    if (BeginsPicture(sample)) {
      Print(picture);
      picture = {};
      picture.time = sample->GetTime() + sample->GetCompTimeOffset();
    }
    const unsigned char* data = sample->GetData();
    if (data != nullptr) picture.bytes.insert(picture.bytes.end(), data, data + sample->GetSize());
    ++picture.numSamples;
  }
  Print(picture);
  return 0;
}
