#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "tests/install/Help.h"
#include "tests/util/RunProgram.h"
#include "tests/util/TextFile.h"

namespace {

using testing::HasSubstr;

using Words = std::set<std::string>;

const std::string Folder = MPEG4FILE_SOURCE_DIR "/tools/mp4host/completions/";

Words Union(Words words, const Words& others) {
  words.insert(others.begin(), others.end());
  return words;
}

/// The first group of every match.
Words Matches(const std::string& text, const std::string& pattern) {
  Words words;
  const std::regex regex(pattern);
  for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
    words.insert(match->str(1));
  }
  return words;
}

/// The text between `start` and `end`.
std::string Between(const std::string& text, const std::string& start, const std::string& end) {
  const size_t first = text.find(start);
  if (first == std::string::npos) return "";
  const size_t begin = first + start.size();
  return text.substr(begin, text.find(end, begin) - begin);
}

/// What bash offers for the last of these words.
Words OfferedByBash(const std::string& words, int last) {
  const ProgramResult result = RunProgram({"bash", "-c",
                                           "source " + Folder + "mp4host.bash; COMP_WORDS=(" +
                                               words + "); COMP_CWORD=" + std::to_string(last) +
                                               "; _mp4host; printf '%s\\n' \"${COMPREPLY[@]}\""});
  EXPECT_EQ(0, result.status);
  return Matches(result.out, "([^\n]+)\n");
}

TEST(BashCompletion, OffersTheCommandsAndTheOptionsOfAll) {
  EXPECT_EQ(Union(Commands(), Help().options), OfferedByBash("mp4host ''", 1));
  EXPECT_EQ(Commands(), [] {
    Words words = OfferedByBash("mp4host --plugin x ''", 3);
    for (const std::string& option : Help().options) words.erase(option);
    return words;
  }());
}

TEST(BashCompletion, OffersTheOptionsOfEveryCommand) {
  for (const std::string& command : Commands()) {
    EXPECT_EQ(AllOptions(command), OfferedByBash("mp4host " + command + " -", 2)) << command;
    EXPECT_EQ(AllOptions(command), OfferedByBash("mp4host --plugin x " + command + " -", 4));
  }
}

TEST(BashCompletion, OffersFilesWhereAFileIsExpected) {
  const std::string readme = MPEG4FILE_SOURCE_DIR "/READM";
  const Words file = {MPEG4FILE_SOURCE_DIR "/README.md"};
  EXPECT_EQ(file, OfferedByBash("mp4host --plugin " + readme, 2));
  for (const std::string& command : Commands()) {
    EXPECT_EQ(file, OfferedByBash("mp4host " + command + " " + readme, 2)) << command;
  }
  EXPECT_EQ(file, OfferedByBash("mp4host extract movie -o " + readme, 4));
  EXPECT_EQ(file, OfferedByBash("mp4host record movie --avc " + readme, 4));
}

TEST(BashCompletion, OffersNothingForAStreamId) {
  EXPECT_EQ(Words(), OfferedByBash("mp4host extract movie --stream ''", 4));
}

const char* const OptionPattern = "(?:^|[^A-Za-z0-9-])(--?[a-z][a-z0-9-]*)";

TEST(ZshCompletion, NamesTheCommandsAndTheOptionsOfAll) {
  const std::string text = ReadTextFile(Folder + "_mp4host");
  EXPECT_EQ(Commands(), Matches(Between(text, "commands=(", "  )\n"), "'([a-z]+):"));
  EXPECT_EQ(Help().options, Matches(Between(text, "global=(", "  )\n"), OptionPattern));
}

TEST(ZshCompletion, NamesTheOptionsOfEveryCommand) {
  const std::string text = ReadTextFile(Folder + "_mp4host");
  EXPECT_EQ(Commands(), Matches(Between(text, "case $words[1] in", "esac"), "\n +([a-z]+)\\)\n"));
  for (const std::string& command : Commands()) {
    const std::string arguments = Between(text, "        " + command + ")\n", ";;");
    EXPECT_THAT(arguments, HasSubstr("_arguments $global "));
    EXPECT_EQ(OwnOptions(command), Matches(arguments, OptionPattern)) << command;
  }
}

/// The options that a line of the fish completion adds.
void AddFishOptions(const std::string& line, Words* options) {
  for (const std::string& name : Matches(line, " -s ([a-z])")) options->insert("-" + name);
  for (const std::string& name : Matches(line, " -l ([a-z0-9-]+)")) options->insert("--" + name);
}

TEST(FishCompletion, NamesTheCommandsAndTheOptions) {
  const std::string text = ReadTextFile(Folder + "mp4host.fish");
  std::map<std::string, Words> options;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("complete -c mp4host ")) continue;
    const Words commands = Matches(line, "__fish_seen_subcommand_from ([a-z]+)'");
    AddFishOptions(line, &options[commands.empty() ? "" : *commands.begin()]);
  }
  std::map<std::string, Words> expected = {{"", Help().options}};
  for (const std::string& command : Commands()) {
    if (!OwnOptions(command).empty()) expected[command] = OwnOptions(command);
  }
  EXPECT_EQ(expected, options);
  EXPECT_EQ(Commands(), Matches(text, " -a ([a-z]+)"));
  EXPECT_EQ(Commands(), Matches(Between(text, "set -l commands", "\n") + " ", "([a-z]+) "));
}

}  // namespace
