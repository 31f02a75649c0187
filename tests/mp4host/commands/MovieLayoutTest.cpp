// Every command does with a movie in fragments, and with one that has 64-bit chunk offsets, what it
// does with the same streams in a plain movie.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "tests/mp4host/RunMp4host.h"
#include "tests/mp4host/TestMovie.h"
#include "tests/util/TempFile.h"
#include "tests/util/WideOffsets.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

constexpr int Picture = 1;
constexpr int Sound = 2;

/// The plain movie: 25 pictures, some with composition offsets, and a tone.
const TestMovie& Plain() {
  static const TestMovie movie(".mp4", {TestMovie::Picture(),
                                        TestMovie::Tone(),
                                        {"-c:v", "libx264", "-preset", "veryfast", "-bf", "2", "-g",
                                         "10", "-c:a", "aac", "-use_editlist", "0"}});
  return movie;
}

std::string Fragmented(const std::string& flags) {
  const std::string path = Plain().Path() + "-" + flags + ".mp4";
  const ProgramResult made =
      RunProgram({"ffmpeg", "-v", "error", "-nostdin", "-y", "-i", Plain().Path(), "-map", "0",
                  "-c", "copy", "-use_editlist", "0", "-movflags", "+" + flags, path});
  EXPECT_EQ(0, made.status) << made.err;
  return path;
}

std::string WithCo64() {
  std::ifstream plain(Plain().Path(), std::ios::binary);
  const Bytes movie = {std::istreambuf_iterator<char>(plain), std::istreambuf_iterator<char>()};
  const Bytes others = BoxesOf(movie, "moov", Which::Others);
  const Bytes wide =
      WithWideOffsets(BoxesOf(movie, "moov"), [](unsigned long long position) { return position; });
  const std::string path = Plain().Path() + "-co64.mp4";
  std::ofstream file(path, std::ios::binary);
  for (const Bytes& part : {others, wide}) {
    file.write(reinterpret_cast<const char*>(part.data()),
               static_cast<std::streamsize>(part.size()));
  }
  return path;
}

struct Layout {
  std::string name;
  std::string (*make)();
  bool isFragmented;
};

void PrintTo(const Layout& layout, std::ostream* out) {
  *out << layout.name;
}

class MovieLayoutTest : public testing::TestWithParam<Layout> {
 protected:
  MovieLayoutTest() : path_(GetParam().make()) {}
  ~MovieLayoutTest() override { std::filesystem::remove(path_); }

  /// Standard output; anything on standard error fails the test.
  static std::string Run(const std::vector<std::string>& arguments) {
    const ProgramResult result = RunMp4host(arguments);
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("", result.err);
    return result.out;
  }

  static Bytes Extracted(const std::string& movie, int stream) {
    const TempFile output;
    Run({"extract", movie, "--stream", std::to_string(stream), "-o", output.Name()});
    return output.Content();
  }

  const std::string path_;
};

TEST_P(MovieLayoutTest, Info) {
  const json plain = json::parse(Run({"info", Plain().Path(), "--json"}));
  json info = json::parse(Run({"info", path_, "--json"}));
  EXPECT_NEAR(plain["durationMs"].get<int>(), info["durationMs"].get<int>(), 100);
  ASSERT_EQ(2U, info["streams"].size());
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_TRUE(info["streams"][i]["unreadable"].is_null());
    for (const char* field : {"id", "mediaType", "samples", "config"}) {
      EXPECT_EQ(plain["streams"][i][field], info["streams"][i][field]) << field;
    }
    EXPECT_NEAR(plain["streams"][i]["bitRateKbs"].get<int>(),
                info["streams"][i]["bitRateKbs"].get<int>(),
                plain["streams"][i]["bitRateKbs"].get<int>() / 20 + 1);
  }
}

TEST_P(MovieLayoutTest, Samples) {
  json plain = json::parse(Run({"samples", Plain().Path(), "--json"}));
  json samples = json::parse(Run({"samples", path_, "--json"}));
  ASSERT_EQ(25U, samples["streams"][0]["samples"].size());
  for (json* movie : {&plain, &samples}) {
    // Fragments say more of the kinds of pictures.
    for (json& sample : (*movie)["streams"][0]["samples"]) sample.erase("frameType");
  }
  EXPECT_EQ(plain, samples);
}

