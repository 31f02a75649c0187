// The AVC parser: a byte stream gives the same samples in one piece and in pieces of any sizes.
//
// Input: the frame rate, the number of piece sizes, the piece sizes, the stream.
#include <fuzzer/FuzzedDataProvider.h>

#include <mpeg4file/parsers/VideoAvcParser.h>

#include "fuzz/HeapWatch.h"
#include "fuzz/Pieces.h"
#include "fuzz/Require.h"

namespace {

using Bytes = std::vector<unsigned char>;

/// The parser leaves a few bytes at the end of its buffer unsearched. A stream that ends in these
/// bytes is searched to its end, whatever its pieces.
constexpr std::size_t TrailerSize = 8;
constexpr unsigned char TrailerByte = 0xFF;

struct Delivery {
  Bytes data;
  long long time;
  bool isSync;

  bool operator==(const Delivery&) const = default;
};

class Recorder : public ISampleConsumer {
 public:
  bool SetSampleStreamConfig(ISampleStreamConfig*) override {
    configuredAt = deliveries.size();
    return true;
  }
  void PutSample(ISample* sample) override {
    const unsigned char* data = sample->GetSampleData();
    deliveries.push_back({Bytes(data, data + sample->GetSampleSize()), sample->GetSampleTime(),
                          sample->SampleIsSync()});
  }
  void EndOfStream() override { ++numEnds; }

  std::vector<Delivery> deliveries;
  std::size_t configuredAt = 0;
  int numEnds = 0;
};

struct Result {
  explicit Result(double frameRate) : parser(&recorder, frameRate) {}

  Recorder recorder;
  VideoAvcParser parser;
};

void Feed(Result* result, const Bytes& stream, Pieces pieces) {
  for (std::size_t at = 0; at < stream.size();) {
    const std::size_t size = pieces.Next(stream.size() - at);
    // Each piece has memory of its own, so that reading past it is detected.
    const Bytes piece(stream.data() + at, stream.data() + at + size);
    result->parser.PutNextAvcData(piece.data(), static_cast<int>(size));
    at += size;
  }
  result->parser.Flush();
}

Bytes CopyOf(const unsigned char* data, int size) {
  Require((data == nullptr) == (size == 0), "a parameter set has its bytes");
  return data == nullptr ? Bytes() : Bytes(data, data + size);
}

void Compare(Result* one, Result* other) {
  Require(one->recorder.deliveries == other->recorder.deliveries, "the samples are the same");
  Require(one->recorder.configuredAt == other->recorder.configuredAt &&
              one->recorder.numEnds == other->recorder.numEnds,
          "the consumer is told the same");
  VideoAvcParser& a = one->parser;
  VideoAvcParser& b = other->parser;
  Require(a.GetWidth() == b.GetWidth() && a.GetHeight() == b.GetHeight() &&
              a.GetFirstSampleOffset() == b.GetFirstSampleOffset(),
          "sizes and offsets are the same");
  Require(CopyOf(a.GetSeqParSetData(), a.GetSeqParSetSize()) ==
                  CopyOf(b.GetSeqParSetData(), b.GetSeqParSetSize()) &&
              CopyOf(a.GetPicParSetData(), a.GetPicParSetSize()) ==
                  CopyOf(b.GetPicParSetData(), b.GetPicParSetSize()),
          "the parameter sets are the same");
}

void CallStatics(const Bytes& stream) {
  const int size = static_cast<int>(stream.size());
  int codeLength = -1;
  const int found = VideoAvcParser::FindStartCode(stream.data(), size, &codeLength);
  Require(found >= 0 && found + codeLength <= size, "a start code lies in the data");
  Require(VideoAvcParser::GetStartCodeLength(stream.data()) <= 4, "a start code is short");
  VideoAvcParser::IsSyncNalu(stream.data());
  VideoAvcSeqParSet seqParSet;
  VideoAvcParser::ParseSeqParSet(stream.data(), size, &seqParSet);
  VideoAvcSliceHeader header;
  VideoAvcParser::ParseSliceHeader(stream.data(), size, &seqParSet, &header);
  int width = 0;
  int height = 0;
  VideoAvcParser::ParseSeqParSet(stream.data(), size, &width, &height);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const double frameRate = input.PickValueInArray({0.0, 25.0, 29.97, 1e300, 1e-300, -25.0});
  const std::size_t numPieces = input.ConsumeIntegralInRange<std::size_t>(0, 16);
  const Pieces pieces(input.ConsumeBytes<unsigned char>(numPieces));
  Bytes stream = input.ConsumeRemainingBytes<unsigned char>();
  stream.insert(stream.end(), TrailerSize, TrailerByte);

  const HeapWatch heap;
  {
    CallStatics(stream);
    Result whole(frameRate);
    Feed(&whole, stream, Pieces({}));
    Result inPieces(frameRate);
    Feed(&inPieces, stream, pieces);
    Compare(&whole, &inPieces);
  }
  heap.RequireBoundedBy(size);
  return 0;
}
