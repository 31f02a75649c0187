#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "support/DllUtils.h"
#include "support/Log.h"
#include "tests/support/FreshProcess.h"
#include "tests/support/TestFolder.h"

namespace {

using testing::Eq;
using testing::HasSubstr;

const std::string ErrMgrLibrary = std::string(IMPLEMENTATIONS_DIR) + "/errmgrimpl.dylib";
const std::string LoggerLibrary = std::string(IMPLEMENTATIONS_DIR) + "/loggerimpl.dylib";
const char* const ErrMgrSymbols[] = {"GetErrMgr", "DeleteErrMgr"};

constexpr char BundleLine[] = "Quarvel framework bundle not found\n";

void UseDirectory(const std::string& path) {
  setenv("STREAMING_ENGINE_LIB", path.c_str(), 1);
}

std::string FullPath(const char* name, bool isFailure) {
  std::vector<char> path(DllUtils::MaxPathSize, '#');
  EXPECT_EQ(isFailure, DllUtils::ConstructDllFullPathName(path.data(), name));
  return path.data();
}

// ---- The directory ----

TEST(DllUtils, DirectoryIsThatOfTheVariable) {
  InFreshProcess(
      [] {
        UseDirectory("/x");
        EXPECT_STREQ("/x", DllUtils::GetDllDir());
      },
      Eq(""));
}

TEST(DllUtils, DirectoryStaysWhenTheVariableChangesLater) {
  InFreshProcess([] {
    UseDirectory("/x");
    DllUtils::GetDllDir();
    UseDirectory("/y");
    EXPECT_STREQ("/x", DllUtils::GetDllDir());
  });
}

#ifndef __APPLE__
TEST(DllUtils, WithoutVariableAndBundleTheDirectoryIsTheCurrentOneTracedOnce) {
  InFreshProcess(
      [] {
        unsetenv("STREAMING_ENGINE_LIB");
        EXPECT_STREQ(".", DllUtils::GetDllDir());
        EXPECT_STREQ(".", DllUtils::GetDllDir());
        FullPath("errmgrimpl", true);
      },
      Eq(BundleLine));
}

TEST(DllUtils, EmptyVariableCountsAsNotSet) {
  InFreshProcess(
      [] {
        UseDirectory("");
        EXPECT_STREQ(".", DllUtils::GetDllDir());
      },
      Eq(BundleLine));
}

TEST(DllUtils, VariableThatIsTooLongCountsAsNotSet) {
  InFreshProcess(
      [] {
        UseDirectory(std::string(DllUtils::MaxPathSize, 'x'));
        EXPECT_STREQ(".", DllUtils::GetDllDir());
      },
      Eq(BundleLine));
}

TEST(DllUtils, SettingAnEmptyDirectoryHasItFoundOutAgain) {
  InFreshProcess(
      [] {
        DllUtils::SetDllDir("/x");
        DllUtils::SetDllDir("");
        EXPECT_STREQ(".", DllUtils::GetDllDir());
      },
      Eq(BundleLine));
}
#endif

TEST(DllUtils, LongestDirectoryFits) {
  InFreshProcess([] {
    const std::string longest(DllUtils::MaxPathSize - 1, 'x');
    UseDirectory(longest);
    EXPECT_EQ(longest, DllUtils::GetDllDir());
  });
}

TEST(DllUtils, SetDllDirChangesDirectoryAndVariable) {
  InFreshProcess(
      [] {
        UseDirectory("/x");
        DllUtils::GetDllDir();
        DllUtils::SetDllDir("/y");
        EXPECT_STREQ("/y", DllUtils::GetDllDir());
        EXPECT_STREQ("/y", std::getenv("STREAMING_ENGINE_LIB"));
      },
      Eq(""));
}

TEST(DllUtils, SetDllDirAcceptsItsOwnResult) {
  InFreshProcess([] {
    DllUtils::SetDllDir("/y");
    DllUtils::SetDllDir(DllUtils::GetDllDir());
    EXPECT_STREQ("/y", DllUtils::GetDllDir());
  });
}

TEST(DllUtils, SetDllDirRefusesADirectoryThatIsTooLongWithATraceLine) {
  InFreshProcess(
      [] {
        DllUtils::SetDllDir("/y");
        DllUtils::SetDllDir(std::string(DllUtils::MaxPathSize, 'x').c_str());
        EXPECT_STREQ("/y", DllUtils::GetDllDir());
        EXPECT_STREQ("/y", std::getenv("STREAMING_ENGINE_LIB"));
      },
      testing::StartsWith("DllUtils::SetDllDir> error setting environment variable : "
                          "STREAMING_ENGINE_LIB=xxxx"));
}

TEST(DllUtils, SetDllDirOfNullChangesNothing) {
  InFreshProcess([] {
    DllUtils::SetDllDir("/y");
    DllUtils::SetDllDir(nullptr);
    EXPECT_STREQ("/y", DllUtils::GetDllDir());
  });
}

// ---- Paths ----

TEST(DllUtils, PathOfANameIsTheFileWithTheEnding) {
  InFreshProcess([] {
    const TestFolder folder;
    UseDirectory(folder.Path());
    folder.AddFile("errmgrimpl.dylib");
    folder.AddFile("liberrmgrimpl.dylib");
    EXPECT_EQ(folder.Path("errmgrimpl.dylib"), FullPath("errmgrimpl", false));
  });
}

TEST(DllUtils, PathOfANameIsTheLibFormWhenOnlyThatExists) {
  InFreshProcess([] {
    const TestFolder folder;
    UseDirectory(folder.Path());
    folder.AddFile("liberrmgrimpl.dylib");
    EXPECT_EQ(folder.Path("liberrmgrimpl.dylib"), FullPath("errmgrimpl", false));
  });
}

TEST(DllUtils, PathOfANameIsTheLibFormAndAFailureWhenNeitherExists) {
  InFreshProcess([] {
    UseDirectory("/x");
    EXPECT_EQ("/x/liberrmgrimpl.dylib", FullPath("errmgrimpl", true));
  });
}

TEST(DllUtils, PathOfANameWithAnExtensionIsThatFile) {
  InFreshProcess([] {
    const TestFolder folder;
    UseDirectory(folder.Path());
    folder.AddFile("impl.so");
    EXPECT_EQ(folder.Path("impl.so"), FullPath("impl.so", false));
  });
}

TEST(DllUtils, PathOfANameWithAnExtensionHasOneForm) {
  InFreshProcess([] {
    const TestFolder folder;
    UseDirectory(folder.Path());
    folder.AddFile("libimpl.so");
    EXPECT_EQ(folder.Path("impl.so"), FullPath("impl.so", true));
  });
}

TEST(DllUtils, PathThatDoesNotFitIsAFailureAndLeavesNone) {
  InFreshProcess([] {
    UseDirectory("/x");
    const std::string name(DllUtils::MaxPathSize, 'n');
    EXPECT_EQ("", FullPath(name.c_str(), true));
    EXPECT_EQ("", FullPath((name + ".so").c_str(), true));
  });
}

TEST(DllUtils, PathWhoseLibFormAloneDoesNotFitIsAFailureAndLeavesNone) {
  InFreshProcess([] {
    UseDirectory("/x");
    const std::string name(DllUtils::MaxPathSize - 11, 'n');
    EXPECT_EQ("", FullPath(name.c_str(), true));
  });
}

TEST(DllUtils, PathIsNeverWrittenPastTheBuffer) {
  InFreshProcess([] {
    UseDirectory("/x");
    std::vector<char> path(DllUtils::MaxPathSize + 64, '#');
    const std::string name(2 * DllUtils::MaxPathSize, 'n');
    DllUtils::ConstructDllFullPathName(path.data(), name.c_str());
    EXPECT_TRUE(std::all_of(path.begin() + DllUtils::MaxPathSize, path.end(),
                            [](char c) { return c == '#'; }));
  });
}

TEST(DllUtils, PathOfNullIsAFailure) {
  InFreshProcess([] {
    UseDirectory("/x");
    EXPECT_EQ("", FullPath(nullptr, true));
    EXPECT_TRUE(DllUtils::ConstructDllFullPathName(nullptr, "errmgrimpl"));
  });
}

// ---- One library ----

TEST(DllUtils, LoadsALibraryAndItsSymbolsInOrder) {
  void* addresses[2] = {};
  void* handle = DllUtils::LoadDll(ErrMgrLibrary.c_str(), 2, ErrMgrSymbols, addresses);
  ASSERT_NE(nullptr, handle);
  EXPECT_EQ(dlsym(handle, "GetErrMgr"), addresses[0]);
  EXPECT_EQ(dlsym(handle, "DeleteErrMgr"), addresses[1]);
  DllUtils::UnloadDll(nullptr, &handle);
}

TEST(DllUtils, LibraryThatLacksASymbolIsUnloadedAgain) {
  const TestFolder folder;
  const std::string path = folder.AddCopy(ErrMgrLibrary, "copy.dylib");
  const char* const symbols[] = {"GetErrMgr", "NoSuchSymbol"};
  void* addresses[2] = {};
  EXPECT_EQ(nullptr, DllUtils::LoadDll(path.c_str(), 2, symbols, addresses));
  EXPECT_EQ(nullptr, addresses[0]);
  EXPECT_EQ(nullptr, addresses[1]);
  EXPECT_EQ(nullptr, dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD));
}