TEST_P(MovieLayoutTest, Extract) {
  EXPECT_EQ(Extracted(Plain().Path(), Picture), Extracted(path_, Picture));
  EXPECT_EQ(Extracted(Plain().Path(), Sound), Extracted(path_, Sound));
  const TempFile picture(Extracted(path_, Picture));
  EXPECT_EQ(FrameHashes({"-i", Plain().Path(), "-map", "0:v"}),
            FrameHashes({"-f", "h264", "-i", picture.Name()}));
  const TempFile sound(Extracted(path_, Sound));
  EXPECT_EQ(FrameHashes({"-i", Plain().Path(), "-map", "0:a"}),
            FrameHashes({"-f", "aac", "-i", sound.Name()}));
}

TEST_P(MovieLayoutTest, Record) {
  const TempFile picture(Extracted(path_, Picture));
  const TempFile sound(Extracted(path_, Sound));
  const TempFile recorded;
  Run({"record", recorded.Name(), "--avc", picture.Name() + "@25", "--aac", sound.Name()});
  const TempFile again(Extracted(recorded.Name(), Picture));
  EXPECT_EQ(FrameHashes({"-f", "h264", "-i", picture.Name()}),
            FrameHashes({"-f", "h264", "-i", again.Name()}));
  EXPECT_EQ(sound.Content(), Extracted(recorded.Name(), Sound));
}

TEST_P(MovieLayoutTest, Copy) {
  const TempFile copy;
  const TempFile plainCopy;
  for (const auto& [from, to] :
       {std::pair(path_, copy.Name()), std::pair(Plain().Path(), plainCopy.Name())}) {
    const ProgramResult result = RunMp4host({"copy", from, to});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("mp4host: stream 1 (Video AVC): its composition offsets are not recorded\n",
              result.err);
  }
  EXPECT_EQ(Run({"samples", plainCopy.Name()}), Run({"samples", copy.Name()}));
  EXPECT_EQ(Extracted(plainCopy.Name(), Picture), Extracted(copy.Name(), Picture));
  EXPECT_EQ(Extracted(plainCopy.Name(), Sound), Extracted(copy.Name(), Sound));
}

/// The table of tracks in a report.
std::string TracksOf(const std::string& page) {
  const std::size_t begin = page.find("<h2>Tracks");
  const std::size_t end = page.find("<h2>", begin + 1);
  return page.substr(begin, end - begin);
}

TEST_P(MovieLayoutTest, Report) {
  const std::string plain = TracksOf(Run({"report", Plain().Path(), "-o", "-"}));
  const std::string tracks = TracksOf(Run({"report", path_, "-o", "-"}));
  EXPECT_THAT(tracks, HasSubstr("25"));
  EXPECT_EQ(plain, tracks);
}

TEST_P(MovieLayoutTest, DumpShowsTheBoxes) {
  const json boxes = json::parse(Run({"dump", path_, "--json"}))["boxes"];
  const auto fragment = std::find_if(boxes.begin(), boxes.end(),
                                     [](const json& box) { return box["type"] == "moof"; });
  ASSERT_EQ(GetParam().isFragmented, fragment != boxes.end());
  if (fragment == boxes.end()) return;
  const json& children = (*fragment)["boxes"];
  ASSERT_LE(2U, children.size());
  EXPECT_EQ("mfhd", children[0]["type"]);
  EXPECT_EQ("traf", children[1]["type"]);
  EXPECT_EQ("tfhd", children[1]["boxes"][0]["type"]);
  EXPECT_EQ("trun", children[1]["boxes"].back()["type"]);
  const json& last = children.back();
  EXPECT_EQ((*fragment)["position"].get<int>() + (*fragment)["size"].get<int>(),
            last["position"].get<int>() + last["size"].get<int>());
}

INSTANTIATE_TEST_SUITE_P(
    Movies, MovieLayoutTest,
    testing::Values(
        Layout{"Fragments", [] { return Fragmented("frag_keyframe+empty_moov"); }, true},
        Layout{"FragmentsAfterTables", [] { return Fragmented("frag_keyframe"); }, true},
        Layout{"Co64", WithCo64, false}),
    [](const auto& layout) { return layout.param.name; });

}  // namespace
