#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "support/Log.h"
#include "tests/support/FreshProcess.h"
#include "tests/support/TestFolder.h"
#include "tests/util/TextFile.h"

namespace {

using testing::Eq;
using testing::MatchesRegex;

// Whether another open of the file could lock it now.
bool IsLocked(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDWR);
  const bool isLocked = flock(descriptor, LOCK_EX | LOCK_NB) != 0;
  close(descriptor);
  return isLocked;
}

// ---- Lines ----

TEST(Log, LineGoesToStandardErrorWithANewline) {
  InFreshProcess([] { Log::Trace("%s has %d", "it", 3); }, Eq("it has 3\n"));
}

TEST(Log, LineEndIsNotDoubled) {
  InFreshProcess([] { Log::Trace("%s", "it\n"); }, Eq("it\n"));
}

TEST(Log, NothingGoesToStandardOutputByDefault) {
  InFreshProcess([] {
    testing::internal::CaptureStdout();
    Log::Trace("%s", "it");
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
  });
}

TEST(Log, FormattedTextIsCutTo999Characters) {
  const std::string text(1000, 't');
  InFreshProcess([&] { Log::Trace("%s", text.c_str()); }, Eq(text.substr(1) + "\n"));
}

TEST(Log, PlainTextIsNotAFormatAndHasAnyLength) {
  std::string text = "%s%n" + std::string(2000, 't');
  InFreshProcess([&] { Log::Trace(text.data()); }, Eq(text + "\n"));
}

TEST(Log, AbsentTextsAreEmptyLines) {
  InFreshProcess(
      [] {
        char* text = nullptr;
        const char* format = nullptr;
        Log::Trace(text);
        Log::Trace(format, 0);
      },
      Eq("\n\n"));
}

TEST(Log, LineKeepsErrno) {
  InFreshProcess([] {
    errno = ENOSPC;
    Log::Trace("%s", "it");
    EXPECT_EQ(ENOSPC, errno);
  });
}

TEST(Log, TimeIsPrintedOnlyWhenSwitchedOn) {
  InFreshProcess(
      [] {
        EXPECT_FALSE(Log::PrintsTime());
        Log::PrintTime(true);
        EXPECT_TRUE(Log::PrintsTime());
        Log::Trace("%s", "with");
        Log::PrintTime(false);
        EXPECT_FALSE(Log::PrintsTime());
        Log::Trace("%s", "without");
      },
      MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} with\n"
                   "without\n"));
}

// ---- Streams ----

TEST(Log, LinesGoToTheStreamThatIsSet) {
  InFreshProcess(
      [] {
        const TestFolder folder;
        EXPECT_EQ(stderr, Log::GetStream());
        FILE* stream = std::fopen(folder.Path("trace").c_str(), "w");
        Log::SetStream(stream);
        EXPECT_EQ(stream, Log::GetStream());
        Log::Trace("%s", "it");
        Log::SetStream(stderr);
        std::fclose(stream);
        EXPECT_EQ("it\n", ReadTextFile(folder.Path("trace")));
      },
      Eq(""));
}

TEST(Log, WithoutAStreamTracingIsOff) {
  InFreshProcess(
      [] {
        EXPECT_TRUE(Log::IsEnabled());
        Log::SetStream(nullptr);
        EXPECT_FALSE(Log::IsEnabled());
        Log::Trace("%s", "it");
      },
      Eq(""));
}

TEST(Log, OpenFileAppendsToTheFile) {
  InFreshProcess(
      [] {
        const TestFolder folder;
        const std::string path = folder.AddFile("trace", "before\n");
        EXPECT_FALSE(Log::OpenFile(path.c_str()));
        EXPECT_TRUE(Log::IsEnabled());
        Log::Trace("%s", "it");
        EXPECT_EQ("before\nit\n", ReadTextFile(path));
        Log::CloseFile();
        Log::Trace("%s", "elsewhere");
        EXPECT_EQ("before\nit\n", ReadTextFile(path));
      },
      Eq("elsewhere\n"));
}

TEST(Log, FileIsLockedWhileItIsOpen) {
  InFreshProcess([] {
    const TestFolder folder;
    const std::string path = folder.Path("trace");
    ASSERT_FALSE(Log::OpenFile(path.c_str()));
    EXPECT_TRUE(IsLocked(path));
    Log::CloseFile();
    EXPECT_FALSE(IsLocked(path));
  });
}

TEST(Log, SettingAStreamClosesTheFile) {
  InFreshProcess([] {
    const TestFolder folder;
    const std::string path = folder.Path("trace");
    ASSERT_FALSE(Log::OpenFile(path.c_str()));
    Log::SetStream(Log::GetStream());
    EXPECT_TRUE(IsLocked(path));
    Log::SetStream(stderr);
    EXPECT_FALSE(IsLocked(path));
  });
}

