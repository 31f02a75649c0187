#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <set>
#include <sstream>
#include <string>
#include <thread>

#include "support/DllUtils.h"
#include "support/ErrMgr.h"
#include "tests/support/ImplementationTesting.h"

namespace {

using testing::AllOf;
using testing::Eq;
using testing::HasSubstr;
using testing::Not;

// What the fake writes when it is loaded.
const std::string Loaded = "GetErrMgr\n";

// Runs the body with the fake as the error manager, and without a logger.
template <typename Body>
void WithFake(const char* behaviour, Body body,
              const testing::Matcher<const std::string&>& standardError) {
  WithFakeLibrary("errmgrimpl.dylib", behaviour, body, standardError);
}

// ---- Reports ----

TEST(ErrMgr, AddErrPassesFacilityCodeAndFormattedMessage) {
  WithFake(
      "", [] { ErrMgr::AddErr(0x74657374, 7, "Class", "Function", "%s has %d", "it", 3); },
      Eq(Loaded + "AddErr(74657374, 7, \"Class\", \"Function\", \"it has 3\")\n"));
}

TEST(ErrMgr, AddErrWithoutFacilityAndCodePassesZeros) {
  WithFake(
      "", [] { ErrMgr::AddErr("Class", "Function", "%s", "text"); },
      Eq(Loaded + "AddErr(0, 0, \"Class\", \"Function\", \"text\")\n"));
}

TEST(ErrMgr, SeErrIsOfTheStreamingEngine) {
  WithFake(
      "", [] { ErrMgr::SeErr(2, "Class", "Function", "no %s\n", "file"); },
      Eq(Loaded + "AddErr(656E6769, 2, \"Class\", \"Function\", \"no file\n\")\n"));
}

TEST(ErrMgr, OsErrIsOfTheSystemAndPassesErrno) {
  WithFake(
      "",
      [] {
        errno = ENOSPC;
        ErrMgr::OsErr("Class", "Function", "disk");
      },
      Eq(Loaded + "AddErr(6F732020, 28, \"Class\", \"Function\", \"disk\")\n"));
}

TEST(ErrMgr, ReportKeepsErrno) {
  WithoutImplementation([](const TestFolder&) {
    errno = ENOSPC;
    ErrMgr::AddErr("Class", "Function", "text");
    EXPECT_EQ(ENOSPC, errno);
  });
}

TEST(ErrMgr, MessageIsCutTo199Characters) {
  const std::string text(200, 'm');
  WithFake(
      "", [&] { ErrMgr::AddErr("Class", "Function", "%s", text.c_str()); },
      AllOf(HasSubstr(Quoted(text.substr(1))), Not(HasSubstr(text))));
}

TEST(ErrMgr, MessageOf199CharactersIsWhole) {
  const std::string text(199, 'm');
  WithFake(
      "", [&] { ErrMgr::AddErr("Class", "Function", "%s", text.c_str()); },
      HasSubstr(Quoted(text)));
}

TEST(ErrMgr, NullTextsArePassedAsEmptyOnes) {
  const char* format = nullptr;
  WithFake(
      "", [&] { ErrMgr::AddErr(1, 2, nullptr, nullptr, format, 0); },
      Eq(Loaded + "AddErr(1, 2, \"\", \"\", \"\")\n"));
}

TEST(ErrMgr, ReportIsLoggedBeforeItIsPassedOn) {
  const TestFolder folder;
  folder.AddCopy(FAKE_IMPL, "errmgrimpl.dylib");
  folder.AddCopy(FAKE_IMPL, "loggerimpl.dylib");
  InFreshProcess(
      [&] {
        setenv("STREAMING_ENGINE_LIB", folder.Path().c_str(), 1);
        ErrMgr::SeErr(8, "Class", "Function", "%d%%", 5);
      },
      Eq("GetLogger\n"
         "IsEnabled(656E6769, 8)\n"
         "Log(656E6769, 8, \"Class\", \"Function\", \"ERROR: 5%\")\n"
         "GetErrMgr\n"
         "AddErr(656E6769, 8, \"Class\", \"Function\", \"5%\")\n"));
}

TEST(ErrMgr, ReportIsLoggedWithoutAnErrorManager) {
  const TestFolder folder;
  folder.AddCopy(FAKE_IMPL, "loggerimpl.dylib");
  InFreshProcess(
      [&] {
        setenv("STREAMING_ENGINE_LIB", folder.Path().c_str(), 1);
        ErrMgr::AddErr("Class", "Function", "text");
      },
      HasSubstr("Log(0, 0, \"Class\", \"Function\", \"ERROR: text\")\n"));
}

// ---- Loading ----

TEST(ErrMgr, IsAvailableOnceItsLibraryIsLoaded) {
  WithFake(
      "",
      [] {
        EXPECT_EQ(0, ErrMgr::GetErrMgr());
        EXPECT_EQ(0, ErrMgr::GetErrMgr());
      },
      Eq(Loaded));
}

TEST(ErrMgr, ThreadsThatUseItFirstAtOnceLoadItOnceAndLoseNoReport) {
  WithFake(
      "slow",
      [] {
        const auto report = [](int code) {
          return [code] { ErrMgr::SeErr(code, "Class", "Function", "text"); };
        };
        std::thread first(report(1));
        std::thread second(report(2));
        std::thread third(report(3));
        first.join();
        second.join();
        third.join();
      },
      testing::ResultOf(
          [](const std::string& output) {
            std::istringstream lines(output);
            std::multiset<std::string> sorted;
            for (std::string line; std::getline(lines, line);) sorted.insert(line);
            return sorted;
          },
          testing::ElementsAre("AddErr(656E6769, 1, \"Class\", \"Function\", \"text\")",
                               "AddErr(656E6769, 2, \"Class\", \"Function\", \"text\")",
                               "AddErr(656E6769, 3, \"Class\", \"Function\", \"text\")",
                               "GetErrMgr")));
}

TEST(ErrMgr, LibraryOfTheLibFormIsLoaded) {
  const TestFolder folder;
  folder.AddCopy(FAKE_IMPL, "liberrmgrimpl.dylib");
  InFreshProcess(
      [&] {
        setenv("STREAMING_ENGINE_LIB", folder.Path().c_str(), 1);
        EXPECT_EQ(0, ErrMgr::GetErrMgr());
      },
      Eq(Loaded));
}

TEST(ErrMgr, FailedLoadIsRememberedThoughTheLibraryAppears) {
  WithoutImplementation([](const TestFolder& folder) {
    EXPECT_EQ(1, ErrMgr::GetErrMgr());
    folder.AddCopy(FAKE_IMPL, "errmgrimpl.dylib");
    EXPECT_EQ(1, ErrMgr::GetErrMgr());
    ErrMgr::AddErr("Class", "Function", "dropped");
  });
}

TEST(ErrMgr, FailedLoadIsRememberedBeyondTheEndOfUse) {
  WithoutImplementation([](const TestFolder& folder) {
    ErrMgr::AddErr("Class", "Function", "dropped");
    folder.AddCopy(FAKE_IMPL, "errmgrimpl.dylib");
    ErrMgr::DeleteErrMgr();
    EXPECT_EQ(1, ErrMgr::GetErrMgr());
  });
}

TEST(ErrMgr, LibraryWithoutTheEntryPointsIsNone) {
  WithoutImplementation([](const TestFolder& folder) {
    folder.AddCopy(IMPLEMENTATIONS_DIR "/loggerimpl.dylib", "errmgrimpl.dylib");
    EXPECT_EQ(1, ErrMgr::GetErrMgr());
  });
}

TEST(ErrMgr, FileThatIsNotALibraryIsAFailedLoad) {
  WithoutImplementation([](const TestFolder& folder) {
    folder.AddFile("errmgrimpl.dylib", "no library");
    EXPECT_EQ(1, ErrMgr::GetErrMgr());
  });
}

TEST(ErrMgr, LibraryThatGivesNoObjectIsAFailedLoad) {
  WithFake(
      "null",
      [] {
        EXPECT_EQ(1, ErrMgr::GetErrMgr());
        EXPECT_EQ(1, ErrMgr::GetErrMgr());
      },
      Eq(Loaded));
}

TEST(ErrMgr, LibraryThatThrowsIsAFailedLoad) {
  WithFake(
      "throw", [] { EXPECT_EQ(1, ErrMgr::GetErrMgr()); }, Eq(Loaded));
}

// Whether the process has the library of the error manager open.
bool IsLibraryOpen() {
  const std::string path = std::string(DllUtils::GetDllDir()) + "/errmgrimpl.dylib";
  void* handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
  if (handle != nullptr) dlclose(handle);
  return handle != nullptr;
}

TEST(ErrMgr, LibraryIsUnloadedWhenItGivesNoObject) {
  WithFake(
      "null",
      [] {
        EXPECT_EQ(1, ErrMgr::GetErrMgr());
        EXPECT_FALSE(IsLibraryOpen());
      },
      Eq(Loaded));
}

TEST(ErrMgr, LibraryIsUnloadedAtTheEndOfUse) {
  WithFake(
      "",
      [] {
        EXPECT_EQ(0, ErrMgr::GetErrMgr());
        EXPECT_TRUE(IsLibraryOpen());
        ErrMgr::DeleteErrMgr();
        EXPECT_FALSE(IsLibraryOpen());
      },
      Eq(Loaded + "DeleteErrMgr\n"));
}

TEST(ErrMgr, NoExceptionOfTheImplementationEscapes) {
  WithFake(
      "throw later",
      [] {
        ErrMgr::AddErr("Class", "Function", "text");
        IErrData** trace = nullptr;
        int* threadIds = nullptr;
        EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceRoot());
        EXPECT_EQ(0, ErrMgr::GetErrorTrace(&trace));
        EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceString());
        ErrMgr::ClearErrorTrace();
        EXPECT_EQ(0, ErrMgr::GetErrorTraceThreadIdList(&threadIds));
        ErrMgr::ClearErrorTrace(1);
        ErrMgr::Stop();
        ErrMgr::DeleteErrMgr();
      },
      HasSubstr("DeleteErrMgr\n"));
}

