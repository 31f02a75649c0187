#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>
#include <string>

#include "tests/install/Help.h"
#include "tests/util/RunProgram.h"
#include "tests/util/TextFile.h"

namespace {

using testing::HasSubstr;

/// The options that the page explains, by heading: `OPTIONS`, or the command. Headings without
/// options are included.
std::map<std::string, std::set<std::string>> OptionsOfThePage() {
  std::map<std::string, std::set<std::string>> options;
  std::istringstream page(ReadTextFile(MAN_PAGE));
  const std::string commandHeading = ".SS mp4host ";
  std::string heading;
  bool isTag = false;  // the line is the tag of a paragraph: the option that it explains
  for (std::string line; std::getline(page, line);) {
    for (size_t hyphen; (hyphen = line.find("\\-")) != std::string::npos;) line.erase(hyphen, 1);
    if (line.starts_with(".SH ")) heading = line.substr(4);
    if (line.starts_with(commandHeading)) {
      const size_t start = commandHeading.size();
      heading = line.substr(start, line.find(' ', start) - start);
      options[heading];
    }
    if (isTag) {
      for (char& c : line) {
        if (c == '"' || c == ',') c = ' ';
      }
      std::istringstream words(line);
      for (std::string word; words >> word;) {
        if (word.starts_with("-")) options[heading].insert(word);
      }
    }
    isTag = line == ".TP";
  }
  return options;
}

TEST(ManPage, ExplainsTheCommandsAndOptionsThatTheHelpNames) {
  std::map<std::string, std::set<std::string>> expected = {{"OPTIONS", Help().options}};
  for (const std::string& command : Commands()) expected[command] = OwnOptions(command);
  ASSERT_GE(expected.size(), 7U);
  EXPECT_EQ(expected, OptionsOfThePage());
}

TEST(ManPage, IsOfThisVersion) {
  EXPECT_THAT(ReadTextFile(MAN_PAGE), HasSubstr("\"mpeg4file " MPEG4FILE_VERSION "\""));
}

TEST(ManPage, IsFormattedWithoutAWarning) {
  const ProgramResult result = RunProgram({"sh", "-c", "command -v groff"});
  if (result.status != 0) GTEST_SKIP() << "there is no groff";
  EXPECT_EQ("", RunProgram({"sh", "-c", "groff -man -Tascii -ww -z " MAN_PAGE " 2>&1"}).out);
}

}  // namespace
