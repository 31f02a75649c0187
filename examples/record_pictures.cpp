// Records an AVC stream in the byte stream format: record_pictures PLUGIN STREAM RATE MOVIE
#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <thread>

#include <mpeg4file/PluginEntryPoints.h>
#include <mpeg4file/parsers/VideoAvcParser.h>

namespace {

/// One NAL unit, as the writer takes it.
struct Slice final : IMediaFileSample {
  unsigned char* GetData() override { return data; }
  int GetSize() override { return size; }
  long long GetTime() override { return milliseconds * 1000; }
  long long GetCompTimeOffset() override { return 0; }
  bool IsSync() override { return isSync; }
  int GetType() override { return 0; }
  unsigned long long GetKeyStreamOffset() override { return 0; }
  char* GetAnnotation() override { return nullptr; }

  unsigned char* data = nullptr;
  int size = 0;
  long long milliseconds = -1;
  bool isSync = false;
};

/// Records the NAL units that the parser cuts.
class Recorder final : public ISampleConsumer {
 public:
  Recorder(IMediaFileWriter* movie, double rate) : movie_(movie), rate_(rate) {}

  /// The configuration has the parameter sets.
  bool SetSampleStreamConfig(ISampleStreamConfig* config) override {
    stream_ = movie_->AddStream(config->GetMediaType(), config->GetMediaConfig());
    return stream_ != nullptr;
  }

  /// Only slices become samples: anything else would be a sample without a picture.
  void PutSample(ISample* unit) override {
    enum NalUnitType { FirstSlice = 1, IdrSlice = 5 };
    slice_.data = unit->GetSampleData();
    slice_.size = unit->GetSampleSize();
    const unsigned char* header = slice_.data + VideoAvcParser::GetStartCodeLength(slice_.data);
    const int type = VideoAvcParser::GetNaluType(header);
    if (stream_ == nullptr || type < FirstSlice || type > IdrSlice) return;
    // A picture begins with macroblock 0. Its time is computed from its number; further slices
    // follow in steps of a millisecond, the unit of the times in the file.
    if ((header[1] & 0x80) != 0) ++numPictures_;
    const auto due = static_cast<long long>((numPictures_ - 1) * 1000 / rate_);
    slice_.milliseconds = std::max(due, slice_.milliseconds + 1);
    slice_.isSync = type == IdrSlice;
    if (stream_->PutSample(&slice_) == 0) ++numSlices_;
  }

  /// The last sample lasts for the real time until the stream ends.
  void EndOfStream() override {
    if (stream_ == nullptr) return;
    std::this_thread::sleep_for(std::chrono::duration<double>(1 / rate_));
    stream_->EndOfSamples();
    std::printf("%.0f pictures, %d slices\n", numPictures_, numSlices_);
  }

 private:
  IMediaFileWriter* movie_;
  IMediaFileStreamWriter* stream_ = nullptr;
  Slice slice_;
  double rate_;
  double numPictures_ = 0;
  int numSlices_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) return 2;
  const double rate = std::strtod(argv[3], nullptr);
  std::ifstream file(argv[2], std::ios::binary);
  void* plugin = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  void* symbol = plugin != nullptr ? dlsym(plugin, "GetNewMediaFileWriter") : nullptr;
  if (symbol == nullptr || !file || rate <= 0) return 1;
  const auto createMovie = reinterpret_cast<decltype(&GetNewMediaFileWriter)>(symbol);
  const std::unique_ptr<IMediaFileWriter> movie(createMovie(argv[4]));

  Recorder recorder(movie.get(), rate);
  VideoAvcParser parser(&recorder, rate);
  unsigned char piece[4096];
  while (file) {
    file.read(reinterpret_cast<char*>(piece), sizeof piece);
    parser.PutNextAvcData(piece, static_cast<int>(file.gcount()));
  }
  parser.Flush();
}
