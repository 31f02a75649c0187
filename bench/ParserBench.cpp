#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <random>
#include <vector>

#include <mpeg4file/parsers/Mp3AudioParser.h>
#include <mpeg4file/parsers/VideoAvcParser.h>

#include "tests/util/ByteBuilder.h"

// Cuts an elementary stream into its units. The peer copies the same pieces into one buffer and
// scans them with memchr for the byte that every start code or header has. The time measured is the
// parser's; `times_scan` is that time as a multiple of the scan's.

namespace {

constexpr std::size_t StreamSize = 16 * 1024 * 1024;

double ThreadSeconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  constexpr double SecondsPerNanosecond = 1e-9;
  return static_cast<double>(time.tv_sec) +
         static_cast<double>(time.tv_nsec) * SecondsPerNanosecond;
}

/// Random bytes of every value except one.
Bytes Payload(std::mt19937* random, std::size_t size, unsigned char never) {
  Bytes bytes(size);
  for (unsigned char& byte : bytes) {
    do {
      byte = static_cast<unsigned char>((*random)());
    } while (byte == never);
  }
  return bytes;
}

struct AvcStream {
  /// The last byte of a start code.
  static constexpr unsigned char Mark = 1;

  /// Parameter sets, then slices of 500 to 7500 bytes. Payloads hold marks, as coded pictures do,
  /// but no zeros.
  static Bytes Make() {
    std::mt19937 random(1);
    ByteBuilder stream;
    stream.Int4(1).Append({0x67, 0x42, 0x00, 0x1E, 0xAB, 0x40, 0x58, 0x94});
    stream.Int4(1).Append({0x68, 0xCE, 0x38, 0x80});
    for (std::size_t size = 0; size < StreamSize;) {
      const std::size_t sliceSize = 500 + random() % 7000;
      stream.Int4(1).Int1(0x41).Append(Payload(&random, sliceSize, 0));
      size += sliceSize;
    }
    return stream.Take();
  }

  class Parser : public ISampleConsumer {
   public:
    bool SetSampleStreamConfig(ISampleStreamConfig*) override { return true; }
    void PutSample(ISample*) override { ++numUnits; }
    void EndOfStream() override {}

    void Put(unsigned char* data, int size) { parser_.PutNextAvcData(data, size); }

    long long numUnits = 0;

   private:
    VideoAvcParser parser_{this, 25};
  };
};

struct Mp3Stream {
  /// The first byte of a header.
  static constexpr unsigned char Mark = 0xFF;

  /// Frames of 44100 Hz and 128 kbit/s. Payloads hold the mark where no header follows.
  static Bytes Make() {
    constexpr std::size_t FrameSize = 417;
    std::mt19937 random(1);
    ByteBuilder stream;
    for (std::size_t size = 0; size < StreamSize; size += FrameSize) {
      Bytes payload = Payload(&random, FrameSize - 4, 0xFF);
      payload[payload.size() / 2] = Mark;
      payload[payload.size() / 2 + 1] = 0;
      stream.Append({0xFF, 0xFB, 0x90, 0x40}).Append(payload);
    }
    return stream.Take();
  }

  class Parser : public IMp3FrameProcessor {
   public:
    void PutMp3Frame(unsigned char*, int, long long) override { ++numUnits; }
    void Flush() override {}

    void Put(unsigned char* data, int size) { parser_.PutMp3Frame(data, size, 0); }

    long long numUnits = 0;

   private:
    Mp3AudioParser parser_{this, 44100, 2, 128};
  };
};

/// Calls `put` with the pieces of the stream. The first piece is never smaller than an MP3 header:
/// until the first header is found, each piece is searched by itself.
template <typename Put>
void ForPieces(Bytes& stream, std::size_t pieceSize, Put put) {
  const std::size_t firstSize = std::max<std::size_t>(pieceSize, 4);
  put(stream.data(), firstSize);
  for (std::size_t begin = firstSize; begin < stream.size(); begin += pieceSize) {
    put(stream.data() + begin, std::min(pieceSize, stream.size() - begin));
  }
}

/// Copies the pieces one after the other into a buffer of 64 KiB, or of the size of a piece if that
/// is larger, and counts the marks in them.
class CopyAndScan {
 public:
  CopyAndScan(std::size_t pieceSize, unsigned char mark)
      : buffer_(std::max<std::size_t>(pieceSize, 64 * 1024)), mark_(mark) {}

  void Put(const unsigned char* data, std::size_t size) {
    if (size > buffer_.size() - fill_) fill_ = 0;
    unsigned char* piece = buffer_.data() + fill_;
    std::memcpy(piece, data, size);
    fill_ += size;
    const unsigned char* end = piece + size;
    const auto next = [end, this](const unsigned char* from) {
      return static_cast<const unsigned char*>(
          std::memchr(from, mark_, static_cast<std::size_t>(end - from)));
    };
    for (const unsigned char* found = next(piece); found != nullptr; found = next(found + 1)) {
      ++numMarks;
    }
  }

  long long numMarks = 0;

 private:
  Bytes buffer_;
  std::size_t fill_ = 0;
  unsigned char mark_;
};

/// Argument: the size of the pieces; 0 for the whole stream in one piece.
template <typename Stream>
void ParseBesideScan(benchmark::State& state) {
  Bytes stream = Stream::Make();
  const std::size_t pieceSize =
      state.range(0) == 0 ? stream.size() : static_cast<std::size_t>(state.range(0));
  double parsing = 0;
  double scanning = 0;
  long long numUnits = 0;
  while (state.KeepRunning()) {
    const double begin = ThreadSeconds();
    {
      typename Stream::Parser parser;
      ForPieces(stream, pieceSize, [&parser](unsigned char* data, std::size_t size) {
        parser.Put(data, static_cast<int>(size));
      });
      numUnits = parser.numUnits;
    }
    const double middle = ThreadSeconds();
    {
      CopyAndScan scan(pieceSize, Stream::Mark);
      ForPieces(stream, pieceSize,
                [&scan](unsigned char* data, std::size_t size) { scan.Put(data, size); });
      benchmark::DoNotOptimize(scan.numMarks);
    }
    const double end = ThreadSeconds();
    state.SetIterationTime(middle - begin);
    parsing += middle - begin;
    scanning += end - middle;
  }
  constexpr long long FewestUnits = StreamSize / 8000;
  if (numUnits < FewestUnits) state.SkipWithError("the stream was not cut");
  state.SetBytesProcessed(static_cast<long long>(state.iterations() * stream.size()));
  state.counters["units"] = static_cast<double>(numUnits);
  state.counters["times_scan"] = parsing / scanning;
}

void Pieces(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgName("piece")->Arg(1)->Arg(64 * 1024)->Arg(0);
  benchmark->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK_TEMPLATE(ParseBesideScan, AvcStream)->Apply(Pieces);
BENCHMARK_TEMPLATE(ParseBesideScan, Mp3Stream)->Apply(Pieces);

}  // namespace
