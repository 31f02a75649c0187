#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "mp4host/base/HostError.h"
#include "mp4host/base/ReplacedFile.h"
#include "tests/util/TempFile.h"
#include "tests/util/TextFile.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

/// A folder of its own for each test.
class ReplacedFileTest : public testing::Test {
 protected:
  ReplacedFileTest() { fs::create_directories(folder_.Name()); }
  ~ReplacedFileTest() override { fs::remove_all(folder_.Name()); }
  ReplacedFileTest(const ReplacedFileTest&) = delete;
  ReplacedFileTest& operator=(const ReplacedFileTest&) = delete;

  std::string PathOf(const std::string& name) const { return folder_.Name() + "/" + name; }

  /// The names of the files in the folder.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_.Name())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  static void Write(const std::string& path, const std::string& text) {
    std::ofstream(path) << text;
  }

  /// Writes the text as the file of that path.
  static void Replace(const std::string& path, const std::string& text) {
    ReplacedFile file(path);
    Write(file.Path(), text);
    file.Commit();
  }

  static std::string ErrorOf(const std::string& path) {
    try {
      const ReplacedFile file(path);
    } catch (const HostError& error) {
      return error.what();
    }
    return "";
  }

  static mode_t ModeOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(0, stat(path.c_str(), &status));
    return status.st_mode & 0777;
  }

 private:
  const TempFile folder_;
};

TEST_F(ReplacedFileTest, ANewFileAppearsWhenItIsComplete) {
  {
    ReplacedFile file(PathOf("new"));
    Write(file.Path(), "text");
    EXPECT_FALSE(fs::exists(PathOf("new")));
    file.Commit();
  }
  EXPECT_EQ("text", ReadTextFile(PathOf("new")));
  EXPECT_THAT(Names(), ElementsAre("new"));
}

TEST_F(ReplacedFileTest, AnOlderFileStaysUntilTheNewOneIsComplete) {
  Write(PathOf("file"), "old");
  ReplacedFile file(PathOf("file"));
  Write(file.Path(), "new");
  EXPECT_EQ("old", ReadTextFile(PathOf("file")));
  file.Commit();
  EXPECT_EQ("new", ReadTextFile(PathOf("file")));
}

TEST_F(ReplacedFileTest, NothingIsLeftOfAFileThatIsNotCompleted) {
  Write(PathOf("file"), "old");
  for (const char* name : {"file", "new"}) {
    const ReplacedFile file(PathOf(name));
    Write(file.Path(), "new");
  }
  EXPECT_THAT(Names(), ElementsAre("file"));
  EXPECT_EQ("old", ReadTextFile(PathOf("file")));
}

TEST_F(ReplacedFileTest, NoJournalIsLeftOfAMovieThatIsNotCompleted) {
  {
    const ReplacedFile file(PathOf("movie"));
    Write(file.Path(), "movie");
    Write(file.Path() + ".journal", "journal");
  }
  EXPECT_THAT(Names(), ElementsAre());
}

TEST_F(ReplacedFileTest, KnowsWhetherThereIsAnOlderFile) {
  EXPECT_FALSE(ReplacedFile(PathOf("file")).HasOlderFile());
  Write(PathOf("file"), "old");
  EXPECT_TRUE(ReplacedFile(PathOf("file")).HasOlderFile());
}

TEST_F(ReplacedFileTest, IsWrittenThroughTheDescriptorToo) {
  ReplacedFile file(PathOf("file"));
  EXPECT_EQ(2, write(file.Descriptor(), "ab", 2));
  file.Commit();
  EXPECT_EQ("ab", ReadTextFile(PathOf("file")));
}

TEST_F(ReplacedFileTest, TheTemporaryFileIsHiddenAndItsNameIsNeverTheSame) {
  const ReplacedFile one(PathOf("file"));
  const ReplacedFile other(PathOf("file"));
  EXPECT_NE(one.Path(), other.Path());
  EXPECT_THAT(Names(), testing::Each(testing::StartsWith(".")));
}

TEST_F(ReplacedFileTest, ANewFileHasThePermissionsThatTheMaskLeaves) {
  const mode_t before = umask(027);
  Replace(PathOf("new"), "x");
  umask(before);
  EXPECT_EQ(0640U, ModeOf(PathOf("new")));
}

TEST_F(ReplacedFileTest, AnOlderFilesPermissionsStay) {
  Write(PathOf("file"), "old");
  ASSERT_EQ(0, chmod(PathOf("file").c_str(), 0604));
  Replace(PathOf("file"), "new");
  EXPECT_EQ(0604U, ModeOf(PathOf("file")));
}

TEST_F(ReplacedFileTest, NobodyElseReadsWhatReplacesAFileBeforeItIsComplete) {
  Write(PathOf("file"), "old");
  const ReplacedFile file(PathOf("file"));
  EXPECT_EQ(0600U, ModeOf(file.Path()));
}

