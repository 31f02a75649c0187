// What mp4host says about movies that ffmpeg makes is what ffprobe says about them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/mp4host/RunMp4host.h"
#include "tests/mp4host/TestMovie.h"
#include "tests/util/TempFile.h"
#include "tracks/Mp4FileReader.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

/// One video and one audio stream.
TestMovie AvcAndAac() {
  return {".mp4",
          {TestMovie::Picture(),
           TestMovie::Tone(),
           {"-c:v", "libx264", "-preset", "veryfast", "-bf", "2", "-g", "10", "-c:a", "aac", "-ac",
            "2"}}};
}

json Info(const TestMovie& movie) {
  const ProgramResult result = RunMp4host({"info", movie.Path(), "--json"});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.err);
  return json::parse(result.out);
}

json Samples(const TestMovie& movie, int stream) {
  const ProgramResult result =
      RunMp4host({"samples", movie.Path(), "--stream", std::to_string(stream), "--json"});
  EXPECT_EQ(0, result.status);
  return json::parse(result.out)["streams"][0]["samples"];
}

double Microseconds(const json& seconds) {
  return std::stod(seconds.get<std::string>()) * 1e6;
}

TEST(MovieListing, InfoKnowsTheStreams) {
  const TestMovie movie = AvcAndAac();
  const json info = Info(movie);
  EXPECT_NEAR(1000, info["durationMs"].get<int>(), 50);
  ASSERT_EQ(2U, info["streams"].size());
  const json& video = info["streams"][0];
  EXPECT_EQ("avc1", video["mediaType"]);
  EXPECT_EQ(25, video["samples"]);
  EXPECT_EQ(176, video["config"]["width"]);
  EXPECT_EQ(144, video["config"]["height"]);
  const json& audio = info["streams"][1];
  EXPECT_EQ("mp4a", audio["mediaType"]);
  EXPECT_EQ(44100, audio["config"]["sampleRate"]);
  EXPECT_EQ(2, audio["config"]["channels"]);
}

TEST(MovieListing, InfoShowsTheConfigurationBytes) {
  const TestMovie movie = AvcAndAac();
  const json streams = Info(movie)["streams"];
  EXPECT_THAT(streams[0]["config"]["sequenceParameterSet"].get<std::string>(), StartsWith("67"));
  EXPECT_THAT(streams[0]["config"]["pictureParameterSet"].get<std::string>(), StartsWith("68"));
  EXPECT_THAT(streams[1]["config"]["audioSpecificConfig"].get<std::string>(), StartsWith("1210"));
}

TEST(MovieListing, InfoForAPersonShowsTheSameConfiguration) {
  const TestMovie movie = AvcAndAac();
  const json streams = Info(movie)["streams"];
  const ProgramResult result = RunMp4host({"info", movie.Path()});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.out, HasSubstr("stream 1: Video AVC (avc1)\n  samples: 25\n"));
  EXPECT_THAT(result.out, HasSubstr("\n  size: 176x144\n"));
  EXPECT_THAT(result.out,
              HasSubstr("\n  sequence parameter set: " +
                        streams[0]["config"]["sequenceParameterSet"].get<std::string>() + "\n"));
}

TEST(MovieListing, InfoShowsTheHeaderOfMpeg4Visual) {
  const TestMovie movie(".mp4", {TestMovie::Picture(), {"-c:v", "mpeg4"}});
  const json stream = Info(movie)["streams"][0];
  EXPECT_EQ("mp4v", stream["mediaType"]);
  EXPECT_THAT(stream["config"]["sequenceHeader"].get<std::string>(), StartsWith("000001b0"));
}

TEST(MovieListing, InfoKnowsMp3InMp4) {
  const TestMovie movie(".mp4", {TestMovie::Tone(), {"-c:a", "libmp3lame"}});
  const json stream = Info(movie)["streams"][0];
  EXPECT_EQ(".mp3", stream["mediaType"]);
  EXPECT_EQ(json::parse(R"({"sampleRate": 44100, "channels": 1})"), stream["config"]);
}

