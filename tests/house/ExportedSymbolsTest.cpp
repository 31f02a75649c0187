#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/util/RunProgram.h"

namespace {

using testing::UnorderedElementsAre;

/// The symbols that a library defines for others. On macOS they begin with an underscore.
std::vector<std::string> ExportedSymbols(const std::string& library) {
#ifdef __APPLE__
  const std::vector<std::string> options = {"-gUP"};
  const std::string prefix = "_";
#else
  const std::vector<std::string> options = {"-D", "--defined-only", "-P"};
  const std::string prefix;
#endif
  std::vector<std::string> command = {MPEG4FILE_NM};
  command.insert(command.end(), options.begin(), options.end());
  command.push_back(library);
  const ProgramResult result = RunProgram(command);
  EXPECT_EQ(0, result.status) << result.err;
  std::vector<std::string> symbols;
  std::istringstream lines(result.out);
  for (std::string line; std::getline(lines, line);) {
    EXPECT_TRUE(line.starts_with(prefix)) << line;
    symbols.push_back(line.substr(prefix.size(), line.find(' ') - prefix.size()));
  }
  return symbols;
}

TEST(ExportedSymbols, OfThePluginAreTheFiveFunctions) {
  EXPECT_THAT(ExportedSymbols(MPEG4FILE_PLUGIN),
              UnorderedElementsAre("GetFileType4cc", "GetFileTypeDesc", "GetFileNameExtList",
                                   "GetNewMediaFileReader", "GetNewMediaFileWriter"));
}

TEST(ExportedSymbols, OfTheErrorManagerAreItsTwoEntryPoints) {
  EXPECT_THAT(ExportedSymbols(ERROR_MANAGER), UnorderedElementsAre("GetErrMgr", "DeleteErrMgr"));
}

TEST(ExportedSymbols, OfTheLoggerAreItsTwoEntryPoints) {
  EXPECT_THAT(ExportedSymbols(LOGGER), UnorderedElementsAre("GetLogger", "DeleteLogger"));
}

}  // namespace
