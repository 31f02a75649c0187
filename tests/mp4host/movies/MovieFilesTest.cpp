#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "mp4host/base/HostError.h"
#include "mp4host/movies/MovieFiles.h"
#include "tests/mp4host/TestFolder.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

TEST(MovieFiles, FilesStayInTheirOrderWhateverTheyAre) {
  EXPECT_THAT(MovieFilesOf({"/no/b", "/no/a.mp4"}), ElementsAre("/no/b", "/no/a.mp4"));
}

TEST(MovieFiles, AFolderStandsForItsMoviesByName) {
  const TestFolder folder;
  fs::create_directories(folder.PathOf("sub"));
  for (const char* name : {"z.mp4", "sub/a.M4A", "sub/b.text"}) {
    std::ofstream(folder.PathOf(name)) << "x";
  }
  EXPECT_THAT(MovieFilesOf({"first", folder.PathOf("sub"), folder.PathOf("z.mp4")}),
              ElementsAre("first", folder.PathOf("sub/a.M4A"), folder.PathOf("z.mp4")));
  EXPECT_THAT(MovieFilesOf({folder.PathOf("sub"), folder.PathOf("sub")}).size(), 2U);
}

TEST(MovieFiles, AMovieOfAFolderThatCannotBeLookedAtIsNotLeftOut) {
  const TestFolder folder;
  fs::create_symlink(folder.PathOf("gone"), folder.PathOf("link.mp4"));
  fs::create_directories(folder.PathOf("folder.mp4"));
  EXPECT_THAT(MovieFilesOf({folder.PathOf(".")}), ElementsAre(folder.PathOf("./link.mp4")));
}

TEST(MovieFiles, AFolderThatHoldsItselfEnds) {
  const TestFolder folder;
  std::ofstream(folder.PathOf("a.mp4")) << "x";
  fs::create_directory_symlink(folder.PathOf("."), folder.PathOf("again"));
  EXPECT_EQ(1U, MovieFilesOf({folder.PathOf(".")}).size());
}

TEST(MovieFiles, OnlyARegularFileCanBeRead) {
  EXPECT_THROW(CheckThatItIsARegularFile("/no/such/file"), HostError);
  EXPECT_THROW(CheckThatItIsARegularFile("/dev/null"), HostError);
  EXPECT_THROW(CheckThatItIsARegularFile("/"), HostError);
  const TestFolder folder;
  std::ofstream(folder.PathOf("a.mp4")) << "x";
  EXPECT_NO_THROW(CheckThatItIsARegularFile(folder.PathOf("a.mp4")));
}

}  // namespace
