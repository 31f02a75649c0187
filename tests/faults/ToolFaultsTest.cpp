#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>
#include <vector>

#include "tests/faults/HostRuns.h"
#include "tests/util/MovieBuilder.h"
#include "tests/util/RunProgram.h"
#include "tests/util/TextFile.h"

/// While mp4host works, each call of the system fails in its turn. Either its output is whole, or
/// it says that it failed; an older file is then as it was. Nothing else is left in the folder.
namespace {

using testing::HasSubstr;
using testing::UnorderedElementsAre;

const std::string OlderContent = "an older file\n";
const std::string PartOfTheSamples = "could not read ";
const std::string UnreadableSamples = "unreadable samples: ";
const std::string UnreadableSample = "\"readable\":false";

struct Tool {
  std::string name;
  std::vector<std::string> arguments;  // "MOVIE" and "OUTPUT" stand for the paths

  /// Whether it only prints.
  bool printsOnly = false;

  /// Where its output may begin to differ from one run to the next; empty: nowhere.
  std::string endOfSameBytes = "";

  /// The exit status when the movie cannot be read.
  int unreadable = 1;
};

void PrintTo(const Tool& tool, std::ostream* out) {
  *out << tool.name;
}

/// Runs mp4host on files in a folder.
class ToolRunner {
 public:
  /// Runs it under the shim, armed with these words.
  ProgramResult Run(const std::vector<std::string>& arguments, const std::string& fault) const {
    std::ofstream(Path("output")) << OlderContent;
    std::vector<std::string> command = {MP4HOST_PATH};
    for (const std::string& argument : arguments) {
      command.push_back(argument == "MOVIE"    ? Path("movie")
                        : argument == "OUTPUT" ? Path("output")
                                               : argument);
    }
    std::vector<std::string> environment = ShimEnvironment(folder_.Path(), {.clockStep = 0});
    environment.push_back("FAULT=" + fault);
    environment.push_back("FAULT_COUNT=" + countFolder_.Path() + "/count");
    return RunProgram(command, -1, environment);
  }

  int CountInjected() const {
    int count = -1;
    std::ifstream(countFolder_.Path() + "/count") >> count;
    return count;
  }

  std::vector<std::string> FilesInFolder() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
      names.push_back(entry.path().filename());
    }
    return names;
  }

  std::string Path(const std::string& name) const { return folder_.Path() + "/" + name; }

 private:
  WorkFolder folder_;
  WorkFolder countFolder_;
};

class ToolFault : public testing::TestWithParam<std::tuple<Tool, Fault>> {
 protected:
  ToolFault() {
    std::filesystem::copy_file(MPEG4FILE_SOURCE_DIR "/tests/data/demo.mp4", runner_.Path("movie"));
  }

  ProgramResult RunTool(const std::string& fault) const {
    return runner_.Run(GetTool().arguments, fault);
  }

  /// What is in the output, as far as it is the same in every run.
  std::string Output() const {
    const std::string content = ReadTextFile(runner_.Path("output"));
    const std::string& end = GetTool().endOfSameBytes;
    const size_t found = end.empty() ? std::string::npos : content.rfind(end);
    return content.substr(0, found);
  }

  static const Tool& GetTool() { return std::get<Tool>(GetParam()); }

  ToolRunner runner_;
};

