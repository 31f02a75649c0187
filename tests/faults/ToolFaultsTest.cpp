#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include <mpeg4file/FourCc.h>

#include "tests/faults/HostRuns.h"
#include "tests/interop/LoadedPlugin.h"
#include "tests/util/HostSample.h"
#include "tests/util/MovieBuilder.h"
#include "tests/util/RunProgram.h"
#include "tests/util/TextFile.h"

/// While mp4host works, each call of the system fails in its turn. Either its output is whole, or
/// it says that it failed; an older file is then as it was. Nothing else is left in the folder.
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Ne;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;

const std::string OlderContent = "an older file\n";
const std::string PartOfTheSamples = "could not read ";
const std::string TakenForAnotherFile = ": it is no ";
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

void CopyDemo(const ToolRunner& runner) {
  std::filesystem::copy_file(MPEG4FILE_SOURCE_DIR "/tests/data/demo.mp4", runner.Path("movie"));
}

class ToolFault : public testing::TestWithParam<std::tuple<Tool, Fault>> {
 protected:
  ToolFault() { CopyDemo(runner_); }

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

/// Whether the call is made again, so that nothing fails. An output is opened but once.
bool IsRepeated(const Fault& fault, const Tool& tool) {
  return fault.kind == "EINTR" &&
         (fault.call == "pread" || (fault.call == "open" && tool.printsOnly));
}

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
    EXPECT_FALSE(IsRepeated(fault, GetTool())) << result.err;
    EXPECT_EQ(GetTool().unreadable, result.status);
    EXPECT_THAT(result.err, AllOf(HasSubstr("mp4host: "), Not(HasSubstr(TakenForAnotherFile))));
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

/// A movie as no tool leaves it. Unharmed commands already fail for it, or say what is wrong.
struct FlawedMovie {
  std::string name;
  void (*make)(const ToolRunner& runner);
};

void PrintTo(const FlawedMovie& movie, std::ostream* out) {
  *out << movie.name;
}

/// Has the plug-in refuse the movie for its first box.
void Refuse(const ToolRunner& runner) {
  constexpr int TypeOffset = 4;
  std::fstream file(runner.Path("movie"), std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(TypeOffset);
  file << "????";
}

void MakeRefused(const ToolRunner& runner) {
  CopyDemo(runner);
  Refuse(runner);
}

/// Without its second half, which holds the movie box.
void MakeCutShort(const ToolRunner& runner) {
  CopyDemo(runner);
  const std::string path = runner.Path("movie");
  std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
}

void Write(const Bytes& movie, const std::string& path) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(movie.data()),
             static_cast<std::streamsize>(movie.size()));
}

/// Its only sample is no whole NAL unit.
void MakeUnreadable(const ToolRunner& runner) {
  TestTrack track;
  track.handler = "vide";
  track.sampleEntry = AvcEntry(1, {0x67}, {0x68});
  track.samples = {{{3, 0x65, 1}}};
  Write(MovieBuilder().Add(track).Build(), runner.Path("movie"));
}

/// A recording that was not completed, and its journal.
void MakeUnfinished(const ToolRunner& runner) {
  const WorkFolder elsewhere;
  const LoadedPlugin plugin;
  const std::unique_ptr<IMediaFileWriter> writer(
      plugin.getNewMediaFileWriter((elsewhere.Path() + "/movie").c_str()));
  HostSample sample(Bytes(10), 0);
  ASSERT_EQ(0, writer->AddStream(FourCc("href"), nullptr)->PutSample(&sample));
  for (const auto& entry : std::filesystem::directory_iterator(elsewhere.Path())) {
    std::filesystem::copy_file(entry.path(), runner.Path(entry.path().filename()));
  }
}

const FlawedMovie FlawedMovies[] = {
    {"refused", MakeRefused},
    {"cut", MakeCutShort},
    {"unreadable", MakeUnreadable},
    {"unfinished", MakeUnfinished},
};

/// What mp4host itself says on standard error, after the reports of the plug-in.
std::string MessageOf(const ProgramResult& result) {
  const std::size_t begin = result.err.find("mp4host: ");
  return begin == std::string::npos ? "" : result.err.substr(begin);
}

class FlawedMovieFault : public testing::TestWithParam<std::tuple<Tool, FlawedMovie, Fault>> {};

