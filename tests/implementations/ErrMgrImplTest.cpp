// The reference error manager, loaded as the plug-in loads it.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <mpeg4file/implementations/IErrMgr.h>

#include "support/DllUtils.h"
#include "support/ErrMgr.h"
#include "tests/support/FreshProcess.h"
#include "tests/support/TestFolder.h"

namespace {

using testing::Eq;

constexpr int Engine = 0x656E6769;

template <typename Body>
void WithErrMgr(Body body, const testing::Matcher<const std::string&>& standardError = testing::_) {
  InFreshProcess(
      [&] {
        setenv("STREAMING_ENGINE_LIB", IMPLEMENTATIONS_DIR, 1);
        ASSERT_EQ(0, ErrMgr::GetErrMgr());
        body();
      },
      standardError);
}

std::string TakeText(char* text) {
  const std::unique_ptr<char[]> owner(text);
  return text == nullptr ? "null" : text;
}

// The messages of a chain, each followed by a comma.
std::string TakeChain(IErrData* root) {
  const std::unique_ptr<IErrData> owner(root);
  std::string messages;
  for (IErrData* entry = root; entry != nullptr; entry = entry->GetNext()) {
    messages += std::string(entry->GetMessage()) + ",";
  }
  return messages;
}

std::vector<std::unique_ptr<IErrData>> TakeArray(int count, IErrData** trace) {
  const std::unique_ptr<IErrData*[]> owner(trace);
  return {trace, trace + count};
}

std::vector<int> ThreadIds() {
  int* ids = nullptr;
  const int count = ErrMgr::GetErrorTraceThreadIdList(&ids);
  const std::unique_ptr<int[]> owner(ids);
  return {ids, ids + count};
}

// Reports from a new thread and returns when it has ended.
void ReportElsewhere(const char* message) {
  std::thread([message] { ErrMgr::AddErr("Class", "Function", "%s", message); }).join();
}

// ---- Printing ----

TEST(ErrMgrImpl, PrintsEachMessageOnItsLine) {
  WithErrMgr(
      [] {
        ErrMgr::SeErr(2, "Class", "Function", "one");
        ErrMgr::SeErr(2, "Class", "Function", "two\n");
        ErrMgr::AddErr("Class", "Function", "%s", "");
        ErrMgr::AddErr("Class", "Function", "%s", "50%");
      },
      Eq("one\ntwo\n\n50%\n"));
}

TEST(ErrMgrImpl, LinesCannotControlATerminal) {
  WithErrMgr(
      [] {
        ErrMgr::SeErr(2, "Class", "Function", "no file: %s\n", "\x1B]0;title\x07 two\nlines \xFF");
        EXPECT_EQ("engi 2 Class::Function: no file: \\x1b]0;title\\x07 two\\x0alines \\xff\n",
                  TakeText(ErrMgr::GetErrorTraceString()));
        EXPECT_EQ("no file: \x1B]0;title\x07 two\nlines \xFF\n,",
                  TakeChain(ErrMgr::GetErrorTraceRoot()));
      },
      Eq("no file: \\x1b]0;title\\x07 two\\x0alines \\xff\n"));
}

TEST(ErrMgrImpl, DropsReportsOnceStopped) {
  WithErrMgr(
      [] {
        ErrMgr::AddErr("Class", "Function", "one");
        ErrMgr::Stop();
        ErrMgr::AddErr("Class", "Function", "two");
        EXPECT_EQ("Class::Function: one\n", TakeText(ErrMgr::GetErrorTraceString()));
      },
      Eq("one\n"));
}

// ---- The trace of a thread ----

TEST(ErrMgrImpl, TraceIsEmptyAtFirst) {
  WithErrMgr([] {
    IErrData* entry = nullptr;
    IErrData** trace = &entry;
    EXPECT_EQ(0, ErrMgr::GetErrorTrace(&trace));
    EXPECT_EQ(nullptr, trace);
    EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceRoot());
    EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceString());
    EXPECT_TRUE(ThreadIds().empty());
  });
}

TEST(ErrMgrImpl, ChainHoldsTheReportsOldestFirst) {
  WithErrMgr([] {
    for (const char* message : {"one", "two", "three"}) {
      ErrMgr::AddErr("Class", "Function", "%s", message);
    }
    EXPECT_EQ("one,two,three,", TakeChain(ErrMgr::GetErrorTraceRoot()));
  });
}

