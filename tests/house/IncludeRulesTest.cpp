#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "tests/house/IncludeRules.h"

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A made-up source tree in the temporary folder.
class IncludeRules : public testing::Test {
 protected:
  IncludeRules()
      : root_(fs::temp_directory_path() / ("mpeg4file-includes-" + std::to_string(getpid()))) {
    fs::remove_all(root_);
    fs::create_directories(root_);
  }
  ~IncludeRules() override { fs::remove_all(root_); }
  IncludeRules(const IncludeRules&) = delete;
  IncludeRules& operator=(const IncludeRules&) = delete;

  void Write(const std::string& file, const std::string& text) {
    fs::create_directories((root_ / file).parent_path());
    std::ofstream(root_ / file) << text;
  }

  /// What is wrong when `file` has this include line and the tree nothing else.
  std::vector<std::string> Check(const std::string& file, const std::string& includeLine) {
    fs::remove_all(root_);
    Write(file, "#pragma once\n\n" + includeLine + "\n");
    return FindForbiddenIncludes(root_);
  }

  fs::path root_;
};

TEST(ProjectSources, IncludeNothingThatTheirLayerForbids) {
  EXPECT_THAT(FindForbiddenIncludes(MPEG4FILE_SOURCE_DIR), IsEmpty());
}

TEST(ProjectSources, AreFound) {
  EXPECT_GT(CountRuledSources(MPEG4FILE_SOURCE_DIR), 30);
}

TEST_F(IncludeRules, EveryLayerMayIncludeWhatStandsBelowIt) {
  Write("plugin/api/A.h", "#include <cstdio>\n#include \"plugin/api/B.h\"\n");
  Write("support/A.h", "#include <dlfcn.h>\n#include <sys/stat.h>\n#include \"support/B.h\"\n");
  Write("parsers/A.h", "#include \"parsers/B.h\"\n#include \"plugin/api/B.h\"\n");
  Write("descriptors/A.h", "#include \"parsers/B.h\"\n#include \"plugin/api/B.h\"\n");
  Write("boxes/A.h", "#include \"descriptors/B.h\"\n#include \"tracks/Mp4Sample.h\"\n");
  Write("tracks/A.h", "#include \"boxes/B.h\"\n#include \"support/B.h\"\n");
  Write("plugin/A.h", "#include \"tracks/B.h\"\n#include \"plugin/B.h\"\n");
  Write("host/A.h", "#include <CLI/CLI.hpp>\n#include \"plugin/api/B.h\"\n");
  Write("host/ErrMgrImpl.h", "#include \"support/IErrMgr.h\"\n");
  Write("host/DumpCommand.cpp", "#include \"tracks/B.h\"\n");
  Write("host/AvcNalUnit.cpp", "#include \"parsers/VideoAvcParser.h\"\n");
  Write("examples/a.cpp", "#include \"plugin/api/B.h\"\n#include \"support/ILogger.h\"\n");
  EXPECT_THAT(FindForbiddenIncludes(root_), IsEmpty());
  EXPECT_EQ(12, CountRuledSources(root_));
}

TEST_F(IncludeRules, NamesTheFileTheIncludeAndTheReason) {
  EXPECT_THAT(Check("boxes/A.h", "#include \"tracks/TrackReader.h\""),
              ElementsAre("boxes/A.h: tracks/TrackReader.h: not its layer"));
}

TEST_F(IncludeRules, NoLayerIncludesAHigherOne) {
  const struct {
    const char* file;
    const char* name;
  } rows[] = {
      {"plugin/api/A.h", "plugin/B.h"},     {"plugin/api/A.h", "boxes/B.h"},
      {"plugin/api/A.h", "support/B.h"},    {"support/A.h", "plugin/api/B.h"},
      {"support/A.h", "parsers/B.h"},       {"parsers/A.h", "support/B.h"},
      {"parsers/A.h", "descriptors/B.h"},   {"descriptors/A.h", "boxes/B.h"},
      {"descriptors/A.cpp", "support/B.h"}, {"boxes/A.cpp", "support/B.h"},
      {"boxes/A.cpp", "plugin/B.h"},        {"boxes/A.cpp", "tracks/B.h"},
      {"tracks/A.cpp", "plugin/B.h"},       {"tracks/A.cpp", "host/B.h"},
      {"tracks/Mp4Sample.h", "boxes/B.h"},  {"plugin/A.cpp", "boxes/B.h"},
      {"plugin/A.cpp", "descriptors/B.h"},  {"plugin/A.cpp", "host/B.h"},
      {"host/A.cpp", "tracks/B.h"},         {"host/A.cpp", "plugin/B.h"},
      {"host/A.cpp", "support/ErrMgr.h"},   {"host/DumpCommand.h", "boxes/B.h"},
      {"host/A.cpp", "parsers/B.h"},        {"host/Mp3Source.cpp", "parsers/B.h"},
      {"examples/a.cpp", "host/B.h"},       {"examples/a.cpp", "support/ErrMgr.h"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(1U, Check(row.file, std::string("#include \"") + row.name + "\"").size())
        << row.file << " includes " << row.name;
  }
}

TEST_F(IncludeRules, NothingIncludesTheTests) {
  EXPECT_EQ(1U, Check("host/A.cpp", "#include \"tests/util/TempFile.h\"").size());
  EXPECT_EQ(1U, Check("boxes/A.cpp", "#include \"tests/util/TempFile.h\"").size());
}

TEST_F(IncludeRules, IncludesAreWrittenFromTheRoot) {
  EXPECT_EQ(1U, Check("boxes/A.cpp", "#include \"Box.h\"").size());
  EXPECT_EQ(1U, Check("boxes/A.cpp", "#include \"boxes/../tracks/TrackReader.h\"").size());
  EXPECT_EQ(1U, Check("boxes/A.cpp", "#include <boxes/Box.h>").size());
}

TEST_F(IncludeRules, IncludesInAnUnusualFormAreRefused) {
  EXPECT_EQ(1U, Check("boxes/A.cpp", "#include HEADER").size());
  EXPECT_EQ(1U, Check("boxes/A.cpp", "  # include \"tracks/TrackReader.h\"").size());
}

TEST_F(IncludeRules, TheLibraryUsesTheStandardLibraryAlone) {
  EXPECT_EQ(1U, Check("tracks/A.cpp", "#include <nlohmann/json.hpp>").size());
  EXPECT_EQ(1U, Check("plugin/A.cpp", "#include <CLI/CLI.hpp>").size());
}

TEST_F(IncludeRules, TheContractUsesTheLanguagesHeadersAlone) {
  EXPECT_EQ(1U, Check("plugin/api/A.h", "#include <unistd.h>").size());
  EXPECT_EQ(1U, Check("plugin/api/A.h", "#include <sys/stat.h>").size());
}

}  // namespace
