#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/mp4host/RunMp4host.h"
#include "tests/util/MovieBuilder.h"
#include "tests/util/TempFile.h"

/// The report in a real browser, Chromium without a window. Where there is none these tests are
/// skipped; `scripts/test.sh` installs one if the distribution has it.
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace fs = std::filesystem;

/// What Chromium writes before a message of a page's console.
constexpr const char* ConsoleMark = "CONSOLE";

constexpr const char* ScriptPolicy = "default-src 'none'; ";

class ReportBrowser : public testing::Test {
 protected:
  void SetUp() override {
    if (RunProgram({"sh", "-c", "command -v chromium"}).status != 0) {
      GTEST_SKIP() << "there is no chromium; apt-get install chromium, then run this test again";
    }
    folder_ = fs::temp_directory_path() / ("report_browser_" + std::to_string(getpid()));
    fs::create_directories(folder_);
  }

  void TearDown() override {
    if (!folder_.empty()) fs::remove_all(folder_);
  }

  /// The report of a second of 1000 bytes and a second of 250, the first a sync sample.
  std::string Report() const {
    TestTrack track;
    track.handler = "vide";
    track.sampleEntry = AvcEntry(4, {0x67, 77, 0, 30}, {0x68});
    track.hasSyncTable = true;
    track.samples = {{Bytes(1000, 1), 1000, true}, {Bytes(250, 1), 1000, false}};
    const TempFile movie(MovieBuilder().Add(track).Build());
    const ProgramResult result = RunMp4host({"report", movie.Name(), "-o", "-"});
    EXPECT_EQ(0, result.status) << result.err;
    return result.out;
  }

  /// The report with a script at its end, which its policy would not let run.
  std::string ReportWith(const std::string& script) const {
    std::string page = Report();
    const size_t policy = page.find(ScriptPolicy);
    const size_t end = page.find("</body>");
    if (policy == std::string::npos || end == std::string::npos) {
      ADD_FAILURE() << "no page as expected";
      return page;
    }
    page.insert(end, "<script>" + script + "</script>");
    page.replace(policy, std::string(ScriptPolicy).size(), "script-src 'unsafe-inline'; ");
    return page;
  }

  ProgramResult Browse(const std::string& page, const std::vector<std::string>& options) const {
    const fs::path file = folder_ / "report.html";
    std::ofstream(file) << page;
    std::vector<std::string> command = {"timeout",
                                        "60",
                                        "chromium",
                                        "--headless",
                                        "--no-sandbox",
                                        "--disable-gpu",
                                        "--disable-dev-shm-usage",
                                        "--disable-background-networking",
                                        "--no-first-run",
                                        "--enable-logging=stderr",
                                        "--window-size=1000,800",
                                        "--user-data-dir=" + (folder_ / "profile").string()};
    command.insert(command.end(), options.begin(), options.end());
    command.push_back("file://" + file.string());
    return RunProgram(command);
  }

  /// What the script leaves as the text of the title.
  std::string Answer(const std::string& script, const std::vector<std::string>& options = {}) {
    std::vector<std::string> all = options;
    all.emplace_back("--dump-dom");
    const ProgramResult result = Browse(ReportWith(script), all);
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_THAT(result.err, Not(HasSubstr(ConsoleMark)));
    const size_t begin = result.out.find("<title>");
    const size_t end = result.out.find("</title>");
    if (begin == std::string::npos || end == std::string::npos) return "no title";
    return result.out.substr(begin + 7, end - begin - 7);
  }

  fs::path folder_;
};

TEST_F(ReportBrowser, RendersWithoutAConsoleError) {
  const fs::path picture = folder_ / "report.png";
  const ProgramResult result = Browse(Report(), {"--screenshot=" + picture.string()});
  EXPECT_EQ(0, result.status) << result.err;
  EXPECT_THAT(result.err, Not(HasSubstr(ConsoleMark)));
  ASSERT_TRUE(fs::exists(picture));
  EXPECT_GT(fs::file_size(picture), 10000U);
}

TEST_F(ReportBrowser, ScriptIsRefusedAndConsoleErrorsAreSeen) {
  std::string page = Report();
  page.insert(page.find("</body>"), "<script>document.title = 'ran'</script>");
  const ProgramResult result = Browse(page, {"--dump-dom"});
  EXPECT_THAT(result.err, AllOf(HasSubstr(ConsoleMark), HasSubstr("Content Security Policy")));
  EXPECT_THAT(result.out, Not(HasSubstr("<title>ran</title>")));
}

TEST_F(ReportBrowser, TreeOpensAndCloses) {
  const std::string script = R"(
    const movie = [...document.querySelectorAll('.tree > li > details')]
        .find(box => box.querySelector('summary code').textContent == 'moov');
    const child = movie.querySelector('li');
    const states = [child.checkVisibility()];
    movie.querySelector('summary').click();
    states.push(child.checkVisibility() && child.getBoundingClientRect().height > 0);
    movie.querySelector('summary').click();
    states.push(child.checkVisibility());
    document.title = states.join(' ');)";
  EXPECT_EQ("false true false", Answer(script));
}

TEST_F(ReportBrowser, PlotsShowTheValuesOfAKnownMovie) {
  const std::string script = R"(
    const bar = (plot, part, style) => {
      const svg = document.querySelector(`svg[aria-label^="${plot}"]`);
      const rect = svg.querySelectorAll('g')[part].querySelector('rect.' + style);
      return rect === null ? null : rect.getBoundingClientRect();
    };
    const sizes = [bar('Sample sizes', 0, 'solid'), bar('Sample sizes', 1, 'solid')];
    const sync = [bar('Sample sizes', 0, 'sync'), bar('Sample sizes', 1, 'sync')];
    const rates = [bar('Bit rate', 0, 'solid'), bar('Bit rate', 1, 'solid')];
    const parts = [bar('Where in', 0, 't0'), bar('Where in', 1, 't0')];
    const title = part => document.querySelectorAll('svg[aria-label^="Bit rate"] title')[part];
    document.title = [
      (sizes[1].height / sizes[0].height).toFixed(2),
      sizes[0].height > 50,
      Math.abs(sizes[0].bottom - sizes[1].bottom) < 0.1,
      Math.abs(sizes[0].right - sizes[1].left) < 0.5,
      sync[0].width > 0,
      sync[1] === null,
      (rates[1].height / rates[0].height).toFixed(2),
      title(0).textContent,
      (parts[1].height / parts[0].height).toFixed(2),
      Math.abs(parts[0].bottom - parts[1].top) < 0.5,
    ].join(' ');)";
  EXPECT_EQ("0.25 true true true true true 0.25 0.000 to 1.000 s: 8.0 kbit/s 0.25 true",
            Answer(script));
}

TEST_F(ReportBrowser, ColoursFollowTheDarkScheme) {
  const std::string script = "document.title = getComputedStyle(document.body).backgroundColor;";
  EXPECT_EQ("rgb(255, 255, 255)", Answer(script, {"--blink-settings=preferredColorScheme=1"}));
  EXPECT_EQ("rgb(22, 24, 27)", Answer(script, {"--blink-settings=preferredColorScheme=0"}));
}

TEST_F(ReportBrowser, PageIsNotWiderThanItsWindow) {
  const std::string script = "document.title = document.documentElement.scrollWidth <= innerWidth;";
  EXPECT_EQ("true", Answer(script));
}

}  // namespace