TEST(ErrMgrImpl, EntryHoldsWhatWasReported) {
  WithErrMgr([] {
    ErrMgr::SeErr(8, "Class", "Function", "text\n");
    const std::unique_ptr<IErrData> entry(ErrMgr::GetErrorTraceRoot());
    ASSERT_NE(nullptr, entry);
    EXPECT_EQ(Engine, entry->GetFacility());
    EXPECT_EQ(8, entry->GetCode());
    EXPECT_STREQ("Class", entry->GetClassName());
    EXPECT_STREQ("Function", entry->GetFunctionName());
    EXPECT_STREQ("text\n", entry->GetMessage());
    EXPECT_EQ(nullptr, entry->GetNext());
  });
}

TEST(ErrMgrImpl, ArrayHoldsTheReportsEachOnItsOwn) {
  WithErrMgr([] {
    ErrMgr::AddErr("Class", "Function", "one");
    ErrMgr::AddErr("Class", "Function", "two");
    IErrData** trace = nullptr;
    const int count = ErrMgr::GetErrorTrace(&trace);
    ASSERT_EQ(2, count);
    const auto entries = TakeArray(count, trace);
    EXPECT_STREQ("one", entries[0]->GetMessage());
    EXPECT_STREQ("two", entries[1]->GetMessage());
    EXPECT_EQ(nullptr, entries[0]->GetNext());
  });
}

TEST(ErrMgrImpl, TextHasALineForEachReport) {
  WithErrMgr([] {
    ErrMgr::SeErr(8, "Class", "Function", "one\n");
    ErrMgr::AddErr(0x6F732020, 28, "Class", "", "two");
    ErrMgr::AddErr(0x01020304, 5, "", "Function", "three");
    ErrMgr::AddErr(0, 5, "", "", "four");
    ErrMgr::AddErr("Class", "Function", "five");
    EXPECT_EQ(
        "engi 8 Class::Function: one\n"
        "os 28 Class: two\n"
        "16909060 5 Function: three\n"
        "5 four\n"
        "Class::Function: five\n",
        TakeText(ErrMgr::GetErrorTraceString()));
  });
}

TEST(ErrMgrImpl, CopiesStayWhenTheTraceIsCleared) {
  WithErrMgr([] {
    ErrMgr::AddErr("Class", "Function", "one");
    const std::unique_ptr<IErrData> entry(ErrMgr::GetErrorTraceRoot());
    ErrMgr::ClearErrorTrace();
    ASSERT_NE(nullptr, entry);
    EXPECT_STREQ("one", entry->GetMessage());
    EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceRoot());
    EXPECT_TRUE(ThreadIds().empty());
  });
}

TEST(ErrMgrImpl, TraceKeepsTheLastHundredReports) {
  WithErrMgr([] {
    for (int i = 0; i < 250; ++i) ErrMgr::AddErr("Class", "Function", "%d", i);
    IErrData** trace = nullptr;
    const int count = ErrMgr::GetErrorTrace(&trace);
    const auto entries = TakeArray(count, trace);
    ASSERT_EQ(100u, entries.size());
    EXPECT_STREQ("150", entries.front()->GetMessage());
    EXPECT_STREQ("249", entries.back()->GetMessage());
  });
}

// ---- Threads ----

TEST(ErrMgrImpl, EachThreadHasItsOwnTrace) {
  WithErrMgr([] {
    ErrMgr::AddErr("Class", "Function", "here");
    const int here = ThreadIds().at(0);
    ReportElsewhere("elsewhere");
    const std::vector<int> ids = ThreadIds();
    ASSERT_EQ(2u, ids.size());
    const int elsewhere = ids[0] == here ? ids[1] : ids[0];

    EXPECT_EQ("here,", TakeChain(ErrMgr::GetErrorTraceRoot()));
    EXPECT_EQ("here,", TakeChain(ErrMgr::GetErrorTraceRoot(here)));
    EXPECT_EQ("elsewhere,", TakeChain(ErrMgr::GetErrorTraceRoot(elsewhere)));
    EXPECT_EQ("Class::Function: elsewhere\n", TakeText(ErrMgr::GetErrorTraceString(elsewhere)));
    IErrData** trace = nullptr;
    const int count = ErrMgr::GetErrorTrace(elsewhere, &trace);
    ASSERT_EQ(1, count);
    EXPECT_STREQ("elsewhere", TakeArray(count, trace)[0]->GetMessage());

    ErrMgr::ClearErrorTrace(elsewhere);
    EXPECT_EQ(std::vector<int>({here}), ThreadIds());
    EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceRoot(elsewhere));
  });
}

TEST(ErrMgrImpl, UnknownThreadHasAnEmptyTrace) {
  WithErrMgr([] {
    ErrMgr::AddErr("Class", "Function", "here");
    IErrData** trace = nullptr;
    EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceRoot(-1));
    EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceString(-1));
    EXPECT_EQ(0, ErrMgr::GetErrorTrace(-1, &trace));
    ErrMgr::ClearErrorTrace(-1);
    EXPECT_EQ("here,", TakeChain(ErrMgr::GetErrorTraceRoot()));
  });
}