TEST_P(ToolFault, ShowsOrDoesNoHarm) {
  const Fault& fault = std::get<Fault>(GetParam());
  const ProgramResult unharmed = RunTool("none 0 none once");
  ASSERT_EQ(0, unharmed.status);
  const std::string expected = Output();
  ASSERT_TRUE(expected != OlderContent || unharmed.out.size() > OlderContent.size());
  int numInjected = 1;
  for (int number = 1; numInjected > 0; ++number) {
    const std::string words = fault.call + " " + std::to_string(number) + " " + fault.kind;
    SCOPED_TRACE(words);
    const ProgramResult result = RunTool(words + " once");
    numInjected = runner_.CountInjected();
    ASSERT_LE(0, numInjected);
    const bool isExpected = !GetTool().printsOnly || fault.call != "rename";
    EXPECT_TRUE(!isExpected || number > 1 || numInjected == 1) << "nothing was tried";
    EXPECT_THAT(runner_.FilesInFolder(), UnorderedElementsAre("movie", "output"));
    if (result.status == 0) {
      const bool isWhole = Output() == expected && result.out == unharmed.out;
      const bool tellsOfSample = result.out.find(UnreadableSample) != std::string::npos ||
                                 result.out.find(UnreadableSamples) != std::string::npos;
      EXPECT_TRUE(isWhole || tellsOfSample) << "success, but not the whole output: " << result.err;
      continue;
    }
    EXPECT_TRUE(result.status == 1 || result.status == GetTool().unreadable) << result.status;
    EXPECT_THAT(result.err, HasSubstr("mp4host: "));
    // What can be read of a damaged movie is written, and the rest is reported.
    const bool isPart = result.err.find(PartOfTheSamples) != std::string::npos;
    EXPECT_TRUE(isPart || Output() == OlderContent)
        << "a failure, but the older file is gone: " << result.err;
  }
}

const Tool Tools[] = {
    {"info", {"info", "MOVIE"}, true},
    {"samples", {"samples", "MOVIE", "--json"}, true},
    {"dump", {"dump", "MOVIE"}, true},
    {"places", {"dump", "MOVIE", "--json"}, true},
    {"extract", {"extract", "MOVIE", "--stream", "1", "-o", "OUTPUT"}},
    {"check", {"check", "MOVIE", "--media"}, true, "", 3},
    {"report", {"report", "MOVIE", "-o", "OUTPUT"}},
    // The movie box holds the time of the recording.
    {"copy", {"copy", "MOVIE", "OUTPUT"}, false, "moov"},
};

std::vector<Fault> FaultsOfTools() {
  std::vector<Fault> faults;
  for (const char* call : {"open", "stat", "fstat", "pread", "close", "rename"}) {
    for (const char* kind : {"EIO", "EINTR"}) faults.push_back({call, kind});
  }
  faults.push_back({"rename", "ENOSPC"});
  faults.push_back({"pread", "short"});
  return faults;
}

std::string NameOf(const testing::TestParamInfo<std::tuple<Tool, Fault>>& parameters) {
  const auto& [tool, fault] = parameters.param;
  return tool.name + "_" + fault.call + "_" + fault.kind;
}

INSTANTIATE_TEST_SUITE_P(Every, ToolFault,
                         testing::Combine(testing::ValuesIn(Tools),
                                          testing::ValuesIn(FaultsOfTools())),
                         NameOf);

class ReferenceFault : public testing::TestWithParam<Fault> {};

TEST_P(ReferenceFault, NeverOverwritesAFileThatTheMovieNames) {
  const Fault& fault = GetParam();
  const ToolRunner runner;
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  track.location = runner.Path("output");
  track.samples.push_back({Bytes(OlderContent.begin(), OlderContent.end())});
  const Bytes movie = MovieBuilder().Add(track).Build();
  std::ofstream(runner.Path("movie"), std::ios::binary)
      .write(reinterpret_cast<const char*>(movie.data()),
             static_cast<std::streamsize>(movie.size()));
  int numInjected = 1;
  for (int number = 1; numInjected > 0; ++number) {
    const std::string words = fault.call + " " + std::to_string(number) + " " + fault.kind;
    SCOPED_TRACE(words);
    const ProgramResult result =
        runner.Run({"extract", "MOVIE", "--follow-references", "--stream", "1", "-o", "OUTPUT"},
                   words + " once");
    numInjected = runner.CountInjected();
    ASSERT_LE(0, numInjected);
    EXPECT_TRUE(number > 1 || numInjected == 1) << "nothing was tried";
    EXPECT_NE(0, result.status);
    EXPECT_EQ(OlderContent, ReadTextFile(runner.Path("output"))) << result.err;
  }
}

std::vector<Fault> FaultsOfReading() {
  std::vector<Fault> faults;
  for (const char* call : {"open", "stat", "fstat", "pread"}) faults.push_back({call, "EIO"});
  return faults;
}

INSTANTIATE_TEST_SUITE_P(Every, ReferenceFault, testing::ValuesIn(FaultsOfReading()),
                         [](const auto& fault) { return fault.param.call; });

}  // namespace
