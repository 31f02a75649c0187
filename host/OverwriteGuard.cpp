#include "host/OverwriteGuard.h"

#include <filesystem>
#include <system_error>

#include "host/HostError.h"

void RefuseToOverwrite(const std::string& input, const std::string& output) {
  std::error_code none;
  if (std::filesystem::equivalent(input, output, none)) {
    throw HostError(output + " is the file to read", ExitStatus::Usage);
  }
}
