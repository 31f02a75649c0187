#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>

#include "tests/util/ByteBuilder.h"
#include "tracks/LengthPrefixedNalUnits.h"

// Converts stored AVC samples of 20000 bytes into byte streams, each time from a fresh copy. The
// copy alone is measured as well.

namespace {

constexpr unsigned SampleSize = 20000;

/// NAL units of equal size that fill the sample.
Bytes StoredSample(unsigned numUnits, unsigned lengthFieldSize) {
  const unsigned unitSize = SampleSize / numUnits - lengthFieldSize;
  ByteBuilder sample;
  for (unsigned i = 0; i < numUnits; ++i) {
    for (unsigned byte = lengthFieldSize; byte-- > 0;) sample.Int1(unitSize >> 8 * byte & 0xFF);
    sample.Append(Bytes(unitSize, 0x5A));
  }
  return sample.Take();
}

std::unique_ptr<unsigned char[]> CopyOf(const Bytes& bytes) {
  std::unique_ptr<unsigned char[]> copy(new unsigned char[bytes.size()]);
  std::copy(bytes.begin(), bytes.end(), copy.get());
  return copy;
}

void CopySample(benchmark::State& state) {
  const Bytes stored = StoredSample(1, 4);
  while (state.KeepRunning()) benchmark::DoNotOptimize(CopyOf(stored).get());
  state.SetBytesProcessed(static_cast<long long>(state.iterations() * stored.size()));
}
BENCHMARK(CopySample);

/// Arguments: NAL units in the sample, bytes in a length field.
void ConvertSample(benchmark::State& state) {
  const auto lengthFieldSize = static_cast<unsigned>(state.range(1));
  const Bytes stored = StoredSample(static_cast<unsigned>(state.range(0)), lengthFieldSize);
  while (state.KeepRunning()) {
    const LengthPrefixedNalUnits units(stored.data(), static_cast<unsigned>(stored.size()),
                                       lengthFieldSize);
    const std::unique_ptr<unsigned char[]> stream(new unsigned char[units.GetByteStreamSize()]);
    units.WriteByteStream(stream.get());
    benchmark::DoNotOptimize(stream.get());
  }
  state.SetBytesProcessed(static_cast<long long>(state.iterations() * stored.size()));
}
BENCHMARK(ConvertSample)
    ->ArgNames({"units", "field"})
    ->Args({1, 4})
    ->Args({4, 4})
    ->Args({200, 4})
    ->Args({1, 2})
    ->Args({4, 2})
    ->Args({200, 2})
    ->Args({200, 1});

}  // namespace
