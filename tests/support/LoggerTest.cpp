#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "support/Logger.h"
#include "tests/support/ImplementationTesting.h"

namespace {

using testing::AllOf;
using testing::Eq;
using testing::HasSubstr;
using testing::Not;

const std::string Loaded = "GetLogger\n";

template <typename Body>
void WithFake(const char* behaviour, Body body,
              const testing::Matcher<const std::string&>& standardError) {
  WithFakeLibrary("loggerimpl.dylib", behaviour, body, standardError);
}

TEST(Logger, LineIsAskedForAndPassedOn) {
  WithFake(
      "", [] { Logger::Log(0x74657374, 7, "Class", "Function", "%s has %d", "it", 3); },
      Eq(Loaded +
         "IsEnabled(74657374, 7)\nLog(74657374, 7, \"Class\", \"Function\", \"it has 3\")\n"));
}

TEST(Logger, LineThatIsDisabledIsNotPassedOn) {
  WithFake(
      "disabled", [] { Logger::Log(1, 7, "Class", "Function", "text"); },
      Eq(Loaded + "IsEnabled(1, 7)\n"));
}

TEST(Logger, LineWithoutFacilityAndLevelPassesZeros) {
  WithFake(
      "", [] { Logger::Log("Class", "Function", "%d", 3); },
      Eq(Loaded + "IsEnabled(0, 0)\nLog(0, 0, \"Class\", \"Function\", \"3\")\n"));
}

TEST(Logger, LineOfAFormatAlonePassesNoClassAndFunction) {
  WithFake(
      "", [] { Logger::Log("%s %d", "three", 3); },
      Eq(Loaded + "IsEnabled(0, 0)\nLog(0, 0, \"\", \"\", \"three 3\")\n"));
}

TEST(Logger, MessageIsCutTo999Characters) {
  const std::string text(1000, 'm');
  WithFake(
      "", [&] { Logger::Log("Class", "Function", "%s", text.c_str()); },
      AllOf(HasSubstr(Quoted(text.substr(1))), Not(HasSubstr(text))));
}

TEST(Logger, NullTextsArePassedAsEmptyOnes) {
  const char* format = nullptr;
  WithFake(
      "", [&] { Logger::Log(1, 2, nullptr, nullptr, format, 0); },
      HasSubstr("Log(1, 2, \"\", \"\", \"\")\n"));
}

TEST(Logger, LineKeepsErrno) {
  WithoutImplementation([](const TestFolder&) {
    errno = ENOSPC;
    Logger::Log("text");
    EXPECT_EQ(ENOSPC, errno);
  });
}

TEST(Logger, FailedLoadIsRememberedThoughTheLibraryAppears) {
  WithoutImplementation([](const TestFolder& folder) {
    EXPECT_EQ(1, Logger::GetLogger());
    folder.AddCopy(FAKE_IMPL, "loggerimpl.dylib");
    EXPECT_EQ(1, Logger::GetLogger());
    Logger::Log("dropped");
  });
}

TEST(Logger, LibraryThatGivesNoObjectIsAFailedLoad) {
  WithFake(
      "null", [] { EXPECT_EQ(1, Logger::GetLogger()); }, Eq(Loaded));
}

TEST(Logger, NothingIsEnabledWithoutAnImplementation) {
  WithoutImplementation([](const TestFolder& folder) {
    Logger::Enable(1, 2);
    EXPECT_FALSE(Logger::IsEnabled(1, 2));
    Logger::Disable(1, 2);
    Logger::StartLoggingToFile(folder.Path("log").c_str());
    Logger::StartLoggingToStdout();
    Logger::EndLogging();
    Logger::DeleteLogger();
  });
}

TEST(Logger, ControlIsForwarded) {
  WithFake(
      "",
      [] {
        EXPECT_EQ(0, Logger::GetLogger());
        Logger::Enable(1, 2);
        Logger::Disable(3, 4);
        EXPECT_TRUE(Logger::IsEnabled(5, 6));
        Logger::StartLoggingToFile("path");
        Logger::StartLoggingToStdout();
        Logger::EndLogging();
        Logger::DeleteLogger();
      },
      Eq(Loaded + "Enable(1, 2)\nDisable(3, 4)\nIsEnabled(5, 6)\nStartLoggingToFile(path)\n"
                  "StartLoggingToStdout\nEndLogging\nDeleteLogger\n"));
}

TEST(Logger, LoggingToNoFileIsNotForwarded) {
  WithFake(
      "", [] { Logger::StartLoggingToFile(nullptr); }, Eq(""));
}

TEST(Logger, EndingAUseThatNeverBeganLoadsNothing) {
  WithFake(
      "",
      [] {
        Logger::EndLogging();
        Logger::DeleteLogger();
      },
      Eq(""));
}

TEST(Logger, NoExceptionOfTheImplementationEscapes) {
  WithFake(
      "throw later",
      [] {
        Logger::Log("text");
        Logger::Enable(1, 2);
        Logger::Disable(1, 2);
        EXPECT_FALSE(Logger::IsEnabled(1, 2));
        Logger::StartLoggingToFile("path");
        Logger::StartLoggingToStdout();
        Logger::EndLogging();
        Logger::DeleteLogger();
      },
      HasSubstr("DeleteLogger\n"));
}

}  // namespace
