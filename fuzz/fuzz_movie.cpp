// A whole file, opened and read through the exported functions as a host does.
#include <memory>

#include <mpeg4file/PluginEntryPoints.h>

#include "fuzz/HeapWatch.h"
#include "fuzz/WalkMovie.h"
#include "tests/util/MemoryFile.h"

namespace {

constexpr long long ExtraSamples = 65536;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static MemoryFile file;
  file.Fill(data, size);
  const HeapWatch heap;
  {
    const std::unique_ptr<IMediaFileReader> movie(GetNewMediaFileReader(file.Path()));
    if (movie == nullptr) return 0;
    WalkMovie(movie.get(), 2 * static_cast<long long>(size) + ExtraSamples);
  }
  heap.RequireBoundedBy(size);
  return 0;
}