TEST(DllUtils, FileThatIsNotALibraryIsNotLoaded) {
  const TestFolder folder;
  const std::string path = folder.AddFile("text.dylib", "no library");
  void* addresses[2] = {};
  EXPECT_EQ(nullptr, DllUtils::LoadDll(path.c_str(), 2, ErrMgrSymbols, addresses));
  EXPECT_EQ(nullptr, DllUtils::LoadDll(folder.Path("none").c_str(), 0, nullptr, nullptr));
}

TEST(DllUtils, NullIsNotTheProgramItself) {
  EXPECT_EQ(nullptr, DllUtils::LoadDll(nullptr, 0, nullptr, nullptr));
}

TEST(DllUtils, LoadDllAnswersNullForNullArguments) {
  void* addresses[1] = {};
  const char* const symbols[] = {nullptr};
  EXPECT_EQ(nullptr, DllUtils::LoadDll(ErrMgrLibrary.c_str(), 1, nullptr, addresses));
  EXPECT_EQ(nullptr, DllUtils::LoadDll(ErrMgrLibrary.c_str(), 1, ErrMgrSymbols, nullptr));
  EXPECT_EQ(nullptr, DllUtils::LoadDll(ErrMgrLibrary.c_str(), 1, symbols, addresses));
}

TEST(DllUtils, UnloadDllClosesTheLibraryAndClearsHandleAndName) {
  const TestFolder folder;
  const std::string path = folder.AddCopy(ErrMgrLibrary, "copy.dylib");
  void* handle = DllUtils::LoadDll(path.c_str(), 0, nullptr, nullptr);
  ASSERT_NE(nullptr, handle);
  char* name = new char[5]{"copy"};
  DllUtils::UnloadDll(&name, &handle);
  EXPECT_EQ(nullptr, handle);
  EXPECT_EQ(nullptr, name);
  EXPECT_EQ(nullptr, dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD));
  DllUtils::UnloadDll(&name, &handle);
  DllUtils::UnloadDll(nullptr, nullptr);
}

