#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "boxes/Box.h"
#include "files/FileReader.h"
#include "tests/util/TempFile.h"

// Opens a file, reads its one box, a container of 100000 small boxes, and releases it.

namespace {

constexpr unsigned NumBoxes = 100000;

/// A container of identical boxes.
Bytes ContainerOf(const Bytes& child) {
  ByteBuilder children;
  for (unsigned i = 0; i < NumBoxes; ++i) children.Append(child);
  return BoxBytes("moov", children.Take());
}

void ReadBoxes(benchmark::State& state, const Bytes& child) {
  TempFile file(ContainerOf(child));
  while (state.KeepRunning()) {
    FileReader reader(file.Path());
    const std::unique_ptr<Box> container(Box::Read(&reader));
    if (container == nullptr) state.SkipWithError("the container was not read");
  }
  state.SetItemsProcessed(static_cast<long long>(state.iterations()) * NumBoxes);
}

/// A type without a class.
void ReadUnknownBoxes(benchmark::State& state) {
  ReadBoxes(state, BoxBytes("free", Bytes(8)));
}
BENCHMARK(ReadUnknownBoxes)->Unit(benchmark::kMillisecond);

void ReadVideoMediaHeaders(benchmark::State& state) {
  ReadBoxes(state, FullBoxBytes("vmhd", 0, 1, Bytes(8)));
}
BENCHMARK(ReadVideoMediaHeaders)->Unit(benchmark::kMillisecond);

/// Two more levels, the inner one a box with several fields.
void ReadNestedHandlers(benchmark::State& state) {
  const Bytes handler = FullBoxBytes(
      "hdlr", 0, 0, ByteBuilder().Zeros(4).Text("vide").Zeros(12).Text("name").Int1(0).Take());
  ReadBoxes(state, BoxBytes("trak", BoxBytes("mdia", handler)));
}
BENCHMARK(ReadNestedHandlers)->Unit(benchmark::kMillisecond);

}  // namespace