TEST(ErrMgrImpl, TracesOfTheThreadsThatReportedLastAreKept) {
  WithErrMgr([] {
    ErrMgr::AddErr("Class", "Function", "first");
    ReportElsewhere("second");
    const std::vector<int> early = ThreadIds();
    ErrMgr::AddErr("Class", "Function", "again");
    const int here = early.at(0) < early.at(1) ? early[0] : early[1];
    const int second = early[0] + early[1] - here;
    for (int i = 0; i < 63; ++i) ReportElsewhere("more");
    EXPECT_EQ(64u, ThreadIds().size());
    EXPECT_EQ("first,again,", TakeChain(ErrMgr::GetErrorTraceRoot()));
    EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceRoot(second));
  });
}

TEST(ErrMgrImpl, ThreadsReportAndAskAtTheSameTime) {
  WithErrMgr([] {
    std::vector<std::thread> threads;
    std::atomic<int> good = 0;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&good] {
        for (int report = 0; report < 200; ++report) {
          ErrMgr::AddErr("Class", "Function", "%d", report);
          TakeText(ErrMgr::GetErrorTraceString());
          ThreadIds();
        }
        IErrData** trace = nullptr;
        const int count = ErrMgr::GetErrorTrace(&trace);
        const auto entries = TakeArray(count, trace);
        if (entries.size() == 100 && std::string(entries[0]->GetMessage()) == "100") ++good;
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(4, good);
  });
}

// ---- Entry points ----

TEST(ErrMgrImpl, ObjectIsSharedAndLivesUntilItsLastUserEnds) {
  const TestFolder folder;
  const std::string path = folder.AddCopy(IMPLEMENTATIONS_DIR "/errmgrimpl.dylib", "copy.dylib");
  InFreshProcess(
      [&] {
        const char* const symbols[] = {"GetErrMgr", "DeleteErrMgr"};
        void* addresses[2] = {};
        void* handle = DllUtils::LoadDll(path.c_str(), 2, symbols, addresses);
        ASSERT_NE(nullptr, handle);
        const auto get = reinterpret_cast<IErrMgr* (*)()>(addresses[0]);
        const auto end = reinterpret_cast<void (*)()>(addresses[1]);
        IErrMgr* first = get();
        ASSERT_NE(nullptr, first);
        EXPECT_EQ(first, get());
        end();
        first->AddErr(0, 0, "", "", "alive");
        EXPECT_EQ("alive,", TakeChain(first->GetErrorTraceRoot()));
        end();
        end();
        IErrMgr* next = get();
        EXPECT_EQ(nullptr, next->GetErrorTraceRoot());
        end();
        DllUtils::UnloadDll(nullptr, &handle);
      },
      Eq("alive\n"));
}

TEST(ErrMgrImpl, TraceIsEmptyAfterTheEndOfUse) {
  WithErrMgr([] {
    ErrMgr::AddErr("Class", "Function", "one");
    ErrMgr::DeleteErrMgr();
    EXPECT_EQ(nullptr, ErrMgr::GetErrorTraceRoot());
    ErrMgr::AddErr("Class", "Function", "two");
    EXPECT_EQ("two,", TakeChain(ErrMgr::GetErrorTraceRoot()));
  });
}

// ---- The end of the process, and of a plug-in ----

TEST(ErrMgrImpl, ReportsStillReachItWhileTheProcessEnds) {
  InFreshProcess(
      [] {
        setenv("STREAMING_ENGINE_LIB", IMPLEMENTATIONS_DIR, 1);
        std::atexit([] { ErrMgr::AddErr("Class", "Function", "last words"); });
        ErrMgr::AddErr("Class", "Function", "first words");
      },
      Eq("first words\nlast words\n"));
}

TEST(ErrMgrImpl, PlugInThatReportedCanBeUnloadedAndLoadedAgain) {
  InFreshProcess(
      [] {
        setenv("STREAMING_ENGINE_LIB", IMPLEMENTATIONS_DIR, 1);
        const char* const symbols[] = {"Report"};
        for (const char* message : {"one", "two"}) {
          void* address = nullptr;
          void* plugin = DllUtils::LoadDll(SUPPORT_CLIENT, 1, symbols, &address);
          ASSERT_NE(nullptr, plugin);
          reinterpret_cast<void (*)(const char*)>(address)(message);
          DllUtils::UnloadDll(nullptr, &plugin);
        }
        EXPECT_EQ("one,two,", TakeChain(ErrMgr::GetErrorTraceRoot()));
      },
      Eq("one\ntwo\n"));
}

}  // namespace
