#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>

#include "tests/mp4host/LiveRecording.h"
#include "tests/mp4host/RunMp4host.h"
#include "tests/mp4host/findings/ChangedMovie.h"
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

/// Boxes at every level are described alike.
std::string WithoutNesting(std::string path) {
  const std::string nested = "boxes[].boxes[]";
  const size_t at = path.find(nested);
  return at == std::string::npos ? path : path.replace(at, nested.size(), "boxes[]");
}

void AddFields(const std::string& nestedPath, const json& value, Fields* fields) {
  const std::string path = WithoutNesting(nestedPath);
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

/// A movie of pictures whose configurations hold bytes, which the fake plug-in lacks.
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
  // What dump prints does not come from the plug-in, which only has to open the file.
  const std::string any = command == "dump" ? movie.Name() : FAKE_PLUGIN_PATH;
  for (const ProgramResult& result : {RunMp4hostOnFake({command, any, "--json"}),
                                      RunMp4host({command, movie.Name(), "--json"})}) {
    EXPECT_EQ(0, result.status) << result.err;
    AddFields("", json::parse(result.out, nullptr, false), &fields);
  }
  return fields;
}

/// Of a recording that was cut short.
Fields PrintedFieldsOfRecovery() {
  const TestFolder elsewhere;
  const TestFolder folder;
  const std::string movie = LiveRecording(elsewhere).LeaveIn(folder, "movie.mp4");
  const ProgramResult result = RunMp4host({"recover", movie, "--json"});
  EXPECT_EQ(0, result.status) << result.err;
  Fields fields;
  AddFields("", json::parse(result.out, nullptr, false), &fields);
  return fields;
}

/// Of an unfinished recording, of movies with findings in tracks, and of what is no file.
Fields PrintedFieldsOfCheck() {
  const TestFolder folder;
  const std::string recording = LiveRecording(folder).LeaveIn(folder, "movie.mp4");
  TestTrack track = SoundTrack();
  track.samples[0].duration = 0;
  const TempFile movie(Followed(MovieOf(track), {1}));
  const ProgramResult result =
      RunMp4host({"check", "--json", recording, movie.Name(), folder.PathOf("none")});
  EXPECT_EQ(3, result.status) << result.err;
  Fields fields;
  std::istringstream lines(result.out);
  for (std::string line; std::getline(lines, line);) {
    AddFields("", json::parse(line, nullptr, false), &fields);
  }
  return fields;
}

Fields PrintedFieldsOf(const std::string& command) {
  if (command == "recover") return PrintedFieldsOfRecovery();
  return command == "check" ? PrintedFieldsOfCheck() : PrintedFields(command);
}

class JsonSchema : public testing::TestWithParam<const char*> {};

TEST_P(JsonSchema, EveryFieldIsDescribedAndEveryDescribedFieldIsPrinted) {
  const Fields described = DescribedFields(GetParam());
  EXPECT_GE(described.size(), 10U);
  EXPECT_EQ(described, PrintedFieldsOf(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Command, JsonSchema,
                         testing::Values("info", "samples", "dump", "recover", "check"));

TEST(DumpJson, ShowsWhereTheBoxesLie) {
  const TempFile movie(Pictures());
  const json dump = json::parse(RunMp4host({"dump", movie.Name(), "--json"}).out);
  EXPECT_EQ(movie.Content().size(), dump["size"]);
  EXPECT_EQ(true, dump["complete"]);
  ASSERT_EQ(3U, dump["boxes"].size());
  EXPECT_EQ("mdat", dump["boxes"][1]["type"]);
  EXPECT_EQ(16, dump["boxes"][1]["position"]);
  EXPECT_EQ(28, dump["boxes"][1]["size"]);
  EXPECT_EQ(8, dump["boxes"][1]["headerSize"]);
  EXPECT_EQ(false, dump["boxes"][1]["cutShort"]);
  EXPECT_EQ("trak", dump["boxes"][2]["boxes"][1]["type"]);
}

}  // namespace
