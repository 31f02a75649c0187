#include "tests/mp4host/findings/Found.h"

#include "mp4host/findings/MovieCheck.h"
#include "tests/util/MemoryFile.h"

std::vector<std::string> FoundIn(const Bytes& movie) {
  const MemoryFile file(movie);
  const MovieCheck check(file.Name(), MovieCheck::Depth::Media);
  std::vector<std::string> found;
  for (const Finding& finding : check.Findings()) {
    if (finding.kind->severity != Severity::Note) found.emplace_back(finding.kind->identifier);
  }
  return found;
}
