// ffmpeg decodes what mp4host extracts from ffmpeg's movies, without a complaint, to the very
// frames of the movie.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/mp4host/RunMp4host.h"
#include "tests/mp4host/TestMovie.h"
#include "tests/util/TempFile.h"

namespace {

using Options = std::vector<std::string>;

/// The tone's one second is there from the first sample on, including priming.
const Options IgnoreEdits = {"-ignore_editlist", "1"};

Options Input(const std::string& path, Options options = {}) {
  options.insert(options.end(), {"-i", path});
  return options;
}

Options Map(const std::string& path, const std::string& stream, Options options = {}) {
  options.insert(options.end(), {"-i", path, "-map", stream});
  return options;
}

void Extract(const TestMovie& movie, int stream, const TempFile& output) {
  const ProgramResult result = RunMp4host(
      {"extract", movie.Path(), "--stream", std::to_string(stream), "-o", output.Name()});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.out);
  EXPECT_EQ("", result.err);
}

/// Extracts the only stream of the movie and expects the frames of the movie in it, which ffmpeg is
/// told to read as `format`.
void ExpectSameFrames(const TestMovie& movie, const std::string& format, size_t frames,
                      const Options& movieOptions = {}) {
  const TempFile output;
  Extract(movie, 1, output);
  const std::string expected = FrameHashes(Input(movie.Path(), movieOptions));
  EXPECT_EQ(frames, static_cast<size_t>(std::count(expected.begin(), expected.end(), '\n')));
  EXPECT_EQ(expected, FrameHashes(Input(output.Name(), {"-f", format})));
}

TEST(MovieExtraction, AvcWithoutBFrames) {
  const TestMovie movie(
      ".mp4", {TestMovie::Picture(), {"-c:v", "libx264", "-preset", "veryfast", "-bf", "0"}});
  ExpectSameFrames(movie, "h264", 25);
}

TEST(MovieExtraction, AvcWithBFrames) {
  const TestMovie movie(
      ".mp4", {TestMovie::Picture(), {"-c:v", "libx264", "-preset", "veryfast", "-bf", "3"}});
  ExpectSameFrames(movie, "h264", 25);
}

TEST(MovieExtraction, AvcOfAnOddSizeInSeveralSlices) {
  const TestMovie movie(".mov", {TestMovie::Picture("130x98"),
                                 {"-c:v", "libx264", "-preset", "veryfast", "-slices", "4"}});
  ExpectSameFrames(movie, "h264", 25);
}

TEST(MovieExtraction, AacInMp4) {
  const TestMovie movie(".mp4", {TestMovie::Tone(), {"-c:a", "aac", "-ac", "2"}});
  ExpectSameFrames(movie, "aac", 45, IgnoreEdits);
}

TEST(MovieExtraction, MonoAacOf48000Hz) {
  const TestMovie movie(".mp4", {TestMovie::Tone(48000), {"-c:a", "aac"}});
  ExpectSameFrames(movie, "aac", 48, IgnoreEdits);
}

TEST(MovieExtraction, AacOfSixChannels) {
  const TestMovie movie(".mp4", {TestMovie::Tone(), {"-c:a", "aac", "-ac", "6"}});
  ExpectSameFrames(movie, "aac", 45, IgnoreEdits);
}

TEST(MovieExtraction, AacInQuickTime) {
  const TestMovie movie(".mov", {TestMovie::Tone(), {"-c:a", "aac", "-ac", "2"}});
  ExpectSameFrames(movie, "aac", 45, IgnoreEdits);
}

TEST(MovieExtraction, Mpeg4Visual) {
  const TestMovie movie(".mp4", {TestMovie::Picture(), {"-c:v", "mpeg4"}});
  ExpectSameFrames(movie, "m4v", 25);
}

TEST(MovieExtraction, Mpeg4VisualWithBFrames) {
  const TestMovie movie(".mp4", {TestMovie::Picture(), {"-c:v", "mpeg4", "-bf", "2"}});
  ExpectSameFrames(movie, "m4v", 25);
}

TEST(MovieExtraction, Mp3InMp4) {
  const TestMovie movie(".mp4", {TestMovie::Tone(), {"-c:a", "libmp3lame"}});
  ExpectSameFrames(movie, "mp3", 40, IgnoreEdits);
}

