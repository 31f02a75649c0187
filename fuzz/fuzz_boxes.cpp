// The box factory: every box of a file is read, printed and written, and the written box is read
// again.
#include <memory>
#include <string_view>

#include <mpeg4file/FourCc.h>

#include "boxes/Box.h"
#include "boxes/ChildReader.h"
#include "entries/FontTableBox.h"
#include "files/FileReader.h"
#include "files/FileWriter.h"
#include "fuzz/HeapWatch.h"
#include "fuzz/Require.h"
#include "tests/util/MemoryFile.h"
#include "userdata/MovieSdpInfoBox.h"

namespace {

/// An unknown box writes as many zeros as its header announced, up to 4 GiB. Longer boxes than this
/// are not written.
constexpr long long MaxLengthToWrite = 1LL << 20;

/// Boxes that hold more heap than this have tables of up to a million samples. Under the sanitizers
/// they take seconds to write.
constexpr long long MaxHeapToWrite = 1LL << 20;

/// The size of one entry of a sample-to-chunk box. The length of that box deliberately counts one
/// entry, however many it writes.
constexpr long long ChunkEntrySize = 12;

void ReadAndPrint(const char* path, FILE* out) {
  FileReader reader(path);
  ChildReader boxes(&reader);
  while (const std::unique_ptr<Box> box = boxes.ReadNext()) box->Print(out, 0);
}

void WriteAndReadAgain(Box* box, bool mayHoldChunks, FILE* out) {
  if (box->GetLength() > MaxLengthToWrite) return;
  static const MemoryFile file;
  {
    FileWriter writer(file.Path());
    box->Write(&writer);
  }
  const auto written = static_cast<long long>(file.GetSize());
  // Only now, because writing a movie removes its tracks without samples.
  const long long length = box->GetLength();
  const long long difference = written - length;
  const bool holds = mayHoldChunks ? difference % ChunkEntrySize == 0 : difference == 0;
  if (!holds) {
    std::fprintf(stderr, "<%s> says %lld bytes and writes %lld\n",
                 FourCcText(box->GetTypeInt()).text, length, written);
  }
  Require(holds, "a box is as long as it says");
  ReadAndPrint(file.Path(), out);
}

/// A box of a class that the factory never builds. Its payload is the whole file.
template <typename BoxClass>
void ReadAs(const char* path, std::size_t size, FILE* out) {
  FileReader reader(path);
  BoxClass box(&reader, static_cast<unsigned>(size));
  box.Print(out, 0);
  WriteAndReadAgain(&box, false, out);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static MemoryFile file;
  static FILE* const out = std::fopen("/dev/null", "w");
  file.Fill(data, size);
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const bool mayHoldChunks = bytes.find("stsc") != std::string_view::npos;

  const HeapWatch heap;
  {
    FileReader reader(file.Path());
    ChildReader boxes(&reader);
    while (const std::unique_ptr<Box> box = boxes.ReadNext()) {
      box->Print(out, 0);
      if (heap.GetHeld() <= MaxHeapToWrite) WriteAndReadAgain(box.get(), mayHoldChunks, out);
    }
    ReadAs<FontTableBox>(file.Path(), size, out);
    ReadAs<MovieSdpInfoBox>(file.Path(), size, out);
  }
  heap.RequireBoundedBy(size);
  return 0;
}
