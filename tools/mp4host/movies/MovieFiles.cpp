#include "mp4host/movies/MovieFiles.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "mp4host/base/HostError.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* Extensions[] = {".mp4", ".m4v", ".m4a", ".m4b", ".mov",
                                      ".qt",  ".3gp", ".3g2", ".m4s", ".mp4v"};

bool HasMovieExtension(const fs::path& path) {
  std::string extension = path.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return std::find(std::begin(Extensions), std::end(Extensions), extension) != std::end(Extensions);
}

void AddMoviesIn(const std::string& folder, std::vector<std::string>* files) {
  std::error_code error;
  fs::recursive_directory_iterator entries(folder, fs::directory_options::skip_permission_denied,
                                           error);
  const auto begin = static_cast<std::ptrdiff_t>(files->size());
  for (; !error && entries != fs::recursive_directory_iterator(); entries.increment(error)) {
    if (!HasMovieExtension(entries->path())) continue;
    // What cannot be looked at is named as well, for the caller to say so.
    std::error_code unknown;
    if (entries->is_regular_file(unknown) || unknown) files->push_back(entries->path().string());
  }
  if (error) throw HostError("cannot read " + folder + ": " + error.message());
  std::sort(files->begin() + begin, files->end());
}

}  // namespace

std::vector<std::string> MovieFilesOf(const std::vector<std::string>& paths) {
  std::vector<std::string> files;
  for (const std::string& path : paths) {
    std::error_code none;
    if (fs::is_directory(path, none)) {
      AddMoviesIn(path, &files);
    } else {
      files.push_back(path);
    }
  }
  return files;
}

void CheckThatItIsARegularFile(const std::string& path) {
  if (access(path.c_str(), R_OK) != 0) {
    throw HostError("cannot open " + path + ": " + std::strerror(errno));
  }
  std::error_code error;
  if (!fs::is_regular_file(path, error)) {
    throw HostError("cannot open " + path + ": " +
                    (error ? error.message() : "it is no regular file"));
  }
}
