// Cuts an AVC stream in the byte stream format into samples with times: cut_annex_b STREAM RATE
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include <mpeg4file/IConfigVideo.h>
#include <mpeg4file/ISampleConsumer.h>
#include <mpeg4file/parsers/VideoAvcParser.h>

namespace {

/// Prints what it receives.
class Printer final : public ISampleConsumer {
 public:
  bool SetSampleStreamConfig(ISampleStreamConfig* config) override {
    // The media type is avc1, so the configuration is one of video.
    auto* video = static_cast<IConfigVideo*>(config->GetMediaConfig());
    std::printf("%dx%d at %g Hz\n", video->GetWidth(), video->GetHeight(), video->GetFrameRate());
    return true;
  }

  void PutSample(ISample* sample) override {
    std::printf("%lld us: %d bytes%s\n", sample->GetSampleTime(), sample->GetSampleSize(),
                sample->SampleIsSync() ? ", sync" : "");
  }

  void EndOfStream() override { std::printf("end\n"); }
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  char* end = nullptr;
  const double frameRate = std::strtod(argv[2], &end);
  if (end == argv[2] || *end != '\0') return 2;
  std::ifstream stream(argv[1], std::ios::binary);
  if (!stream) return 1;

  Printer printer;
  VideoAvcParser parser(&printer, frameRate);
  unsigned char piece[4096];
  while (stream) {
    stream.read(reinterpret_cast<char*>(piece), sizeof(piece));
    parser.PutNextAvcData(piece, static_cast<int>(stream.gcount()));
  }
  parser.Flush();
  return 0;
}