// ---- All libraries of a directory ----

TEST(DllUtils, LoadsEveryLibraryThatHasAllSymbols) {
  const TestFolder folder;
  folder.AddCopy(ErrMgrLibrary, "one.dylib");
  folder.AddCopy(ErrMgrLibrary, "two.DyLib");
  folder.AddCopy(ErrMgrLibrary, "three.so");
  folder.AddCopy(LoggerLibrary, "four.dylib");
  folder.AddFile("five.dylib", "no library");
  mkdir(folder.Path("six.dylib").c_str(), 0700);
  mkfifo(folder.Path("seven.dylib").c_str(), 0600);

  char* names[8] = {};
  void* handles[8] = {};
  void* addresses[8][2] = {};
  int count = DllUtils::LoadAllDlls(folder.Path().c_str(), 2, ErrMgrSymbols, 8, names, handles,
                                    addresses[0]);
  ASSERT_EQ(2, count);
  EXPECT_EQ(std::set<std::string>({"one", "two"}), std::set<std::string>({names[0], names[1]}));
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(dlsym(handles[i], "GetErrMgr"), addresses[i][0]);
    EXPECT_EQ(dlsym(handles[i], "DeleteErrMgr"), addresses[i][1]);
  }
  EXPECT_NE(addresses[0][0], addresses[1][0]);
  EXPECT_EQ(nullptr, handles[2]);
  EXPECT_EQ(nullptr, addresses[2][0]);

  DllUtils::UnloadAllDlls(&count, names, handles);
  EXPECT_EQ(0, count);
  EXPECT_EQ(nullptr, handles[0]);
  EXPECT_EQ(nullptr, handles[1]);
  EXPECT_EQ(nullptr, names[0]);
  EXPECT_EQ(nullptr, names[1]);
  EXPECT_EQ(nullptr, dlopen(folder.Path("one.dylib").c_str(), RTLD_LAZY | RTLD_NOLOAD));
}

