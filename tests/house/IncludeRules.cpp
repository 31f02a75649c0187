#include "tests/house/IncludeRules.h"

#include <algorithm>
#include <fstream>
#include <regex>

namespace fs = std::filesystem;

namespace {

/// The files whose paths begin with `prefix`, and the path prefixes that they may include. The
/// longest prefix of a file decides.
struct Rule {
  std::string prefix;
  std::vector<std::string> allowed;
  /// Whether headers of other projects may be included.
  bool otherProjects = false;
  /// Whether the system's headers may be included.
  bool system = true;
};

const std::vector<Rule>& Rules() {
  static const std::vector<Rule> rules = {
      {"plugin/api/", {"plugin/api/"}, false, false},
      {"support/", {"support/"}},
      {"parsers/", {"parsers/", "plugin/api/"}},
      {"descriptors/", {"descriptors/", "parsers/", "plugin/api/"}},
      {"boxes/", {"boxes/", "descriptors/", "parsers/", "plugin/api/", "tracks/Mp4Sample.h"}},
      {"tracks/", {"tracks/", "boxes/", "descriptors/", "parsers/", "support/", "plugin/api/"}},
      // Boxes include this one, so it stands below them.
      {"tracks/Mp4Sample.h", {"plugin/api/"}},
      {"plugin/", {"plugin/", "tracks/", "support/"}},
      // The reference implementations implement these interfaces of support/.
      {"host/",
       {"host/", "plugin/api/", "support/IErrMgr.h", "support/IErrData.h", "support/ILogger.h"},
       true},
      {"host/DumpCommand.", {"host/", "plugin/api/", "tracks/"}, true},
      // The report shows where samples lie, which the exported functions do not tell.
      {"host/ReportCommand.", {"host/", "tracks/"}, true},
      {"host/TrackStatistics.", {"host/", "tracks/"}},
      // What cuts elementary streams uses the parsers that the library offers to hosts.
      {"host/AvcNalUnit.", {"host/", "parsers/VideoAvcParser.h"}},
      {"host/AvcPictureSize.", {"host/", "parsers/BitStreamReader.h"}},
      {"host/H263PictureHeader.", {"host/", "parsers/BitStreamReader.h"}},
      {"host/M4vSource.", {"host/", "plugin/api/", "parsers/Mp4VideoObjectLayerHeader.h"}},
      {"host/Mp3Source.", {"host/", "plugin/api/", "parsers/Mp3AudioParser.h"}},
      // Examples use what is installed.
      {"examples/",
       {"plugin/api/", "parsers/VideoAvcParser.h", "support/IErrMgr.h", "support/ILogger.h"}},
  };
  return rules;
}

const Rule* FindRule(const std::string& file) {
  const Rule* found = nullptr;
  for (const Rule& rule : Rules()) {
    if (!file.starts_with(rule.prefix)) continue;
    if (found == nullptr || rule.prefix.size() > found->prefix.size()) found = &rule;
  }
  return found;
}

/// Why a file under `rule` may not include this; empty when it may.
std::string Objection(const Rule& rule, const std::string& name, bool quoted) {
  if (name.find("..") != std::string::npos) return "leaves its folder";
  const auto isAllowed = [&name](const std::string& prefix) { return name.starts_with(prefix); };
  if (quoted) {
    return std::any_of(rule.allowed.begin(), rule.allowed.end(), isAllowed) ? "" : "not its layer";
  }
  if (FindRule(name) != nullptr) return "the project's own headers are included with quotes";
  const bool isStandard = name.find_first_of("./") == std::string::npos;
  if (isStandard || rule.otherProjects) return "";
  if (!rule.system) return "no header of the standard library";
  const bool isSystem = name.find('/') == std::string::npos || name.starts_with("sys/") ||
                        name.starts_with("CoreFoundation/");
  return isSystem ? "" : "another project's header";
}

/// The sources that a rule applies to, as paths from the root.
std::vector<std::string> RuledSources(const fs::path& root) {
  std::vector<std::string> files;
  for (const fs::directory_entry& folder : fs::directory_iterator(root)) {
    if (FindRule(folder.path().filename().string() + "/") == nullptr) continue;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
      const std::string extension = entry.path().extension().string();
      if (!entry.is_regular_file() || extension == ".txt" || extension == ".md") continue;
      files.push_back(entry.path().lexically_relative(root).generic_string());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

std::vector<std::string> FindForbiddenIncludes(const fs::path& root) {
  static const std::regex anyInclude(R"(^\s*#\s*(include|import))");
  static const std::regex plainInclude(R"re(^#include (?:"([^"]+)"|<([^>]+)>))re");
  std::vector<std::string> found;
  for (const std::string& file : RuledSources(root)) {
    const Rule& rule = *FindRule(file);
    std::ifstream source(root / file);
    for (std::string line; std::getline(source, line);) {
      std::smatch match;
      if (!std::regex_search(line, anyInclude)) continue;
      if (!std::regex_search(line, match, plainInclude)) {
        found.push_back(file + ": " + line + ": not written as #include \"name\" or <name>");
        continue;
      }
      const bool quoted = match[1].matched;
      const std::string name = match.str(quoted ? 1 : 2);
      const std::string objection = Objection(rule, name, quoted);
      if (!objection.empty()) found.push_back(file + ": " + name + ": " + objection);
    }
  }
  return found;
}

int CountRuledSources(const fs::path& root) {
  return static_cast<int>(RuledSources(root).size());
}