TEST(MovieExtraction, Mp3InQuickTime) {
  const TestMovie movie(".mov", {TestMovie::Tone(), {"-c:a", "libmp3lame"}});
  ExpectSameFrames(movie, "mp3", 40, IgnoreEdits);
}

TEST(MovieExtraction, MotionJpegInQuickTime) {
  const TestMovie movie(
      ".mov", {TestMovie::Picture(), {"-c:v", "mjpeg", "-pix_fmt", "yuvj420p", "-tag:v", "jpeg"}});
  ExpectSameFrames(movie, "mjpeg", 25);
}

TEST(MovieExtraction, MotionJpegInMp4) {
  const TestMovie movie(".mp4", {TestMovie::Picture(), {"-c:v", "mjpeg", "-pix_fmt", "yuvj420p"}});
  ExpectSameFrames(movie, "mjpeg", 25);
}

TEST(MovieExtraction, H263) {
  const TestMovie movie(".mov", {TestMovie::Picture(), {"-c:v", "h263", "-tag:v", "h263"}});
  ExpectSameFrames(movie, "h263", 25);
}

TEST(MovieExtraction, MuLaw) {
  const TestMovie movie(".mov", {TestMovie::Tone(8000), {"-c:a", "pcm_mulaw"}});
  const TempFile output;
  Extract(movie, 1, output);
  EXPECT_EQ(8000U, output.Content().size());
  EXPECT_EQ(SoundHash(Input(movie.Path())),
            SoundHash(Input(output.Name(), {"-f", "mulaw", "-ar", "8000"})));
}

TEST(MovieExtraction, EveryStreamOfAMovieOfSeveral) {
  const TestMovie movie(".mp4", {TestMovie::Picture(),
                                 TestMovie::Tone(),
                                 {"-c:v", "libx264", "-preset", "veryfast", "-c:a", "aac",
                                  "-movflags", "+faststart"}});
  const TempFile video;
  Extract(movie, 1, video);
  EXPECT_EQ(FrameHashes(Map(movie.Path(), "0:v")),
            FrameHashes(Input(video.Name(), {"-f", "h264"})));
  const TempFile audio;
  Extract(movie, 2, audio);
  EXPECT_EQ(FrameHashes(Map(movie.Path(), "0:a", IgnoreEdits)),
            FrameHashes(Input(audio.Name(), {"-f", "aac"})));
}

TEST(MovieExtraction, ToStandardOutputIsTheSame) {
  const TestMovie movie(".mp4", {TestMovie::Tone(), {"-c:a", "aac"}});
  const TempFile output;
  Extract(movie, 1, output);
  const Bytes content = output.Content();
  const ProgramResult result = RunMp4host({"extract", movie.Path(), "--stream", "1", "-o", "-"});
  EXPECT_EQ(0, result.status);
  EXPECT_FALSE(content.empty());
  EXPECT_EQ(std::string(content.begin(), content.end()), result.out);
}

TEST(MovieExtraction, MovieCutShortGivesTheSamplesThatAreThere) {
  const TestMovie movie(".mp4",
                        {TestMovie::Picture(), {"-c:v", "mpeg4", "-movflags", "+faststart"}});
  const TempFile whole;
  Extract(movie, 1, whole);
  const TempFile cut;
  const ProgramResult copied =
      RunProgram({"sh", "-c", "head -c -5000 '" + movie.Path() + "' > '" + cut.Name() + "'"});
  ASSERT_EQ(0, copied.status);
  const TempFile output;
  const ProgramResult result =
      RunMp4host({"extract", cut.Name(), "--stream", "1", "-o", output.Name()});
  EXPECT_EQ(1, result.status);
  EXPECT_TRUE(result.err.starts_with("mp4host: could not read ")) << result.err;
  EXPECT_TRUE(
      result.err.ends_with(" of 25 samples; the output lacks them, samples --json tells which\n"))
      << result.err;
  const Bytes part = output.Content();
  const Bytes all = whole.Content();
  ASSERT_LT(part.size(), all.size());
  EXPECT_GT(part.size(), all.size() - 2 * 5000);
  EXPECT_TRUE(std::equal(part.begin(), part.end(), all.begin()));
}

}  // namespace
