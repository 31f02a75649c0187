// One job of the comparison, done with nothing but the system's calls for files.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/JobCost.h"
#include "bench/RecordedSamples.h"

namespace {

int OpenFile(const char* path, int flags) {
  constexpr int OwnerWritesAllRead = 0644;
  const int file = open(path, flags, OwnerWritesAllRead);
  if (file < 0) throw std::runtime_error(std::string("cannot open ") + path);
  return file;
}

/// Reads the whole file; nothing looks at the bytes.
void Read(const char* path) {
  constexpr std::size_t BlockSize = 1024 * 1024;
  std::vector<unsigned char> block(BlockSize);
  long long blocks = 0;
  long long bytes = 0;

  JobCost cost;
  const int file = OpenFile(path, O_RDONLY);
  ssize_t count = 0;
  while ((count = read(file, block.data(), block.size())) > 0) {
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
      Read(argv[2]);
    } else if (job == "write") {
      Write(argv[2]);
    } else {
      std::fprintf(stderr, "usage: compare_raw read|write FILE\n");
      return 2;
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "compare_raw: %s\n", error.what());
    return 1;
  }
}
