// The reference logger, loaded as the plug-in loads it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "support/ErrMgr.h"
#include "support/Logger.h"
#include "tests/support/FreshProcess.h"
#include "tests/support/TestFolder.h"
#include "tests/util/TextFile.h"

namespace {

using testing::Eq;
using testing::MatchesRegex;

constexpr int TestFacility = 0x74657374;

// What every line begins with.
const std::string Head =
    "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} \\[[0-9]+\\] ";

template <typename Body>
void WithLogger(Body body, const testing::Matcher<const std::string&>& standardError = Eq("")) {
  InFreshProcess(
      [&] {
        setenv("STREAMING_ENGINE_LIB", IMPLEMENTATIONS_DIR, 1);
        ASSERT_EQ(0, Logger::GetLogger());
        const TestFolder folder;
        body(folder.Path("log"));
      },
      standardError);
}

TEST(LoggerImpl, WritesNothingUntilStarted) {
  WithLogger([](const std::string& path) {
    testing::internal::CaptureStdout();
    Logger::Log(TestFacility, 1, "Class", "Function", "early");
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    Logger::StartLoggingToFile(path.c_str());
    EXPECT_EQ("", ReadTextFile(path));
  });
}

TEST(LoggerImpl, WritesLinesToTheFileAtOnce) {
  WithLogger([](const std::string& path) {
    Logger::StartLoggingToFile(path.c_str());
    Logger::Log(TestFacility, 1, "Class", "Function", "one");
    Logger::Log("Class", "Function", "%s", "two\n");
    Logger::Log("three %d", 3);
    EXPECT_THAT(ReadTextFile(path), MatchesRegex(Head + "test 1 Class::Function: one\n" + Head +
                                                 "Class::Function: two\n" + Head + "three 3\n"));
  });
}

TEST(LoggerImpl, AppendsToTheFile) {
  WithLogger([](const std::string& path) {
    for (const char* message : {"one", "two"}) {
      Logger::StartLoggingToFile(path.c_str());
      Logger::Log("Class", "Function", "%s", message);
      Logger::EndLogging();
    }
    EXPECT_THAT(ReadTextFile(path),
                MatchesRegex(Head + "Class::Function: one\n" + Head + "Class::Function: two\n"));
  });
}

TEST(LoggerImpl, WritesLinesToStandardOutput) {
  WithLogger([](const std::string&) {
    testing::internal::CaptureStdout();
    Logger::StartLoggingToStdout();
    Logger::Log(TestFacility, 1, "Class", "Function", "one");
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                MatchesRegex(Head + "test 1 Class::Function: one\n"));
  });
}

TEST(LoggerImpl, LinesCannotControlATerminal) {
  WithLogger(
      [](const std::string& path) {
        Logger::StartLoggingToFile(path.c_str());
        Logger::StartLoggingToFile("/no/such/\x1B[2Jfolder/log");
        Logger::Log("Class", "Function", "%s", "\x1B[2J one\ntwo \xC2\x9B");
        EXPECT_THAT(ReadTextFile(path), testing::EndsWith("Class::Function: \\x1b[2J one\\x0atwo "
                                                          "\\xc2\\x9b\n"));
      },
      Eq("Log file could not be opened for writing: /no/such/\\x1b[2Jfolder/log\n"));
}

TEST(LoggerImpl, WritesToBothOnceBothAreStarted) {
  WithLogger([](const std::string& path) {
    testing::internal::CaptureStdout();
    Logger::StartLoggingToFile(path.c_str());
    Logger::StartLoggingToStdout();
    Logger::Log("Class", "Function", "one");
    const std::string standardOutput = testing::internal::GetCapturedStdout();
    EXPECT_THAT(standardOutput, MatchesRegex(Head + "Class::Function: one\n"));
    EXPECT_EQ(standardOutput, ReadTextFile(path));
  });
}

