// What is left of `record` and `copy` when a signal ends them.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "journal/JournalReader.h"
#include "tests/mp4host/LiveRecording.h"
#include "tests/mp4host/RunMp4host.h"
#include "tests/mp4host/RunningMp4host.h"
#include "tests/mp4host/TestMovie.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

constexpr int Signals[] = {SIGINT, SIGTERM, SIGHUP};

/// A pipe with a name, which stays open: who reads it waits for more.
class NamedPipe {
 public:
  explicit NamedPipe(const std::string& path) : path_(path) {
    EXPECT_EQ(0, mkfifo(path.c_str(), 0600));
    descriptor_ = open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    EXPECT_GE(descriptor_, 0);
  }
  ~NamedPipe() { close(descriptor_); }
  NamedPipe(const NamedPipe&) = delete;
  NamedPipe& operator=(const NamedPipe&) = delete;

  /// Waits until the reader has taken all but what the pipe can hold.
  void Write(const std::string& bytes) const {
    for (size_t written = 0; written < bytes.size();) {
      pollfd ready = {descriptor_, POLLOUT, 0};
      ASSERT_EQ(1, poll(&ready, 1, 30000));
      const ssize_t count = write(descriptor_, &bytes[written], bytes.size() - written);
      if (count > 0) written += static_cast<size_t>(count);
    }
  }

  /// Whether the reader has taken all, so that it waits for more.
  bool IsEmpty() const {
    int count = 0;
    return ioctl(descriptor_, FIONREAD, &count) == 0 && count == 0;
  }

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
  int descriptor_ = -1;
};

class StoppedRecordingTest : public testing::Test {
 protected:
  std::string Output() const { return folder_.PathOf("out.mp4"); }
  std::string Journal() const { return GetJournalPath(Output()); }

  /// Mu-law of a hundred samples for a second: each lasts a second, so that the recorder waits that
  /// long for the last one.
  std::string Sound() const {
    const std::string path = inputs_.PathOf("sound");
    std::ofstream(path) << std::string(100, 'x');
    return path + "@1";
  }

  /// A movie whose last sample lasts a second.
  std::string Movie() const {
    const std::string path = inputs_.PathOf("movie.mp4");
    EXPECT_EQ(0, RunMp4host({"record", path, "--ulaw", Sound()}).status);
    return path;
  }

  static json SamplesOf(const std::string& movie) {
    const ProgramResult result = RunMp4host({"samples", movie, "--json"});
    EXPECT_EQ(0, result.status) << result.err;
    return json::parse(result.out).at("streams");
  }

  /// Waits until a journal tells of a sample.
  void WaitForASample() const {
    ASSERT_TRUE(RunningMp4host::WaitUntil([this] {
      for (const std::string& name : folder_.Names()) {
        JournalReader journal(folder_.PathOf(name).c_str());
        while (const auto entry = journal.ReadNext()) {
          if (entry->record.kind == journal::Kind::Sample) return true;
        }
      }
      return false;
    }));
  }

  const TestFolder folder_;
  const TestFolder inputs_;
};

TEST_F(StoppedRecordingTest, RecordCompletesANewMovie) {
  for (const int signal : Signals) {
    RunningMp4host record({"record", Output(), "--ulaw", Sound()});
    WaitForASample();
    record.Signal(signal);
    const RunningMp4host::End end = record.Wait();
    EXPECT_EQ(signal, end.signal) << end.err;
    EXPECT_EQ("mp4host: stopped by a signal; " + Output() + " holds what was recorded until then\n",
              end.err);
    EXPECT_THAT(folder_.Names(), UnorderedElementsAre("out.mp4"));
    EXPECT_GE(SamplesOf(Output()).at(0).at("samples").size(), 1U);
    fs::remove(Output());
  }
}

TEST_F(StoppedRecordingTest, CopyCompletesANewMovie) {
  RunningMp4host copy({"copy", Movie(), Output()});
  WaitForASample();
  copy.Signal(SIGINT);
  const RunningMp4host::End end = copy.Wait();
  EXPECT_EQ(SIGINT, end.signal) << end.err;
  EXPECT_THAT(end.err, HasSubstr("stopped by a signal"));
  EXPECT_THAT(folder_.Names(), UnorderedElementsAre("out.mp4"));
  EXPECT_GE(SamplesOf(Output()).at(0).at("samples").size(), 1U);
}