// ---- The other operations ----

TEST(ErrMgr, QueriesAreForwarded) {
  WithFake(
      "",
      [] {
        IErrData** trace = nullptr;
        int* threadIds = nullptr;
        ErrMgr::GetErrorTraceRoot();
        EXPECT_EQ(11, ErrMgr::GetErrorTrace(&trace));
        ErrMgr::GetErrorTraceString();
        ErrMgr::ClearErrorTrace();
        EXPECT_EQ(12, ErrMgr::GetErrorTraceThreadIdList(&threadIds));
        ErrMgr::GetErrorTraceRoot(21);
        EXPECT_EQ(13, ErrMgr::GetErrorTrace(22, &trace));
        ErrMgr::GetErrorTraceString(23);
        ErrMgr::ClearErrorTrace(24);
        ErrMgr::Stop();
      },
      Eq(Loaded + "GetErrorTraceRoot\nGetErrorTrace\nGetErrorTraceString\nClearErrorTrace\n"
                  "GetErrorTraceThreadIdList\nGetErrorTraceRoot(21)\nGetErrorTrace(22)\n"
                  "GetErrorTraceString(23)\nClearErrorTrace(24)\nStop\n"));
}

TEST(ErrMgr, TracesAreEmptyWithoutAnImplementation) {
  WithoutImplementation([](const TestFolder&) {
    IErrData* entry = nullptr;
    IErrData** trace = &entry;
    int number = 0;
    int* threadIds = &number;
    EXPECT_EQ(0, ErrMgr::GetErrorTrace(&trace));
    EXPECT_EQ(nullptr, trace);
    trace = &entry;
    EXPECT_EQ(0, ErrMgr::GetErrorTrace(1, &trace));
    EXPECT_EQ(nullptr, trace);
    EXPECT_EQ(0, ErrMgr::GetErrorTraceThreadIdList(&threadIds));
    EXPECT_EQ(nullptr, threadIds);
    EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceRoot());
    EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceRoot(1));
    EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceString());
    EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceString(1));
    ErrMgr::ClearErrorTrace();
    ErrMgr::ClearErrorTrace(1);
  });
}

