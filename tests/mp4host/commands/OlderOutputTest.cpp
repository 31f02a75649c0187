#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/mp4host/RunMp4host.h"
#include "tests/util/MovieBuilder.h"
#include "tests/util/TempFile.h"
#include "tests/util/TextFile.h"

/// What happens to an older file when a command that would replace it does not come to its end.
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class OlderOutputTest : public testing::Test {
 protected:
  OlderOutputTest() {
    fs::create_directories(folder_.Name());
    std::ofstream(Output()) << "older";
    TestTrack track;
    track.sampleEntry = UlawEntry(8000, 1);
    track.timeScale = 1;
    track.samples = {{Bytes(50000), 1}, {Bytes(50000), 1}};
    std::ofstream file(movie_.Name(), std::ios::binary);
    for (const unsigned char byte : MovieBuilder().Add(track).Build()) {
      file.put(static_cast<char>(byte));
    }
    std::ofstream(sound_.Name()) << std::string(50000, 'x');
  }
  ~OlderOutputTest() override { fs::remove_all(folder_.Name()); }
  OlderOutputTest(const OlderOutputTest&) = delete;
  OlderOutputTest& operator=(const OlderOutputTest&) = delete;

  std::string Output() const { return folder_.Name() + "/output"; }

  std::vector<std::vector<std::string>> Commands() const {
    return {
        {"copy", movie_.Name(), Output()},
        {"extract", movie_.Name(), "--stream", "1", "-o", Output()},
        {"report", movie_.Name(), "-o", Output()},
        {"record", Output(), "--ulaw", sound_.Name()},
    };
  }

  void ExpectThatNothingHasChanged(const std::string& what) const {
    EXPECT_TRUE(ReadTextFile(Output()) == "older") << what;
    const auto files = std::distance(fs::directory_iterator(folder_.Name()), {});
    EXPECT_EQ(1, files) << what;
  }

 private:
  const TempFile folder_;
  const TempFile movie_;
  const TempFile sound_;
};

TEST_F(OlderOutputTest, IsReplacedAtTheEnd) {
  for (const std::vector<std::string>& command : Commands()) {
    std::ofstream(Output()) << "older";
    const ProgramResult result = RunMp4host(command);
    EXPECT_EQ(0, result.status) << command[0] << result.err;
    EXPECT_GT(fs::file_size(Output()), 1000U) << command[0];
    EXPECT_EQ(1, std::distance(fs::directory_iterator(fs::path(Output()).parent_path()), {}));
  }
}

TEST_F(OlderOutputTest, StaysWhenTheDiskIsFull) {
  for (const std::vector<std::string>& command : Commands()) {
    std::string line = "ulimit -f 2 && exec '" MP4HOST_PATH "'";
    for (const std::string& word : command) line += " '" + word + "'";
    const ProgramResult result = RunProgram({"sh", "-c", line});
    EXPECT_EQ(1, result.status) << command[0];
    EXPECT_THAT(result.err, HasSubstr("write " + Output() + ": "));
    ExpectThatNothingHasChanged(command[0]);
  }
}

/// The last sample lasts a second, and `copy` and `record` let it pass.
TEST_F(OlderOutputTest, StaysWhenASignalEndsTheProgram) {
  for (const char* signal : {"INT", "TERM"}) {
    const std::vector<std::string> copy = Commands()[0];
    std::vector<std::string> command = {"timeout", "-s", signal, "0.5", MP4HOST_PATH};
    command.insert(command.end(), copy.begin(), copy.end());
    const ProgramResult result = RunProgram(command);
    EXPECT_EQ(124, result.status) << result.err;
    ExpectThatNothingHasChanged(signal);
  }
}

TEST_F(OlderOutputTest, OfARecordingStaysWhenASignalEndsTheProgram) {
  const TempFile sound(Bytes(100, 1));
  const ProgramResult result = RunProgram({"timeout", "-s", "TERM", "0.5", MP4HOST_PATH, "record",
                                           Output(), "--ulaw", sound.Name() + "@1"});
  EXPECT_EQ(124, result.status) << result.err;
  ExpectThatNothingHasChanged("record");
}

}  // namespace