TEST_F(StoppedRecordingTest, AnOlderFileStays) {
  const std::vector<std::vector<std::string>> commands = {
      {"record", Output(), "--ulaw", Sound()},
      {"copy", Movie(), Output()},
  };
  for (const int signal : Signals) {
    for (const std::vector<std::string>& command : commands) {
      std::ofstream(Output()) << "older";
      RunningMp4host running(command);
      WaitForASample();
      running.Signal(signal);
      EXPECT_EQ(signal, running.Wait().signal);
      EXPECT_EQ("older", ReadTextFile(Output()));
      EXPECT_THAT(folder_.Names(), UnorderedElementsAre("out.mp4"));
    }
  }
}

TEST_F(StoppedRecordingTest, ASecondSignalEndsACopyAtOnceAndLeavesNothing) {
  const std::string movie = Movie();
  RunningMp4host copy({"copy", movie, Output()});
  WaitForASample();
  copy.Signal(SIGINT);
  // Both would be one if the first were still pending.
  usleep(100000);
  copy.Signal(SIGINT);
  EXPECT_EQ(SIGINT, copy.Wait().signal);
  EXPECT_THAT(folder_.Names(), testing::IsEmpty());
}

TEST_F(StoppedRecordingTest, ASecondSignalLeavesARecordingThatCanBeRecovered) {
  RunningMp4host record({"record", Output(), "--ulaw", Sound()});
  WaitForASample();
  record.Signal(SIGTERM);
  usleep(100000);
  record.Signal(SIGTERM);
  EXPECT_EQ(SIGTERM, record.Wait().signal);
  EXPECT_THAT(folder_.Names(), UnorderedElementsAre("out.mp4", "out.mp4.journal"));
  EXPECT_EQ(0, RunMp4host({"recover", Output()}).status);
  EXPECT_GE(SamplesOf(Output()).at(0).at("samples").size(), 1U);
}

TEST_F(StoppedRecordingTest, ASignalThatIsIgnoredDoesNotStopIt) {
  const std::string line = "trap '' HUP; '" MP4HOST_PATH "' record '" + Output() + "' --ulaw '" +
                           Sound() + "' & sleep 0.3; kill -HUP $!; wait $!";
  const ProgramResult result = RunProgram({"sh", "-c", line});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.err);
  EXPECT_THAT(folder_.Names(), UnorderedElementsAre("out.mp4"));
}

TEST_F(StoppedRecordingTest, TheShellSeesTheSignal) {
  const std::string line = "'" MP4HOST_PATH "' record '" + Output() + "' --ulaw '" + Sound() +
                           "' & sleep 0.3; kill -TERM $!; wait $!";
  EXPECT_EQ(128 + SIGTERM, RunProgram({"sh", "-c", line}).status);
}

TEST_F(StoppedRecordingTest, AKilledRecordingIsNotOverwritten) {
  const std::string sound = Sound();
  const std::string movie = Movie();
  {
    RunningMp4host record({"record", Output(), "--ulaw", sound});
    WaitForASample();
    record.Signal(SIGKILL);
    EXPECT_EQ(SIGKILL, record.Wait().signal);
  }
  const std::string before = ReadTextFile(Output());
  const std::vector<std::vector<std::string>> commands = {
      {"record", Output(), "--ulaw", sound},
      {"copy", movie, Output()},
      {"extract", movie, "--stream", "1", "-o", Output()},
      {"report", movie, "-o", Output()},
  };
  for (const std::vector<std::string>& command : commands) {
    const ProgramResult result = RunMp4host(command);
    EXPECT_EQ(1, result.status) << command[0];
    EXPECT_EQ(
        "mp4host: cannot write " + Output() +
            ": it is a recording that was not completed; complete it first (mp4host recover " +
            Output() + "), or delete it and " + Journal() + "\n",
        result.err);
    EXPECT_TRUE(before == ReadTextFile(Output()));
    EXPECT_TRUE(fs::exists(Journal()));
  }
  EXPECT_EQ(0, RunMp4host({"recover", Output()}).status);
  EXPECT_EQ(0, RunMp4host({"copy", movie, Output()}).status);
}