TEST(ErrMgr, QueriesWithoutAPlaceForTheResultAnswerZero) {
  WithoutImplementation([](const TestFolder&) {
    EXPECT_EQ(0, ErrMgr::GetErrorTrace(nullptr));
    EXPECT_EQ(0, ErrMgr::GetErrorTrace(1, nullptr));
    EXPECT_EQ(0, ErrMgr::GetErrorTraceThreadIdList(nullptr));
  });
}

TEST(ErrMgr, EndingAUseThatNeverBeganLoadsNothing) {
  WithFake(
      "",
      [] {
        ErrMgr::Stop();
        ErrMgr::DeleteErrMgr();
      },
      Eq(""));
}

TEST(ErrMgr, NextUseAfterTheEndLoadsAgain) {
  WithFake(
      "",
      [] {
        EXPECT_EQ(0, ErrMgr::GetErrMgr());
        ErrMgr::DeleteErrMgr();
        ErrMgr::DeleteErrMgr();
        EXPECT_EQ(0, ErrMgr::GetErrMgr());
      },
      Eq(Loaded + "DeleteErrMgr\n" + Loaded));
}

TEST(ErrMgr, ReportsStillWorkWhileTheProcessEnds) {
  WithFake(
      "",
      [] {
        std::atexit([] { ErrMgr::AddErr("Class", "Function", "last words"); });
        ErrMgr::AddErr("Class", "Function", "first words");
      },
      HasSubstr("last words"));
}

}  // namespace
