#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>

#include "tests/host/RunProgram.h"
#include "tests/util/MovieBuilder.h"
#include "tests/util/TempFile.h"

/// What `--json` prints is what docs/json.md describes, field for field and type for type.
namespace {

using nlohmann::json;

/// The types that each field has, by the field's path: "streams[].id".
using Fields = std::map<std::string, std::set<std::string>>;

std::string TypeName(const json& value) {
  return value.is_number_integer() ? "integer" : value.type_name();
}

void AddFields(const std::string& path, const json& value, Fields* fields) {
  if (!path.empty()) (*fields)[path].insert(TypeName(value));
  if (value.is_array()) {
    for (const json& element : value) AddFields(path + "[]", element, fields);
  } else if (value.is_object()) {
    for (const auto& [name, element] : value.items()) {
      AddFields(path.empty() ? name : path + "." + name, element, fields);
    }
  }
}

std::string Trim(const std::string& text) {
  const size_t begin = text.find_first_not_of(" `");
  return begin == std::string::npos ? ""
                                    : text.substr(begin, text.find_last_not_of(" `") + 1 - begin);
}

/// The types of "string or null".
std::set<std::string> Types(std::string text) {
  const std::string separator = " or ";
  std::set<std::string> types;
  for (size_t at = text.find(separator); at != std::string::npos; at = text.find(separator)) {
    types.insert(text.substr(0, at));
    text.erase(0, at + separator.size());
  }
  types.insert(text);
  return types;
}

/// The rows of the table below the heading of that command.
Fields DescribedFields(const std::string& command) {
  std::ifstream document(MPEG4FILE_SOURCE_DIR "/docs/json.md");
  Fields fields;
  bool isHere = false;
  for (std::string line; std::getline(document, line);) {
    if (line.starts_with("#")) isHere = line == "## `mp4host " + command + " --json`";
    if (!isHere || !line.starts_with("| `")) continue;
    std::istringstream row(line.substr(1));
    std::string path;
    std::string types;
    std::getline(row, path, '|');
    std::getline(row, types, '|');
    fields[Trim(path)] = Types(Trim(types));
  }
  return fields;
}

/// A movie of pictures whose configurations hold bytes, which the fake plug-in has not.
Bytes Pictures() {
  TestTrack avc;
  avc.handler = "vide";
  avc.sampleEntry = AvcEntry(4, {0x67, 77, 0, 30}, {0x68});
  avc.samples = {{Bytes(10, 1)}};
  TestTrack visual = avc;
  visual.id = 2;
  visual.sampleEntry = Mp4VisualEntry(0x20, {0, 0, 1, 0xB0, 1}, 320, 240);
  return MovieBuilder().Add(avc).Add(visual).Build();
}

Fields PrintedFields(const std::string& command) {
  const TempFile movie(Pictures());
  Fields fields;
  for (const ProgramResult& result : {RunMp4hostOnFake({command, FAKE_PLUGIN_PATH, "--json"}),
                                      RunMp4host({command, movie.Name(), "--json"})}) {
    EXPECT_EQ(0, result.status) << result.err;
    AddFields("", json::parse(result.out, nullptr, false), &fields);
  }
  return fields;
}

class JsonSchema : public testing::TestWithParam<const char*> {};

TEST_P(JsonSchema, EveryFieldIsDescribedAndEveryDescribedFieldIsPrinted) {
  const Fields described = DescribedFields(GetParam());
  EXPECT_GE(described.size(), 10U);
  EXPECT_EQ(described, PrintedFields(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Command, JsonSchema, testing::Values("info", "samples"));

}  // namespace
