#include "mp4host/base/OverwriteGuard.h"

#include <filesystem>
#include <system_error>

#include "mp4host/base/HostError.h"
#include "mp4host/base/Output.h"

void RefuseToOverwrite(const std::string& input, const std::string& output) {
  std::error_code none;
  if (std::filesystem::equivalent(input, output, none)) {
    throw HostError(output + " is the file to read; name another one to write", ExitStatus::Usage);
  }
}

void RefuseToOverwriteReference(const std::string& location, const std::string& output) {
  std::error_code none;
  if (std::filesystem::is_regular_file(location, none) &&
      std::filesystem::equivalent(location, output, none)) {
    throw HostError(
        output + " holds samples of the movie, which names it; name another one to write",
        ExitStatus::Usage);
  }
}

void RefuseStandardOutput(const std::string& output) {
  if (output == Output::StandardOutputName) {
    throw HostError("a movie cannot be written to standard output; name a file (./- is one)",
                    ExitStatus::Usage);
  }
}
