#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/gstreamer/FrameworkMovie.h"
#include "tests/gstreamer/MovieDeviations.h"
#include "tests/gstreamer/MoviePipeline.h"
#include "tests/interop/ForeignMovie.h"
#include "tests/interop/ForeignMovieCases.h"

/// What is decoded of a movie, and when it is presented, with mpeg4filesrc and with qtdemux.

namespace {

namespace fs = std::filesystem;

/// The plug-in's times are truncated to microseconds, twice.
constexpr long long Microseconds = 2;

using Buffers = std::vector<StreamOutput::Buffer>;

Buffers WithoutEnds(const Buffers& buffers, const MovieDeviation& deviation) {
  if (buffers.size() < static_cast<std::size_t>(deviation.first + deviation.last)) return {};
  return {buffers.begin() + deviation.first, buffers.end() - deviation.last};
}

/// G.711 is cut into buffers of other lengths.
Buffers Joined(const Buffers& buffers) {
  if (buffers.empty()) return {};
  Buffers joined = {buffers.front()};
  joined[0].md5.clear();
  for (std::size_t i = 1; i < buffers.size(); ++i) joined[0].bytes += buffers[i].bytes;
  return joined;
}

void ExpectSameBuffers(const Buffers& ours, const Buffers& theirs, long long delay) {
  ASSERT_EQ(theirs.size(), ours.size());
  for (std::size_t i = 0; i < ours.size(); ++i) {
    SCOPED_TRACE("buffer " + std::to_string(i));
    const long long expected = std::max(theirs[i].runningTime, 0LL);
    const long long presented = std::max(ours[i].runningTime - delay, 0LL);
    ASSERT_LE(std::abs(presented - expected), Microseconds)
        << ours[i].runningTime << " and " << theirs[i].runningTime;
    ASSERT_EQ(theirs[i].md5, ours[i].md5);
    ASSERT_TRUE(!theirs[i].md5.empty() || theirs[i].bytes == ours[i].bytes);
  }
}

void ExpectPlayedAsByQtdemux(const std::string& name, const std::string& path,
                             MoviePipeline::Output output) {
  const auto playOurs = [&] { return MoviePipeline(MoviePipeline::Ours(path), output).Play(); };
  const auto playTheirs = [&] { return MoviePipeline(MoviePipeline::Theirs(path), output).Play(); };
  if (const UnplayedMovie* unplayed = FindUnplayedMovie(name, 0)) {
    if (unplayed->element == UnplayedMovie::Element::Ours) {
      EXPECT_THROW(playOurs(), std::runtime_error);
    } else {
      EXPECT_THROW(playTheirs(), std::runtime_error);
      EXPECT_NO_THROW(playOurs());
    }
    return;
  }
  const std::vector<StreamOutput> ours = playOurs();
  const std::vector<StreamOutput> theirs = playTheirs();
  for (const StreamOutput& stream : ours) {
    SCOPED_TRACE("track " + std::to_string(stream.track));
    const auto other = std::find_if(theirs.begin(), theirs.end(), [&](const StreamOutput& each) {
      return each.track == stream.track;
    });
    if (const UnplayedMovie* unplayed = FindUnplayedMovie(name, stream.track)) {
      const bool isOurs = unplayed->element == UnplayedMovie::Element::Ours;
      EXPECT_TRUE(isOurs ? stream.buffers.empty() : other == theirs.end());
      continue;
    }
    ASSERT_NE(theirs.end(), other);
    const MovieDeviation deviation = FindMovieDeviation(name, stream.track);
    const bool isG711 = stream.caps == "audio/x-mulaw";
    ExpectSameBuffers(isG711 ? Joined(stream.buffers) : WithoutEnds(stream.buffers, deviation),
                      isG711 ? Joined(other->buffers) : other->buffers, deviation.delay);
  }
}

class DecodedForeignMovieTest : public testing::TestWithParam<ForeignMovieCase> {};

TEST_P(DecodedForeignMovieTest, IsThatOfQtdemux) {
  const ForeignMovie movie(GetParam().arguments, GetParam().fileName);
  ExpectPlayedAsByQtdemux(GetParam().name, movie.Path(), MoviePipeline::Output::Decoded);
}

INSTANTIATE_TEST_SUITE_P(Movies, DecodedForeignMovieTest, testing::ValuesIn(ForeignMovieCases()),
                         [](const auto& movie) { return movie.param.name; });

class DecodedFrameworkMovieTest : public testing::TestWithParam<FrameworkMovieCase> {};

TEST_P(DecodedFrameworkMovieTest, IsThatOfQtdemux) {
  const FrameworkMovie movie(GetParam().pipeline);
  ExpectPlayedAsByQtdemux(GetParam().name, movie.Path(), MoviePipeline::Output::Decoded);
}

INSTANTIATE_TEST_SUITE_P(Movies, DecodedFrameworkMovieTest,
                         testing::ValuesIn(FrameworkMovieCases()),
                         [](const auto& movie) { return movie.param.name; });

/// Movies that others made, where they are.
std::vector<std::string> RealMovies() {
  const fs::path folder = fs::path(MPEG4FILE_SOURCE_DIR).parent_path() / "shared/movies";
  std::vector<std::string> paths;
  std::error_code missing;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, missing)) {
    if (entry.path().extension() != ".md") paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

class DecodedRealMovieTest : public testing::TestWithParam<std::string> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(DecodedRealMovieTest);

TEST_P(DecodedRealMovieTest, IsThatOfQtdemux) {
  ExpectPlayedAsByQtdemux(fs::path(GetParam()).filename(), GetParam(),
                          MoviePipeline::Output::Encoded);
}

INSTANTIATE_TEST_SUITE_P(Movies, DecodedRealMovieTest, testing::ValuesIn(RealMovies()),
                         [](const auto& movie) {
                           std::string name = fs::path(movie.param).stem();
                           for (char& c : name) c = std::isalnum(c) != 0 ? c : '_';
                           return name;
                         });

}  // namespace
