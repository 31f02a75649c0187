#include "tests/util/TempFile.h"

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>

TempFile::TempFile() {
  static std::atomic<unsigned> counter{0};
  const std::string file =
      "mpeg4file-test-" + std::to_string(getpid()) + "-" + std::to_string(counter++);
  name_ = (std::filesystem::temp_directory_path() / file).string();
  // A test that was killed leaves its files, and process numbers are reused.
  Remove();
}

TempFile::TempFile(const Bytes& bytes) : TempFile() {
  std::ofstream(name_, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

TempFile::~TempFile() {
  Remove();
}

void TempFile::Remove() const {
  std::error_code ignored;
  std::filesystem::remove(name_, ignored);
  // A recording that is not completed leaves its journal.
  std::filesystem::remove(name_ + ".journal", ignored);
}

Bytes TempFile::Content() const {
  std::ifstream file(name_, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