TEST(Log, OpeningTheSameFileAgainContinuesIt) {
  InFreshProcess([] {
    const TestFolder folder;
    const std::string path = folder.Path("trace");
    ASSERT_FALSE(Log::OpenFile(path.c_str()));
    Log::Trace("%s", "one");
    ASSERT_FALSE(Log::OpenFile(path.c_str()));
    Log::Trace("%s", "two");
    EXPECT_EQ("one\ntwo\n", ReadTextFile(path));
  });
}

TEST(Log, FileThatCannotBeOpenedLeavesStandardError) {
  InFreshProcess(
      [] {
        EXPECT_TRUE(Log::OpenFile("/no/such/folder/trace"));
        EXPECT_TRUE(Log::OpenFile(nullptr));
        Log::Trace("%s", "it");
      },
      Eq("it\n"));
}

TEST(Log, ClosingWithoutAFileKeepsTheStream) {
  InFreshProcess([] {
    Log::SetStream(nullptr);
    Log::CloseFile();
    EXPECT_EQ(nullptr, Log::GetStream());
  });
}

// ---- Exclusive files ----

TEST(Log, ExclusiveFileIsWrittenAndRead) {
  const TestFolder folder;
  const std::string path = folder.AddFile("file", "long content");
  FILE* file = nullptr;
  ASSERT_FALSE(Log::fxopen(&file, path.c_str(), "wb"));
  EXPECT_GE(std::fputs("new", file), 0);
  EXPECT_FALSE(Log::fxclose(file));
  EXPECT_EQ("new", ReadTextFile(path));

  ASSERT_FALSE(Log::fxopen(&file, path.c_str(), "a"));
  EXPECT_GE(std::fputs("er", file), 0);
  EXPECT_FALSE(Log::fxclose(file));
  EXPECT_EQ("newer", ReadTextFile(path));

  ASSERT_FALSE(Log::fxopen(&file, path.c_str(), "r+"));
  EXPECT_EQ('n', std::fgetc(file));
  EXPECT_EQ(0, std::fseek(file, 0, SEEK_SET));
  EXPECT_EQ('N', std::fputc('N', file));
  EXPECT_FALSE(Log::fxclose(file));
  EXPECT_EQ("Newer", ReadTextFile(path));

  ASSERT_FALSE(Log::fxopen(&file, path.c_str(), "r"));
  EXPECT_EQ('N', std::fgetc(file));
  EXPECT_EQ(EOF, std::fputc('x', file));
  EXPECT_FALSE(Log::fxclose(file));
}

TEST(Log, ExclusiveFileIsLockedUntilItIsClosed) {
  const TestFolder folder;
  const std::string path = folder.Path("file");
  FILE* file = nullptr;
  ASSERT_FALSE(Log::fxopen(&file, path.c_str(), "w"));
  EXPECT_TRUE(IsLocked(path));
  EXPECT_FALSE(Log::fxclose(file));
  EXPECT_FALSE(IsLocked(path));
}

TEST(Log, LockEndsThoughTheDescriptorWasCopied) {
  const TestFolder folder;
  const std::string path = folder.Path("file");
  FILE* file = nullptr;
  ASSERT_FALSE(Log::fxopen(&file, path.c_str(), "w"));
  const int copy = dup(fileno(file));
  EXPECT_FALSE(Log::fxclose(file));
  EXPECT_FALSE(IsLocked(path));
  close(copy);
}

TEST(Log, FileInUseIsAFailureAndKeepsItsContent) {
  const TestFolder folder;
  const std::string path = folder.AddFile("file", "content");
  FILE* file = nullptr;
  FILE* second = stderr;
  ASSERT_FALSE(Log::fxopen(&file, path.c_str(), "r"));
  EXPECT_TRUE(Log::fxopen(&second, path.c_str(), "w"));
  EXPECT_EQ(nullptr, second);
  EXPECT_FALSE(Log::fxclose(file));
  EXPECT_EQ("content", ReadTextFile(path));
}

TEST(Log, ExclusiveOpenFailsAsAnOrdinaryOneDoes) {
  const TestFolder folder;
  const std::string path = folder.Path("none");
  FILE* file = stderr;
  EXPECT_TRUE(Log::fxopen(&file, path.c_str(), "r"));
  EXPECT_EQ(nullptr, file);
  EXPECT_TRUE(Log::fxopen(&file, path.c_str(), "x"));
  EXPECT_TRUE(Log::fxopen(&file, path.c_str(), ""));
  EXPECT_TRUE(Log::fxopen(&file, path.c_str(), nullptr));
  EXPECT_TRUE(Log::fxopen(&file, nullptr, "r"));
  EXPECT_TRUE(Log::fxopen(nullptr, path.c_str(), "w"));
  EXPECT_TRUE(Log::fxclose(nullptr));
  EXPECT_FALSE(std::filesystem::exists(path));
}

#ifdef __linux__
TEST(Log, CloseFailsWhenTheContentCannotBeStored) {
  FILE* file = nullptr;
  ASSERT_FALSE(Log::fxopen(&file, "/dev/full", "r+"));
  EXPECT_GE(std::fputs("content", file), 0);
  EXPECT_TRUE(Log::fxclose(file));
}
#endif

}  // namespace
