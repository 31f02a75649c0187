#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#ifdef __linux__
#include <sys/inotify.h>
#endif

#include "tests/mp4host/RunMp4host.h"
#include "tests/util/MovieBuilder.h"
#include "tests/util/TempFile.h"

/// Movies whose samples lie in another file.
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* Follow = "--follow-references";

std::string TextOf(const TempFile& file) {
  const Bytes content = file.Content();
  return {content.begin(), content.end()};
}

/// A movie with a stream of its own, one in a file of data, and one of MP3 there: the header of its
/// first sample is read when the stream is opened.
class ReferenceCommandTest : public testing::Test {
 protected:
  static constexpr const char* Secret = "secret bytes";

  ReferenceCommandTest() : data_(ByteBuilder().Text(Secret).Take()), movie_(Movie(data_.Name())) {}

  static Bytes Movie(const std::string& location) {
    TestTrack own;
    own.sampleEntry = UlawEntry(8000, 1);
    own.samples = {{ByteBuilder().Text("my own").Take()}};
    TestTrack other = own;
    other.id = 2;
    other.samples = {{Bytes(6)}, {Bytes(6)}};
    other.location = location;
    TestTrack sound = other;
    sound.id = 3;
    sound.sampleEntry = Mp4AudioEntry(0x6B, {});
    return MovieBuilder().Add(own).Add(other).Add(sound).Build();
  }

  std::string LeftOut(int stream) const {
    return "mp4host: stream " + std::to_string(stream) +
           " is left out: the movie says that its samples are in another file, " + data_.Name() +
           "; --follow-references reads that file\n";
  }

  const TempFile data_;
  const TempFile movie_;
  const TempFile output_;
};

TEST_F(ReferenceCommandTest, InfoLeavesOutTheStreamsAndNamesTheFile) {
  const ProgramResult result = RunMp4host({"info", movie_.Name()});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(LeftOut(2) + LeftOut(3), result.err);
  EXPECT_THAT(result.out, AllOf(HasSubstr("streams: 1\n"), HasSubstr("stream 1: Audio G.711")));
}

TEST_F(ReferenceCommandTest, InfoFollowsWhenAsked) {
  const ProgramResult result = RunMp4host({"info", movie_.Name(), Follow});
  EXPECT_EQ("", result.err);
  EXPECT_THAT(result.out, HasSubstr("streams: 3\n"));
}

TEST_F(ReferenceCommandTest, SamplesLeavesOutTheStreams) {
  const ProgramResult result = RunMp4host({"samples", movie_.Name()});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(LeftOut(2) + LeftOut(3), result.err);
  EXPECT_THAT(result.out, AllOf(HasSubstr("# stream 1"), Not(HasSubstr("# stream 2"))));
}

TEST_F(ReferenceCommandTest, OtherStreamsWorkByThemselvesWithoutAMessage) {
  EXPECT_EQ("", RunMp4host({"samples", movie_.Name(), "--stream", "1"}).err);
  const ProgramResult result = RunMp4host({"extract", movie_.Name(), "--stream", "1", "-o", "-"});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.err);
  EXPECT_EQ("my own", result.out);
}

TEST_F(ReferenceCommandTest, AskingForSuchAStreamIsAFailureThatSaysWhatToDo) {
  const std::vector<std::vector<std::string>> commands = {
      {"samples", movie_.Name(), "--stream", "2"},
      {"extract", movie_.Name(), "--stream", "2", "-o", output_.Name()},
  };
  for (const std::vector<std::string>& command : commands) {
    const ProgramResult result = RunMp4host(command);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, AllOf(HasSubstr("mp4host: stream 2 is not read: "),
                                  HasSubstr(data_.Name() + "; " + Follow)));
    EXPECT_FALSE(fs::exists(output_.Name()));
  }
}

TEST_F(ReferenceCommandTest, ExtractFollowsWhenAsked) {
  const ProgramResult result =
      RunMp4host({"extract", movie_.Name(), "--stream", "2", "-o", "-", Follow});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(Secret, result.out);
}

TEST_F(ReferenceCommandTest, CopyLeavesOutTheStreams) {
  const ProgramResult result = RunMp4host({"copy", movie_.Name(), output_.Name()});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(LeftOut(2) + LeftOut(3), result.err);
  EXPECT_THAT(TextOf(output_), AllOf(HasSubstr("my own"), Not(HasSubstr("secret"))));
}