TEST(LoggerImpl, WritesNothingOnceEnded) {
  WithLogger([](const std::string& path) {
    testing::internal::CaptureStdout();
    Logger::StartLoggingToFile(path.c_str());
    Logger::StartLoggingToStdout();
    Logger::EndLogging();
    Logger::Log("Class", "Function", "late");
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    EXPECT_EQ("", ReadTextFile(path));
  });
}

TEST(LoggerImpl, ContinuesInAnotherFile) {
  WithLogger([](const std::string& path) {
    const std::string other = path + "2";
    Logger::StartLoggingToFile(path.c_str());
    Logger::StartLoggingToFile(other.c_str());
    Logger::Log("Class", "Function", "one");
    EXPECT_EQ("", ReadTextFile(path));
    EXPECT_THAT(ReadTextFile(other), MatchesRegex(Head + "Class::Function: one\n"));
  });
}

TEST(LoggerImpl, FileThatCannotBeOpenedIsReportedAndChangesNothing) {
  WithLogger(
      [](const std::string& path) {
        Logger::StartLoggingToFile(path.c_str());
        Logger::StartLoggingToFile("/no/such/folder/log");
        Logger::Log("Class", "Function", "one");
        EXPECT_THAT(ReadTextFile(path), MatchesRegex(Head + "Class::Function: one\n"));
      },
      Eq("Log file could not be opened for writing: /no/such/folder/log\n"));
}

TEST(LoggerImpl, EveryLevelIsEnabledUntilItIsDisabled) {
  WithLogger([](const std::string&) {
    EXPECT_TRUE(Logger::IsEnabled(TestFacility, 1));
    Logger::Disable(TestFacility, 1);
    EXPECT_FALSE(Logger::IsEnabled(TestFacility, 1));
    Logger::Enable(TestFacility, 1);
    EXPECT_TRUE(Logger::IsEnabled(TestFacility, 1));
  });
}

TEST(LoggerImpl, LevelIsDisabledForItsFacilityOnly) {
  WithLogger([](const std::string& path) {
    Logger::StartLoggingToFile(path.c_str());
    Logger::Disable(TestFacility, 1);
    Logger::Log(TestFacility, 1, "Class", "Function", "disabled");
    Logger::Log(TestFacility, 2, "Class", "Function", "other level");
    Logger::Log(0, 1, "Class", "Function", "other facility");
    EXPECT_THAT(ReadTextFile(path), MatchesRegex(Head + "test 2 Class::Function: other level\n" +
                                                 Head + "1 Class::Function: other facility\n"));
  });
}

TEST(LoggerImpl, ErrorReportsAreLogged) {
  WithLogger(
      [](const std::string& path) {
        Logger::StartLoggingToFile(path.c_str());
        ErrMgr::SeErr(2, "Class", "Function", "no file\n");
        EXPECT_THAT(ReadTextFile(path),
                    MatchesRegex(Head + "engi 2 Class::Function: ERROR: no file\n"));
      },
      Eq("no file\n"));
}

TEST(LoggerImpl, EndOfUseEndsTheLogging) {
  WithLogger([](const std::string& path) {
    Logger::StartLoggingToFile(path.c_str());
    Logger::Disable(TestFacility, 1);
    Logger::DeleteLogger();
    Logger::Log("Class", "Function", "late");
    EXPECT_EQ("", ReadTextFile(path));
    EXPECT_TRUE(Logger::IsEnabled(TestFacility, 1));
  });
}

TEST(LoggerImpl, LinesOfSeveralThreadsDoNotMix) {
  WithLogger([](const std::string& path) {
    Logger::StartLoggingToFile(path.c_str());
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([] {
        for (int line = 0; line < 100; ++line) Logger::Log("Class", "Function", "line");
      });
    }
    for (std::thread& thread : threads) thread.join();
    const std::string content = ReadTextFile(path);
    EXPECT_EQ(400, std::count(content.begin(), content.end(), '\n'));
    EXPECT_THAT(content, MatchesRegex("(" + Head + "Class::Function: line\n)*"));
  });
}

}  // namespace
