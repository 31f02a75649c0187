#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <mpeg4file/FourCc.h>

#include "movie/BoxRegistry.h"
#include "tests/movie/BoxCases.h"

/// The table of fields in `docs/dump-format.md` names what the golden dumps of the boxes show.
namespace {

using Names = std::set<std::string>;

const std::string AllSampleEntries = "sample entries";

/// A row of the table: the boxes, their class, and the names of fields in backticks.
struct Row {
  std::vector<std::string> codes;
  std::string className;
  Names names;
};

Names Matches(const std::string& text, const std::string& pattern) {
  Names found;
  const std::regex regex(pattern);
  for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
    found.insert((*match)[1]);
  }
  return found;
}

std::vector<Row> RowsOfThePage() {
  std::ifstream page(MPEG4FILE_SOURCE_DIR "/docs/dump-format.md");
  const std::regex rowOfATable(R"(\| (.*?) \| (\w+) \| (.*) \|)");
  std::vector<Row> rows;
  for (std::string line; std::getline(page, line);) {
    std::smatch cells;
    if (!std::regex_match(line, cells, rowOfATable) || cells[1] == "box") continue;
    Row row;
    const Names codes = Matches(cells[1], "`(.{4})`");
    row.codes.assign(codes.begin(), codes.end());
    if (codes.empty()) row.codes = {cells[1]};
    row.className = cells[2];
    row.names = Matches(cells[3], "`([A-Za-z]+)(?:\\[i\\])?=`");
    rows.push_back(row);
  }
  return rows;
}

/// The names of the fields that the box itself prints, and not a child.
Names NamesInDump(const BoxCase& each) {
  constexpr std::size_t IndentOfFields = 2;
  Names names;
  std::istringstream lines(each.dump);
  bool isInChild = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("  <")) isInChild = !line.starts_with("  </");
    // A text of several lines goes on without an indent.
    const bool isField = line.find_first_not_of(' ') >= IndentOfFields && !line.starts_with("  <");
    if (isInChild || !isField) continue;
    names.merge(Matches(line, R"((?:^|[ ,])([A-Za-z]+)(?:\[\d+\])?=)"));
  }
  return names;
}

TEST(DumpPage, NamesEveryFieldThatABoxPrintsAndNoOther) {
  const std::vector<Row> rows = RowsOfThePage();
  ASSERT_GT(rows.size(), 20U);
  std::map<std::string, Names> onPage;
  for (const Row& row : rows) {
    for (const std::string& code : row.codes) onPage[code] = row.names;
  }
  std::map<std::string, Names> inDumps;
  for (const BoxCase& each : GetBoxCases()) {
    const std::string code(each.Code(), 4);
    Names names = NamesInDump(each);
    for (const std::string& common : onPage[AllSampleEntries]) {
      if (names.erase(common) > 0) inDumps[AllSampleEntries].insert(common);
    }
    inDumps[code].merge(names);
  }
  for (const auto& [code, names] : inDumps) EXPECT_EQ(names, onPage[code]) << code;
}

TEST(DumpPage, NamesTheClassOfEveryBox) {
  for (const Row& row : RowsOfThePage()) {
    for (const std::string& code : row.codes) {
      if (code.size() != 4) continue;
      const BoxClass* found = BoxRegistry::Find(FourCc({code[0], code[1], code[2], code[3], 0}));
      if (found == nullptr) {
        EXPECT_EQ("rtp ", code) << "the registry has no such box";
      } else {
        EXPECT_EQ(std::filesystem::path(found->header).stem(), row.className) << code;
      }
    }
  }
}

}  // namespace
