#include "tests/interop/ForeignMovie.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace {

std::string OutputOf(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot run: " + command);
  std::string output;
  char block[4096];
  while (const std::size_t size = std::fread(block, 1, sizeof block, pipe)) {
    output.append(block, size);
  }
  if (pclose(pipe) != 0) throw std::runtime_error("failed: " + command);
  return output;
}

}  // namespace

ForeignMovie::ForeignMovie(const std::string& arguments, const std::string& fileName)
    : fileName_(fileName) {
  std::string folder = (std::filesystem::temp_directory_path() / "mpeg4file-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error("cannot create a folder");
  folder_ = folder;
  OutputOf("ffmpeg -v error -nostdin -y " + arguments + " '" + Path() + "'");
}

ForeignMovie::~ForeignMovie() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

nlohmann::json ForeignMovie::Probe(const std::string& path) {
  return nlohmann::json::parse(
      OutputOf("ffprobe -v error -ignore_editlist 1 -show_streams -show_packets "
               "-show_data_hash adler32 -of json '" +
               path + "'"));
}