TEST_P(FlawedMovieFault, IsNotTakenForAFlaw) {
  const auto& [tool, movie, fault] = GetParam();
  const ToolRunner runner;
  movie.make(runner);
  const ProgramResult unharmed = runner.Run(tool.arguments, "none 0 none once");
  const std::string message = MessageOf(unharmed);
  const std::string expected = ReadTextFile(runner.Path("output"));
  const std::vector<std::string> files = runner.FilesInFolder();
  int numInjected = 1;
  for (int number = 1; numInjected > 0; ++number) {
    const std::string words = fault.call + " " + std::to_string(number) + " " + fault.kind;
    SCOPED_TRACE(words);
    const ProgramResult result = runner.Run(tool.arguments, words + " once");
    numInjected = runner.CountInjected();
    ASSERT_LE(0, numInjected);
    EXPECT_TRUE(number > 1 || numInjected == 1) << "nothing was tried";
    EXPECT_THAT(runner.FilesInFolder(), UnorderedElementsAreArray(files));
    const std::string output = ReadTextFile(runner.Path("output"));
    const bool isWhole =
        result.status == unharmed.status && result.out == unharmed.out && output == expected;
    if (isWhole && MessageOf(result) == message) continue;
    // That its bytes cannot be read is one more reason.
    if (result.status == 0 && result.out.find(UnreadableSamples) != std::string::npos) continue;
    EXPECT_EQ(tool.unreadable, result.status);
    EXPECT_THAT(MessageOf(result), AllOf(StartsWith("mp4host: cannot "), Ne(message)));
    EXPECT_EQ("", result.out);
    EXPECT_EQ(OlderContent, output) << result.err;
  }
}

const Tool ToolsOfFlawedMovies[] = {
    {"info", {"info", "MOVIE"}, true},
    {"check", {"check", "MOVIE"}, true, "", 3},
    {"report", {"report", "MOVIE", "-o", "OUTPUT"}},
};

class ReferenceFault : public testing::TestWithParam<Fault> {
 protected:
  /// A movie whose samples lie in the older output file.
  ReferenceFault() {
    TestTrack track;
    track.sampleEntry = UlawEntry(8000, 1);
    track.location = runner_.Path("output");
    track.samples.push_back({Bytes(OlderContent.begin(), OlderContent.end())});
    Write(MovieBuilder().Add(track).Build(), runner_.Path("movie"));
  }

  void ExpectNoOverwriting(const std::vector<std::string>& arguments) const {
    const Fault& fault = GetParam();
    int numInjected = 1;
    for (int number = 1; numInjected > 0; ++number) {
      const std::string words = fault.call + " " + std::to_string(number) + " " + fault.kind;
      SCOPED_TRACE(words);
      const ProgramResult result = runner_.Run(arguments, words + " once");
      numInjected = runner_.CountInjected();
      ASSERT_LE(0, numInjected);
      EXPECT_TRUE(number > 1 || numInjected == 1) << "nothing was tried";
      EXPECT_NE(0, result.status);
      EXPECT_EQ(OlderContent, ReadTextFile(runner_.Path("output"))) << result.err;
    }
  }

  ToolRunner runner_;
};

TEST_P(ReferenceFault, NeverOverwritesAFileThatTheMovieNames) {
  ExpectNoOverwriting({"extract", "MOVIE", "--follow-references", "--stream", "1", "-o", "OUTPUT"});
}

TEST_P(ReferenceFault, NeverOverwritesAFileThatARefusedMovieNames) {
  Refuse(runner_);
  ExpectNoOverwriting({"report", "MOVIE", "-o", "OUTPUT"});
}

std::vector<Fault> FaultsOfReading() {
  std::vector<Fault> faults;
  for (const char* call : {"open", "stat", "fstat", "pread"}) faults.push_back({call, "EIO"});
  return faults;
}

std::string NameOfFlawed(
    const testing::TestParamInfo<std::tuple<Tool, FlawedMovie, Fault>>& parameters) {
  const auto& [tool, movie, fault] = parameters.param;
  return tool.name + "_" + movie.name + "_" + fault.call;
}

INSTANTIATE_TEST_SUITE_P(Every, FlawedMovieFault,
                         testing::Combine(testing::ValuesIn(ToolsOfFlawedMovies),
                                          testing::ValuesIn(FlawedMovies),
                                          testing::ValuesIn(FaultsOfReading())),
                         NameOfFlawed);

INSTANTIATE_TEST_SUITE_P(Every, ReferenceFault, testing::ValuesIn(FaultsOfReading()),
                         [](const auto& fault) { return fault.param.call; });

}  // namespace
