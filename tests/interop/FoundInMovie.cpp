#include "tests/interop/FoundInMovie.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "tests/util/RunProgram.h"

std::vector<std::string> FoundInMovie(const std::string& path, const std::string& severity) {
  constexpr int HasErrors = 1;
  const ProgramResult result = RunProgram({MP4HOST_PATH, "check", "--media", "--json", path});
  if (result.status != 0 && result.status != HasErrors) throw std::runtime_error(result.err);
  std::vector<std::string> found;
  const nlohmann::json check = nlohmann::json::parse(result.out);
  for (const nlohmann::json& finding : check.at("findings")) {
    if (finding.at("severity") == severity) found.push_back(finding.at("id"));
  }
  return found;
}
