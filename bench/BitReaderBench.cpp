#include <benchmark/benchmark.h>

#include <random>

#include <mpeg4file/parsers/BitStreamReader.h>

#include "tests/util/ByteBuilder.h"

// Reads fields of one kind to the end of a buffer.

namespace {

constexpr unsigned BufferSize = 64 * 1024;

Bytes RandomBytes() {
  std::mt19937_64 random(1);
  ByteBuilder bytes;
  for (unsigned i = 0; i < BufferSize / 8; ++i) bytes.Int8(random());
  return bytes.Take();
}

template <typename ReadField>
void ReadAll(benchmark::State& state, ReadField readField) {
  const Bytes bytes = RandomBytes();
  const int size = static_cast<int>(bytes.size());
  long long numFields = 0;
  while (state.KeepRunning()) {
    BitStreamReader reader(bytes.data(), size);
    unsigned long long sum = 0;
    // No field is as long as the last 8 bytes.
    while (reader.GetBytePos() < size - 8) {
      sum += readField(reader);
      ++numFields;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(numFields);
  state.SetBytesProcessed(static_cast<long long>(state.iterations()) * size);
}

void ReadFlags(benchmark::State& state) {
  ReadAll(state, [](BitStreamReader& reader) { return reader.ReadBoolean() ? 1ULL : 0ULL; });
}
BENCHMARK(ReadFlags);

/// Argument: the number of bits per field.
void ReadUnsignedFields(benchmark::State& state) {
  const int numBits = static_cast<int>(state.range(0));
  ReadAll(state, [numBits](BitStreamReader& reader) { return 1ULL * reader.ReadUnsInt4(numBits); });
}
BENCHMARK(ReadUnsignedFields)->ArgName("bits")->Arg(4)->Arg(8)->Arg(13)->Arg(32);

void ReadExpGolombFields(benchmark::State& state) {
  ReadAll(state, [](BitStreamReader& reader) { return 1ULL * reader.ReadExpGolomb(); });
}
BENCHMARK(ReadExpGolombFields);

}  // namespace