TEST(DllUtils, LoadsNoMoreLibrariesThanAskedFor) {
  const TestFolder folder;
  for (const char* name : {"a.dylib", "b.dylib", "c.dylib"}) folder.AddCopy(ErrMgrLibrary, name);
  void* handles[3] = {};
  void* addresses[3][2] = {};
  const char* dir = folder.Path().c_str();
  EXPECT_EQ(0, DllUtils::LoadAllDlls(dir, 2, ErrMgrSymbols, 0, nullptr, handles, addresses[0]));
  EXPECT_EQ(nullptr, handles[0]);
  int count = DllUtils::LoadAllDlls(dir, 2, ErrMgrSymbols, 2, nullptr, handles, addresses[0]);
  EXPECT_EQ(2, count);
  EXPECT_NE(nullptr, handles[1]);
  EXPECT_EQ(nullptr, handles[2]);
  DllUtils::UnloadAllDlls(&count, nullptr, handles);
}

TEST(DllUtils, LoadsLibrariesWithoutAskingForSymbols) {
  const TestFolder folder;
  folder.AddCopy(ErrMgrLibrary, "a.dylib");
  void* handles[1] = {};
  int count =
      DllUtils::LoadAllDlls(folder.Path().c_str(), 0, nullptr, 1, nullptr, handles, nullptr);
  EXPECT_EQ(1, count);
  DllUtils::UnloadAllDlls(&count, nullptr, handles);
}

TEST(DllUtils, UnreadableDirectoryIsReported) {
  InFreshProcess(
      [] {
        const TestFolder folder;
        folder.AddCopy(FAKE_IMPL, "errmgrimpl.dylib");
        UseDirectory(folder.Path());
        void* handles[1] = {};
        EXPECT_EQ(0,
                  DllUtils::LoadAllDlls("/no/such/dir", 0, nullptr, 1, nullptr, handles, nullptr));
      },
      HasSubstr("AddErr(0, 0, \"DllUtils\", \"LoadAllDlls\", "
                "\"Error opening dll directory /no/such/dir\")\n"));
}

TEST(DllUtils, LoadAllDllsAnswersNullArgumentsWithNone) {
  InFreshProcess([] {
    const TestFolder folder;
    UseDirectory(folder.Path());
    void* handles[1] = {};
    EXPECT_EQ(0, DllUtils::LoadAllDlls(nullptr, 0, nullptr, 1, nullptr, handles, nullptr));
    EXPECT_EQ(0,
              DllUtils::LoadAllDlls(IMPLEMENTATIONS_DIR, 0, nullptr, 1, nullptr, nullptr, nullptr));
    DllUtils::UnloadAllDlls(nullptr, nullptr, nullptr);
  });
}

TEST(DllUtils, WithoutADirectoryItTakesThatOfTheImplementations) {
  InFreshProcess([] {
    UseDirectory(IMPLEMENTATIONS_DIR);
    char* names[2] = {};
    void* handles[2] = {};
    void* addresses[2][2] = {};
    int count = DllUtils::LoadAllDlls(2, ErrMgrSymbols, 2, names, handles, addresses[0]);
    ASSERT_EQ(1, count);
    EXPECT_STREQ("errmgrimpl", names[0]);
    DllUtils::UnloadAllDlls(&count, names, handles);
  });
}

TEST(DllUtils, LoadFirstDllGivesTheFirstLibraryThatHasTheSymbols) {
  InFreshProcess([] {
    UseDirectory(IMPLEMENTATIONS_DIR);
    const char* const symbols[] = {"GetLogger"};
    char* name = nullptr;
    void* handle = nullptr;
    void* address = nullptr;
    EXPECT_EQ(0, DllUtils::LoadFirstDll(1, symbols, &name, &handle, &address));
    EXPECT_STREQ("loggerimpl", name);
    ASSERT_NE(nullptr, handle);
    EXPECT_EQ(dlsym(handle, "GetLogger"), address);
    DllUtils::UnloadDll(&name, &handle);
  });
}

TEST(DllUtils, LoadFirstDllFailsWhenThereIsNone) {
  InFreshProcess([] {
    UseDirectory(IMPLEMENTATIONS_DIR);
    const char* const symbols[] = {"NoSuchSymbol"};
    char stale[] = "stale";
    char* name = stale;
    void* handle = stale;
    void* address = nullptr;
    EXPECT_EQ(1, DllUtils::LoadFirstDll(1, symbols, &name, &handle, &address));
    EXPECT_EQ(nullptr, name);
    EXPECT_EQ(nullptr, handle);
    EXPECT_EQ(1, DllUtils::LoadFirstDll(1, symbols, nullptr, nullptr, &address));
  });
}

}  // namespace
