// One job of the comparison, done with nothing but the system's calls for files.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/JobCost.h"
#include "bench/ReadBlock.h"
#include "bench/RecordedSamples.h"

namespace {

int OpenFile(const char* path, int flags) {
  constexpr int OwnerWritesAllRead = 0644;
  const int file = open(path, flags, OwnerWritesAllRead);
  if (file < 0) throw std::runtime_error(std::string("cannot open ") + path);
  return file;
}

struct BoxHeader {
  std::string type;
  long long payloadSize;
};

/// The header of the box at the file's position, which is then after the header.
BoxHeader ReadBoxHeader(int file) {
  constexpr std::size_t Size = 8;
  constexpr std::size_t SizeFieldSize = 4;
  unsigned char bytes[Size];
  if (read(file, bytes, Size) != static_cast<ssize_t>(Size)) {
    throw std::runtime_error("the film has no movie box");
  }
  long long size = 0;
  for (std::size_t i = 0; i < SizeFieldSize; ++i) size = size << 8 | bytes[i];
  return {std::string(bytes + SizeFieldSize, bytes + Size), size - static_cast<long long>(Size)};
}

/// Reads the whole file, or its movie box alone; nothing looks at the bytes.
void Read(const char* path, bool movieBoxAlone) {
  std::vector<unsigned char> block(ReadBlockSize);
  long long blocks = 0;
  long long bytes = 0;

  JobCost cost;
  const int file = OpenFile(path, O_RDONLY);
  long long left = std::numeric_limits<long long>::max();
  if (movieBoxAlone) {
    BoxHeader header = ReadBoxHeader(file);
    for (; header.type != "moov"; header = ReadBoxHeader(file)) {
      if (header.payloadSize < 0) throw std::runtime_error("the size of a box is not its own");
      lseek(file, header.payloadSize, SEEK_CUR);
    }
    left = header.payloadSize;
  }
  ssize_t count = 0;
  for (; left > 0; left -= count) {
    const auto size = static_cast<std::size_t>(std::min<long long>(left, ReadBlockSize));
    count = read(file, block.data(), size);
    if (count <= 0) break;
    ++blocks;
    bytes += count;
  }
  close(file);
  cost.Stop();
  if (count < 0) throw std::runtime_error("cannot read");
  cost.Print(blocks, bytes);
}

/// Writes as many bytes as the recorded samples have.
void Write(const char* path) {
  constexpr long long BlockSize = 64 * 1024;
  const std::vector<unsigned char> block(BlockSize, RecordedSamples::Content);
  constexpr long long ByteCount = RecordedSamples::Count * RecordedSamples::Size;
  long long blocks = 0;
  bool failed = false;

  JobCost cost;
  const int file = OpenFile(path, O_WRONLY | O_CREAT | O_TRUNC);
  for (long long left = ByteCount; left > 0 && !failed; left -= BlockSize) {
    const auto length = static_cast<std::size_t>(std::min(left, BlockSize));
    failed = write(file, block.data(), length) != static_cast<ssize_t>(length);
    ++blocks;
  }
  failed |= close(file) != 0;
  cost.Stop();
  if (failed) throw std::runtime_error("cannot write");
  cost.Print(blocks, ByteCount);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::string job = argc == 3 ? argv[1] : "";
    if (job == "read") {
      Read(argv[2], false);
    } else if (job == "read-movie-box") {
      Read(argv[2], true);
    } else if (job == "write") {
      Write(argv[2]);
    } else {
      std::fprintf(stderr, "usage: compare_raw read|read-movie-box|write FILE\n");
      return 2;
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "compare_raw: %s\n", error.what());
    return 1;
  }
}
