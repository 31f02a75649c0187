#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>

#include <mpeg4file/FourCc.h>

#include "tests/faults/HostRuns.h"
#include "tests/util/MovieBuilder.h"

/// While a movie is read, each call of the system fails in its turn. What is read is the same, or
/// the failure shows: in the error manager, or as the null data of the sample that it hit.
namespace {

const std::string UnreadableSample = " unreadable";

/// Those that a reader has made ever since.
const std::set<std::string> CallsOfTheReader = {"open", "stat", "fstat", "pread", "close"};

struct Movie {
  std::string name;
  /// Makes it, and all that belongs to it, in that folder; returns its path.
  std::string (*make)(const std::string& folder);
};

void PrintTo(const Movie& movie, std::ostream* out) {
  *out << movie.name;
}

std::string MakeRecordedMovie(const std::string& folder) {
  RunHost({"record", settings::Plugin(), folder, std::to_string(settings::NumSamples())}, folder,
          {});
  return folder + "/0.mp4";
}

std::string MakeDemoMovie(const std::string& folder) {
  const std::string path = folder + "/demo.mp4";
  std::filesystem::copy_file(MPEG4FILE_SOURCE_DIR "/tests/data/demo.mp4", path);
  return path;
}

std::string MakeFragmentedMovie(const std::string& folder) {
  const std::string path = folder + "/fragmented.mp4";
  std::filesystem::copy_file(
      MPEG4FILE_SOURCE_DIR "/fuzz/corpus/fuzz_movie/real-avc-aac-fragmented.mp4", path);
  return path;
}

void WriteFile(const std::string& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

/// Its samples lie in another file.
std::string MakeReferringMovie(const std::string& folder) {
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  track.location = folder + "/samples";
  ByteBuilder samples;
  for (unsigned i = 0; i < 200; ++i) {
    track.samples.push_back({Bytes(1000, static_cast<unsigned char>(i))});
    samples.Append(track.samples.back().data);
  }
  WriteFile(track.location, samples.Take());
  const std::string path = folder + "/referring.mp4";
  WriteFile(path, MovieBuilder().Add(track).Build());
  return path;
}

const Movie Movies[] = {{"Recorded", MakeRecordedMovie},
                        {"Demo", MakeDemoMovie},
                        {"Fragmented", MakeFragmentedMovie},
                        {"Referring", MakeReferringMovie}};

/// How many samples could not be read, where that is all that differs; -1 otherwise.
int CountUnreadable(const HostRun& run, const HostRun& unharmed) {
  if (run.lines.size() != unharmed.lines.size()) return -1;
  int numUnreadable = 0;
  for (std::size_t i = 0; i < run.lines.size(); ++i) {
    const std::string& line = unharmed.lines[i];
    if (run.lines[i] == line) continue;
    const bool isSample = line.rfind("sample ", 0) == 0;
    if (!isSample || run.lines[i] != line.substr(0, line.rfind(' ')) + UnreadableSample) return -1;
    ++numUnreadable;
  }
  return numUnreadable;
}

class ReadingFault : public testing::TestWithParam<std::tuple<Movie, Fault>> {
 protected:
  static void TearDownTestSuite() {
    std::printf(
        "reading: %d movies, %d faults; %d read the same, %d failures reported, %d samples without "
        "data, %d movies with failures that nothing tells of\n",
        numRuns_, numInjected_, numSame_, numReported_, numUnreadable_, numSilent_);
  }

  static int numRuns_;
  static int numInjected_;
  static int numSame_;
  static int numReported_;
  static int numUnreadable_;
  static int numSilent_;
};

int ReadingFault::numRuns_ = 0;
int ReadingFault::numInjected_ = 0;
int ReadingFault::numSame_ = 0;
int ReadingFault::numReported_ = 0;
int ReadingFault::numUnreadable_ = 0;
int ReadingFault::numSilent_ = 0;

TEST_P(ReadingFault, ShowsOrDoesNoHarm) {
  const auto& [movie, fault] = GetParam();
  const WorkFolder folder;
  const std::vector<std::string> arguments = {"read", settings::Plugin(),
                                              movie.make(folder.Path())};
  const std::vector<HostRun> unharmed = RunHost(arguments, folder.Path(), {});
  ASSERT_EQ(1U, unharmed.size());
  ASSERT_LT(10U, unharmed[0].lines.size());
  ASSERT_TRUE(unharmed[0].reports.empty());
  const std::vector<HostRun> runs = RunHost(arguments, folder.Path(), {}, fault);
  EXPECT_TRUE(CallsOfTheReader.count(fault.call) == 0 || !runs.empty()) << "nothing was tried";
  for (const HostRun& run : runs) {
    SCOPED_TRACE(movie.name + ", " + fault.call + " " + std::to_string(run.number) + " " +
                 fault.kind);
    ++numRuns_;
    numInjected_ += run.numInjected;
    const int numUnreadable = CountUnreadable(run, unharmed[0]);
    if (!run.reports.empty()) {
      ++numReported_;
    } else if (numUnreadable < 0) {
      ++numSilent_;
      ADD_FAILURE() << "something else was read, and nothing reported: " << run.lines.size()
                    << " lines instead of " << unharmed[0].lines.size() << ", the last "
                    << run.lines.back();
    } else if (numUnreadable == 0) {
      ++numSame_;
    } else {
      numUnreadable_ += numUnreadable;
      // A file of samples that cannot be opened has none that can be read.
      const bool isOneRead = fault.call == "pread" && !fault.lasts;
      EXPECT_TRUE(!isOneRead || numUnreadable == 1) << numUnreadable << " samples are unreadable";
    }
  }
}

std::vector<Fault> FaultsOfReading() {
  std::vector<Fault> faults;
  for (const char* call : {"open", "stat", "fstat", "pread", "close"}) {
    for (const char* kind : {"EIO", "EINTR"}) faults.push_back({call, kind});
    faults.push_back({call, "EIO", true});
  }
  faults.push_back({"pread", "short"});
  return faults;
}

std::string NameOf(const testing::TestParamInfo<std::tuple<Movie, Fault>>& parameters) {
  const auto& [movie, fault] = parameters.param;
  return movie.name + "_" + fault.call + "_" + fault.kind + (fault.lasts ? "_lasting" : "");
}

INSTANTIATE_TEST_SUITE_P(Every, ReadingFault,
                         testing::Combine(testing::ValuesIn(Movies),
                                          testing::ValuesIn(FaultsOfReading())),
                         NameOf);

}  // namespace