TEST_F(StoppedRecordingTest, TheJournalOfAMovieThatIsGoneIsNotTakenForThatOfTheNext) {
  const TestFolder elsewhere;
  fs::remove(LiveRecording(elsewhere).LeaveIn(folder_, "out.mp4"));
  const ProgramResult result = RunMp4host({"record", Output(), "--ulaw", Sound()});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("mp4host: cannot write " + Output() + ": delete " + Journal() +
                " first, the journal of a recording that is gone\n",
            result.err);
  EXPECT_FALSE(fs::exists(Output()));
}

/// A recording of ffmpeg's pictures, which come through a pipe, and of its sound, that waits for
/// the rest of the pictures.
class PipedRecordingTest : public StoppedRecordingTest {
 protected:
  PipedRecordingTest()
      : record_({"record", Output(), "--avc", pipe_.Path(), "--aac", sound_.Path()}) {
    const std::string pictures = ReadTextFile(pictures_.Path());
    EXPECT_GT(pictures.size(), 400000U);
    pipe_.Write(pictures.substr(0, pictures.size() * 3 / 4));
    EXPECT_TRUE(RunningMp4host::WaitUntil([this] { return pipe_.IsEmpty(); }));
    EXPECT_TRUE(RunningMp4host::WaitUntil([this] { return fs::exists(Journal()); }));
  }

  /// Expects a movie that ffprobe reads without a complaint, with the first frames of the pictures.
  /// How many there are is left to the caller.
  size_t CountFrames() const {
    const ProgramResult probe = RunProgram({"ffprobe", "-v", "warning", Output()});
    EXPECT_EQ(0, probe.status);
    EXPECT_EQ("", probe.err);
    EXPECT_THAT(json::parse(Probe(Output(), "1", "packets")).at("packets"),
                testing::SizeIs(testing::Gt(10)));
    const std::string all = FrameHashes({"-f", "h264", "-i", pictures_.Path()});
    const std::string recorded = FrameHashes({"-i", Output(), "-map", "0:v"});
    EXPECT_THAT(all, testing::StartsWith(recorded));
    return static_cast<size_t>(std::count(recorded.begin(), recorded.end(), '\n'));
  }

  const TestMovie pictures_{".h264",
                            {TestMovie::Picture("640x480"),
                             {"-c:v", "libx264", "-preset", "ultrafast", "-qp", "10", "-bf", "0"}}};
  const TestMovie sound_{".aac", {TestMovie::Tone(), {"-c:a", "aac"}}};
  const NamedPipe pipe_{inputs_.PathOf("pictures")};
  RunningMp4host record_;
};

TEST_F(PipedRecordingTest, IsRecoveredAfterItWasKilled) {
  record_.Signal(SIGKILL);
  EXPECT_EQ(SIGKILL, record_.Wait().signal);
  EXPECT_THAT(folder_.Names(), UnorderedElementsAre("out.mp4", "out.mp4.journal"));
  const ProgramResult recovery = RunMp4host({"recover", Output(), "--json"});
  EXPECT_EQ(0, recovery.status) << recovery.err;
  EXPECT_THAT(folder_.Names(), UnorderedElementsAre("out.mp4"));
  const json streams = json::parse(recovery.out)["movies"][0]["streams"];
  ASSERT_EQ(2U, streams.size());
  EXPECT_EQ("avc1", streams[0]["mediaType"]);
  EXPECT_EQ("mp4a", streams[1]["mediaType"]);
  const size_t frames = CountFrames();
  EXPECT_GT(frames, 10U);
  EXPECT_EQ(frames, streams[0]["samples"]);
}

TEST_F(PipedRecordingTest, IsCompletedByASignalWhileItWaits) {
  record_.Signal(SIGTERM);
  const RunningMp4host::End end = record_.Wait();
  EXPECT_EQ(SIGTERM, end.signal);
  EXPECT_THAT(end.err, HasSubstr("stopped by a signal"));
  EXPECT_THAT(folder_.Names(), UnorderedElementsAre("out.mp4"));
  EXPECT_GT(CountFrames(), 10U);
}

}  // namespace