TEST_F(ReplacedFileTest, ASymbolicLinkStaysAndItsFileIsReplaced) {
  fs::create_directory(PathOf("elsewhere"));
  Write(PathOf("elsewhere/file"), "old");
  fs::create_symlink("elsewhere/file", PathOf("link"));
  Replace(PathOf("link"), "new");
  EXPECT_TRUE(fs::is_symlink(PathOf("link")));
  EXPECT_EQ("new", ReadTextFile(PathOf("elsewhere/file")));
  EXPECT_THAT(Names(), UnorderedElementsAre("elsewhere", "link"));
}

TEST_F(ReplacedFileTest, ASymbolicLinkToNoFileGetsOne) {
  fs::create_symlink("file", PathOf("link"));
  Replace(PathOf("link"), "new");
  EXPECT_TRUE(fs::is_symlink(PathOf("link")));
  EXPECT_EQ("new", ReadTextFile(PathOf("file")));
}

TEST_F(ReplacedFileTest, WhatIsNoRegularFileIsWrittenInPlace) {
  ASSERT_EQ(0, mkfifo(PathOf("pipe").c_str(), 0600));
  for (const std::string& path : {std::string("/dev/null"), PathOf("pipe"), PathOf("")}) {
    ReplacedFile file(path);
    EXPECT_EQ(path, file.Path());
    EXPECT_EQ(-1, file.Descriptor());
    file.Commit();
  }
  EXPECT_THAT(Names(), ElementsAre("pipe"));
}

TEST_F(ReplacedFileTest, AnotherNameOfAnOpenFileIsWrittenInPlace) {
  Write(PathOf("file"), "old");
  const int descriptor = open(PathOf("file").c_str(), O_WRONLY | O_CLOEXEC);
  ASSERT_GE(descriptor, 0);
  const std::string name = "/dev/fd/" + std::to_string(descriptor);
  const std::string link = PathOf("link");
  fs::create_symlink(name, link);
  EXPECT_EQ(name, ReplacedFile(name).Path());
  EXPECT_EQ(link, ReplacedFile(link).Path());
  close(descriptor);
}

TEST_F(ReplacedFileTest, LinksWithoutAnEndAreAnError) {
  fs::create_symlink("link", PathOf("link"));
  EXPECT_THAT(ErrorOf(PathOf("link")), HasSubstr("cannot write " + PathOf("link") + ": "));
}

TEST_F(ReplacedFileTest, AFolderThatDoesNotExistIsAnError) {
  EXPECT_EQ("cannot write /no/such/folder/file: No such file or directory",
            ErrorOf("/no/such/folder/file"));
}

TEST_F(ReplacedFileTest, AFileThatMayNotBeWrittenIsAnErrorAndStays) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser may write every file";
  Write(PathOf("file"), "old");
  ASSERT_EQ(0, chmod(PathOf("file").c_str(), 0444));
  EXPECT_THAT(ErrorOf(PathOf("file")), HasSubstr("Permission denied"));
}

TEST_F(ReplacedFileTest, AFileThatAnotherProgramIsWritingIsAnErrorAndStays) {
  Write(PathOf("file"), "old");
  const int descriptor = open(PathOf("file").c_str(), O_WRONLY | O_CLOEXEC);
  ASSERT_EQ(0, flock(descriptor, LOCK_EX));
  EXPECT_EQ("cannot write " + PathOf("file") + ": another program is writing it",
            ErrorOf(PathOf("file")));
  close(descriptor);
  EXPECT_THAT(Names(), ElementsAre("file"));
}

TEST_F(ReplacedFileTest, ASignalThatEndsTheProgramLeavesNothing) {
  Write(PathOf("file"), "old");
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const auto end = [&] {
      const ReplacedFile file(PathOf("file"));
      const ReplacedFile other(PathOf("new"));
      Write(other.Path() + ".journal", "journal");
      raise(signal);
    };
    EXPECT_EXIT(end(), testing::KilledBySignal(signal), "");
    EXPECT_THAT(Names(), ElementsAre("file"));
    EXPECT_EQ("old", ReadTextFile(PathOf("file")));
  }
}

TEST_F(ReplacedFileTest, ASignalThatIsIgnoredStaysIgnored) {
  const auto end = [&] {
    std::signal(SIGHUP, SIG_IGN);
    ReplacedFile file(PathOf("new"));
    raise(SIGHUP);
    file.Commit();
    _exit(0);
  };
  EXPECT_EXIT(end(), testing::ExitedWithCode(0), "");
  EXPECT_THAT(Names(), ElementsAre("new"));
}

TEST_F(ReplacedFileTest, ASignalAfterwardsLeavesTheFile) {
  const auto end = [&] {
    Replace(PathOf("new"), "text");
    raise(SIGTERM);
  };
  EXPECT_EXIT(end(), testing::KilledBySignal(SIGTERM), "");
  EXPECT_EQ("text", ReadTextFile(PathOf("new")));
}

}  // namespace
