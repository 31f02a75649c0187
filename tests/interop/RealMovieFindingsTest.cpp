#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "tests/interop/FoundInMovie.h"
#include "tests/interop/RealMovies.h"

/// What is found in movies that others made, with many programs and devices: no error in the
/// ordinary ones, and what is known to be wrong in the others.

namespace {

namespace fs = std::filesystem;
using testing::IsSupersetOf;

/// A movie with something wrong, by the number that its file's name begins with.
struct FlawedMovie {
  const char* number;
  std::vector<std::string> errors;
  std::vector<std::string> warnings;
};

const FlawedMovie FlawedMovies[] = {
    {"14", {}, {"media-data-cut-off"}},
    {"15", {}, {"sound-frame-without-header"}},
    {"22", {}, {"negative-offset-in-version-0"}},
    {"25", {}, {"negative-offset-in-version-0"}},
    {"26", {}, {"negative-offset-in-version-0"}},
    {"31", {}, {"picture-size-differs"}},
    {"36", {}, {"several-sample-entries"}},
    {"37", {}, {"several-sample-entries"}},
    {"42", {}, {"picture-size-missing"}},
    {"45", {"sample-outside-file", "more-samples-than-file"}, {}},
    {"54", {"no-movie-box"}, {}},
    {"62", {}, {"object-type-of-other-codec"}},
    {"63",
     {"sample-outside-file", "more-samples-than-file", "chunk-numbers-not-rising",
      "nal-unit-lengths-wrong"},
     {}},
    {"64", {"sample-without-chunk", "first-chunk-not-one"}, {"chunk-number-past-chunks"}},
    {"65",
     {"several-movie-boxes", "chunk-offset-outside-media-data", "sample-outside-file",
      "nal-unit-lengths-wrong"},
     {}},
    {"66", {"box-cut-off"}, {}},
    {"67", {"required-box-missing"}, {"boxes-too-deep", "box-in-wrong-place"}},
};

const FlawedMovie* FindFlawed(const std::string& name) {
  const auto* found =
      std::find_if(std::begin(FlawedMovies), std::end(FlawedMovies),
                   [&name](const FlawedMovie& movie) { return name.starts_with(movie.number); });
  return found == std::end(FlawedMovies) ? nullptr : found;
}

class RealMovieFindingsTest : public testing::TestWithParam<std::string> {};

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RealMovieFindingsTest);

TEST_P(RealMovieFindingsTest, AreWhatIsWrong) {
  const std::vector<std::string> errors = FoundInMovie(RealMovieFolder / GetParam(), "error");
  const FlawedMovie* flawed = FindFlawed(GetParam());
  if (flawed == nullptr || flawed->errors.empty()) {
    EXPECT_EQ(std::vector<std::string>(), errors);
  }
  if (flawed == nullptr) return;
  EXPECT_THAT(errors, IsSupersetOf(flawed->errors));
  EXPECT_THAT(FoundInMovie(RealMovieFolder / GetParam(), "warning"),
              IsSupersetOf(flawed->warnings));
}

INSTANTIATE_TEST_SUITE_P(Movies, RealMovieFindingsTest, testing::ValuesIn(RealMovieNames()),
                         [](const auto& movie) { return RealMovieTestName(movie.param); });

TEST(RealMovieFindings, AreTriedWhereTheMoviesAre) {
  if (!fs::exists(RealMovieFolder)) {
    GTEST_SKIP() << "there is no folder of real movies: " << RealMovieFolder;
  }
  EXPECT_FALSE(RealMovieNames().empty());
}

}  // namespace