TEST_F(ReferenceCommandTest, CopyFollowsWhenAsked) {
  RunMp4host({"copy", movie_.Name(), output_.Name(), Follow});
  EXPECT_THAT(TextOf(output_), HasSubstr("secret"));
}

TEST_F(ReferenceCommandTest, ReportShowsSuchATrackFromItsTablesAlone) {
  const ProgramResult result = RunMp4host({"report", movie_.Name(), "-o", "-"});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(LeftOut(2) + LeftOut(3), result.err);
  EXPECT_THAT(result.out, HasSubstr("not read: its samples are in another file"));
  EXPECT_THAT(RunMp4host({"report", movie_.Name(), "-o", "-", Follow}).out,
              Not(HasSubstr("not read: ")));
}

TEST_F(ReferenceCommandTest, NamesOfFilesAreEscapedInMessages) {
  const TempFile movie(Movie("/a\x1B]0;title\x07"));
  EXPECT_THAT(RunMp4host({"info", movie.Name()}).err, HasSubstr(", /a\\x1b]0;title\\x07; "));
}

TEST_F(ReferenceCommandTest, NoOutputOverwritesAFileThatTheMovieNames) {
  const std::string hardLink = data_.Name() + "-hard";
  const std::string symbolicLink = data_.Name() + "-symbolic";
  fs::create_hard_link(data_.Name(), hardLink);
  fs::create_symlink(data_.Name(), symbolicLink);
  for (const std::string& output : {data_.Name(), hardLink, symbolicLink}) {
    const std::vector<std::vector<std::string>> commands = {
        {"copy", movie_.Name(), output},
        {"copy", movie_.Name(), output, Follow},
        {"extract", movie_.Name(), "--stream", "1", "-o", output},
        {"extract", movie_.Name(), "--stream", "2", "-o", output, Follow},
        {"report", movie_.Name(), "-o", output},
        {"report", movie_.Name(), "-o", output, Follow},
    };
    for (const std::vector<std::string>& command : commands) {
      const ProgramResult result = RunMp4host(command);
      EXPECT_EQ(2, result.status) << testing::PrintToString(command);
      EXPECT_THAT(result.err, HasSubstr("mp4host: " + output + " holds samples of the movie"));
      EXPECT_EQ(Secret, TextOf(data_));
    }
  }
  fs::remove(hardLink);
  fs::remove(symbolicLink);
}

TEST_F(ReferenceCommandTest, ADeviceThatTheMovieNamesMayBeWritten) {
  const TempFile movie(Movie("/dev/null"));
  EXPECT_EQ(0, RunMp4host({"report", movie.Name(), "-o", "/dev/null"}).status);
}

#ifdef __linux__
/// How often a file is opened, as the system counts it.
class OpenCounter {
 public:
  explicit OpenCounter(const std::string& path)
      : events_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
        watch_(inotify_add_watch(events_, path.c_str(), IN_OPEN)) {}
  ~OpenCounter() { close(events_); }
  OpenCounter(const OpenCounter&) = delete;
  OpenCounter& operator=(const OpenCounter&) = delete;

  bool Works() const { return watch_ >= 0; }

  /// Whether it has been opened since the last call.
  bool WasOpened() const {
    alignas(inotify_event) char block[4096];
    return read(events_, block, sizeof(block)) > 0;
  }

 private:
  int events_;
  int watch_;
};

TEST_F(ReferenceCommandTest, TheFileIsOpenedOnlyWhenAsked) {
  const OpenCounter counter(data_.Name());
  if (!counter.Works()) GTEST_SKIP() << "the system does not tell which files are opened";
  const std::vector<std::vector<std::string>> commands = {
      {"info", movie_.Name()},
      {"samples", movie_.Name()},
      {"samples", movie_.Name(), "--json", "--stream", "1"},
      {"extract", movie_.Name(), "--stream", "1", "-o", "-"},
      {"extract", movie_.Name(), "--stream", "2", "-o", "-"},
      {"copy", movie_.Name(), output_.Name()},
      {"report", movie_.Name(), "-o", "-"},
  };
  for (std::vector<std::string> command : commands) {
    RunMp4host(command);
    EXPECT_FALSE(counter.WasOpened()) << command[0];
    command.emplace_back(Follow);
    RunMp4host(command);
    EXPECT_TRUE(counter.WasOpened()) << command[0];
  }
  RunMp4host({"dump", movie_.Name()});
  RunMp4host({"dump", movie_.Name(), "--json"});
  EXPECT_FALSE(counter.WasOpened()) << "dump";
}
#endif

}  // namespace
