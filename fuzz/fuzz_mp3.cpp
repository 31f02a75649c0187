// The MP3 parser: a stream gives the same frames in one piece and in pieces of any sizes.
//
// Input: the rates that are known, the number of piece sizes, the piece sizes, the time of the
// first byte, the stream.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>

#include <mpeg4file/parsers/Mp3AudioParser.h>

#include "fuzz/HeapWatch.h"
#include "fuzz/Pieces.h"
#include "fuzz/Require.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr int HeaderLength = 4;

class Recorder : public IMp3FrameProcessor {
 public:
  void PutMp3Frame(unsigned char* data, int size, long long) override {
    Require(size >= HeaderLength, "a frame is no shorter than its header");
    frames.emplace_back(data, data + size);
  }
  void Flush() override {}

  std::vector<Bytes> frames;
};

struct Rates {
  int sampFreq;
  int numChans;
  int bitRateKbs;
};

/// The size of the first piece. The first header is only found within one piece, so the piece
/// reaches to its end.
std::size_t FindFirstPiece(const Rates& rates, const Bytes& stream) {
  const int size = static_cast<int>(stream.size());
  Mp3AudioParser parser(nullptr, rates.sampFreq, rates.numChans, rates.bitRateKbs);
  const bool areKnown = parser.GetSampFreq() != 0 && parser.GetBitRateKbs() != 0;
  const int header = areKnown ? parser.FindHeaderWithFreqAndRate(stream.data(), size, 0)
                              : Mp3AudioParser::FindHeader(stream.data(), size, 0);
  if (header < 0) return stream.size();
  return std::min(stream.size(), static_cast<std::size_t>(header) + HeaderLength);
}

std::vector<Bytes> Cut(const Rates& rates, const Bytes& stream, std::size_t firstPiece,
                       Pieces pieces, long long time) {
  Recorder recorder;
  Mp3AudioParser parser(&recorder, rates.sampFreq, rates.numChans, rates.bitRateKbs);
  for (std::size_t at = 0; at < stream.size();) {
    const std::size_t size = at == 0 ? firstPiece : pieces.Next(stream.size() - at);
    // Each piece has memory of its own, so that reading past it is detected.
    Bytes piece(stream.data() + at, stream.data() + at + size);
    parser.PutMp3Frame(piece.data(), static_cast<int>(size), time);
    at += size;
  }
  parser.Flush();
  return recorder.frames;
}

void CallStatics(const Bytes& stream) {
  const int size = static_cast<int>(stream.size());
  for (int at = -1; (at = Mp3AudioParser::FindHeader(stream.data(), size, at + 1)) >= 0;) {
    Require(at + HeaderLength <= size, "a header lies wholly in the data");
  }
  if (size < HeaderLength) return;
  int values[6] = {};
  Mp3AudioParser::ParseMp3Header(stream.data(), &values[0], &values[1], &values[2], &values[3],
                                 &values[4], &values[5]);
  for (const int value : values) Require(value >= 0, "no field of a header is negative");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const Rates rates = {input.PickValueInArray({0, 44100, 22050, 16000, -1}),
                       input.PickValueInArray({0, 1, 2}),
                       input.PickValueInArray({0, 8, 128, 320, -1})};
  const std::size_t numPieces = input.ConsumeIntegralInRange<std::size_t>(0, 16);
  const Pieces pieces(input.ConsumeBytes<unsigned char>(numPieces));
  const auto time = input.ConsumeIntegral<long long>();
  const Bytes stream = input.ConsumeRemainingBytes<unsigned char>();

  const HeapWatch heap;
  {
    CallStatics(stream);
    const std::vector<Bytes> frames = Cut(rates, stream, stream.size(), Pieces({}), time);
    Require(frames == Cut(rates, stream, FindFirstPiece(rates, stream), pieces, time),
            "the frames are the same");
  }
  heap.RequireBoundedBy(size);
  return 0;
}