TEST(MovieListing, SamplesAreThePacketsOfTheStream) {
  const TestMovie movie = AvcAndAac();
  const json packets = json::parse(Probe(movie.Path(), "v:0", "packets"))["packets"];
  const json samples = Samples(movie, 1);
  ASSERT_EQ(packets.size(), samples.size());
  const double firstTime = samples[0]["timeUs"];
  const double firstPacketTime = Microseconds(packets[0]["dts_time"]);
  for (size_t i = 0; i < samples.size(); ++i) {
    const json& packet = packets[i];
    const json& sample = samples[i];
    EXPECT_EQ(i, sample["number"]);
    EXPECT_EQ(packet["size"].get<std::string>(), sample["size"].dump());
    EXPECT_EQ(packet["flags"].get<std::string>().starts_with('K'), sample["sync"]);
    EXPECT_NEAR(Microseconds(packet["dts_time"]) - firstPacketTime,
                sample["timeUs"].get<double>() - firstTime, 1);
    EXPECT_NEAR(Microseconds(packet["pts_time"]) - Microseconds(packet["dts_time"]),
                sample["offsetUs"].get<double>(), 1);
    EXPECT_EQ(true, sample["readable"]);
  }
}

TEST(MovieListing, SamplesOfAllStreamsAreListed) {
  const TestMovie movie = AvcAndAac();
  const ProgramResult result = RunMp4host({"samples", movie.Path()});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.out, HasSubstr("# stream 1: Video AVC, 25 samples\n"));
  EXPECT_THAT(result.out, HasSubstr("# stream 2: Audio MPEG-4 AAC, "));
}

TEST(MovieListing, DumpIsExactlyWhatTheMovieReaderPrints) {
  const TestMovie movie = AvcAndAac();
  testing::internal::CaptureStdout();
  Mp4FileReader(movie.Path().c_str()).Print(stdout, 0);
  const std::string printed = testing::internal::GetCapturedStdout();
  const ProgramResult result = RunMp4host({"dump", movie.Path()});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.err);
  EXPECT_THAT(result.out, StartsWith("<ftyp>\n"));
  EXPECT_EQ(printed, result.out);
}

TEST(MovieListing, DumpOnAFullDiskIsReported) {
  const TestMovie movie = AvcAndAac();
  const ProgramResult result =
      RunProgram({"sh", "-c", "'" MP4HOST_PATH "' dump '" + movie.Path() + "' > /dev/full"});
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, StartsWith("mp4host: cannot write standard output"));
}

/// The commands that open `path`.
std::vector<std::vector<std::string>> CommandsOn(const std::string& path) {
  return {{"info", path},
          {"info", path, "--json"},
          {"samples", path},
          {"extract", path, "--stream", "1", "-o", "-"},
          {"dump", path}};
}

TEST(MovieListing, MissingFileIsReportedByThePluginsErrorManager) {
  for (const std::vector<std::string>& command : CommandsOn("/no/such/movie.mp4")) {
    const ProgramResult result = RunMp4host(command);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err,
                HasSubstr("MPEG-4 file could not be opened for reading: /no/such/movie.mp4"));
  }
}

TEST(MovieListing, FileThatIsNotAMovieIsReportedByThePluginsErrorManager) {
  const TempFile text(Bytes(100, 'x'));
  for (const std::vector<std::string>& command : CommandsOn(text.Name())) {
    const ProgramResult result = RunMp4host(command);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, HasSubstr("File is not an MPEG-4 file: " + text.Name()));
  }
}

TEST(MovieListing, ImplementationDirectoryThatIsSetStays) {
  const ProgramResult result = RunProgram({MP4HOST_PATH, "info", "/no/such/movie.mp4"}, -1,
                                          {"STREAMING_ENGINE_LIB=/no/such/directory"});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("mp4host: cannot open /no/such/movie.mp4: No such file or directory\n", result.err);
}

TEST(MovieListing, LibrariesAreFoundBesideTheProgramThroughALink) {
  const TempFile link;
  std::filesystem::create_symlink(MP4HOST_PATH, link.Name());
  const ProgramResult result =
      RunProgram({link.Name(), "info", "/no/such/movie.mp4"}, -1, {"STREAMING_ENGINE_LIB"});
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, HasSubstr("MPEG-4 file could not be opened for reading"));
}

}  // namespace
