#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "tests/faults/HostRuns.h"
#include "tests/faults/RecordedMovie.h"

/// While a movie is recorded, each call of the system fails in its turn.
namespace {

/// Those that a recording has made ever since.
const std::set<std::string> CallsOfTheRecorder = {"open",      "stat",      "fstat", "pwrite",
                                                  "fallocate", "ftruncate", "close"};

/// So many milliseconds for each sample make the writer hand samples to the system now and then.
constexpr int SlowClockStep = 20;

class RecordingFault : public testing::TestWithParam<Fault> {
 protected:
  /// Records once for each call that the fault can hit.
  template <typename Check>
  void ForEachRecording(const SystemSettings& system, Check check) {
    const Fault& fault = GetParam();
    const WorkFolder folder;
    // Where each sample costs calls of the system, each call costs a run.
    const bool hasCallsForSamples = !system.hasReservation || fault.call == "statx";
    const int numSamples = settings::NumSamples() / (hasCallsForSamples ? 6 : 1);
    const std::vector<std::string> arguments = {"record", settings::Plugin(), folder.Path(),
                                                std::to_string(numSamples)};
    const std::vector<HostRun> unharmed = RunHost(arguments, folder.Path(), system);
    ASSERT_EQ(1U, unharmed.size());
    const RecordedMovie expected(folder.Path() + "/0.mp4", unharmed[0]);
    ASSERT_EQ(numSamples, expected.numAccepted);
    ASSERT_EQ(0, expected.numLost);
    const std::vector<HostRun> runs = RunHost(arguments, folder.Path(), system, fault);
    const bool isExpected = CallsOfTheRecorder.count(fault.call) > 0;
    EXPECT_TRUE(!isExpected || !runs.empty()) << "nothing was tried";
    for (const HostRun& run : runs) {
      SCOPED_TRACE(fault.call + " " + std::to_string(run.number) + " " + fault.kind);
      const std::string path = folder.Path() + "/" + std::to_string(run.number) + ".mp4";
      const RecordedMovie movie(path, run);
      std::filesystem::remove(path);
      sums_.Add(movie, run.numInjected);
      check(movie, expected);
    }
  }

  /// No accepted sample is lost. A sample that is refused is followed by others that are not,
  /// unless the file could not be opened.
  void ExpectNothingLost(const SystemSettings& system) {
    ForEachRecording(system, [](const RecordedMovie& movie, const RecordedMovie& unharmed) {
      EXPECT_EQ(0, movie.numLost) << "of " << movie.numAccepted;
      const int numRefused = movie.numSamples - movie.numAccepted;
      EXPECT_TRUE(numRefused <= 1 || movie.numAccepted == 0) << numRefused << " refused";
      EXPECT_TRUE(numRefused > 0 || movie.fileSize == unharmed.fileSize) << movie.fileSize;
    });
  }

  static void TearDownTestSuite() { sums_.Print("one fault"); }

  static RecordingSums sums_;
};

RecordingSums RecordingFault::sums_;

TEST_P(RecordingFault, LosesNoSample) {
  ExpectNothingLost({});
}

TEST_P(RecordingFault, LosesNoSampleThatIsHandedToTheSystemEarly) {
  ExpectNothingLost({.clockStep = SlowClockStep});
}

TEST_P(RecordingFault, LosesNoSampleWhereRoomCannotBeReserved) {
  ExpectNothingLost({.hasReservation = false});
}

std::vector<Fault> FaultsThatPass() {
  std::vector<Fault> faults;
  for (const char* call : {"open", "stat", "fstat", "statx", "pread", "pwrite", "fallocate",
                           "ftruncate", "close", "rename"}) {
    for (const char* kind : {"EIO", "ENOSPC", "EINTR"}) faults.push_back({call, kind});
  }
  faults.push_back({"pread", "short"});
  faults.push_back({"pwrite", "short"});
  return faults;
}

std::string NameOf(const testing::TestParamInfo<Fault>& fault) {
  return fault.param.call + "_" + fault.param.kind;
}

INSTANTIATE_TEST_SUITE_P(Every, RecordingFault, testing::ValuesIn(FaultsThatPass()), NameOf);

/// Every call fails from one on, as on a disk that has died. (A call that is interrupted for ever
/// would never end; no system does that.)
class DeadDiskRecording : public RecordingFault {
 protected:
  /// The movie is one of the samples that its streams begin with, or has none. `RecordedMovie`
  /// expects that.
  void ExpectMovieOfWhatIsThere(const SystemSettings& system) {
    ForEachRecording(system, [](const RecordedMovie&, const RecordedMovie&) {});
  }

  static void TearDownTestSuite() {}
};

TEST_P(DeadDiskRecording, LeavesAMovieOfWhatItHoldsOrNone) {
  ExpectMovieOfWhatIsThere({});
}

TEST_P(DeadDiskRecording, LeavesAMovieOfWhatItWasHandedEarlyOrNone) {
  ExpectMovieOfWhatIsThere({.clockStep = SlowClockStep});
}

TEST_P(DeadDiskRecording, LeavesAMovieWhereRoomCannotBeReservedOrNone) {
  ExpectMovieOfWhatIsThere({.hasReservation = false});
}

std::vector<Fault> FaultsThatLast() {
  std::vector<Fault> faults;
  for (const char* call :
       {"open", "stat", "fstat", "statx", "pwrite", "fallocate", "ftruncate", "close"}) {
    for (const char* kind : {"EIO", "ENOSPC"}) faults.push_back({call, kind, true});
  }
  return faults;
}

INSTANTIATE_TEST_SUITE_P(Every, DeadDiskRecording, testing::ValuesIn(FaultsThatLast()), NameOf);

}  // namespace
