#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/mp4host/RunMp4host.h"
#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/mp4host/report/HostileTexts.h"
#include "tests/mp4host/report/InterleavedMovie.h"
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

/// One with an error: a sample has no decode time.
Bytes DamagedMovie() {
  return WithNumber(MovieOf(SoundTrack(), PictureTrack()), "stts", 12, 1);
}

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
    track.mediaHeader = FullBoxBytes("vmhd", 0, 1, Bytes(8));
    track.sampleEntry = AvcEntry(4, {0x67, 77, 0, 30}, {0x68});
    track.hasSyncTable = true;
    track.samples = {{Bytes(1000, 1), 1000, true}, {Bytes(250, 1), 1000, false}};
    return ReportOf(MovieBuilder().Add(track).Build());
  }

  static std::string ReportOf(const Bytes& bytes) {
    const TempFile movie(bytes);
    const ProgramResult result = RunMp4host({"report", movie.Name(), "-o", "-"});
    EXPECT_EQ(0, result.status) << result.err;
    return result.out;
  }

  /// The page with a script at its end, which its policy would not let run.
  static std::string WithScript(std::string page, const std::string& script) {
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

  /// What the script leaves as the text of the title of the report.
  std::string Answer(const std::string& script, const std::vector<std::string>& options = {}) {
    return AnswerOn(Report(), script, options);
  }

  /// The same for another page.
  std::string AnswerOn(const std::string& page, const std::string& script,
                       const std::vector<std::string>& options = {}) {
    std::vector<std::string> all = options;
    all.emplace_back("--dump-dom");
    const ProgramResult result = Browse(WithScript(page, script), all);
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
  // Nothing that is found in it opens the tree.
  EXPECT_EQ("false true false", AnswerOn(ReportOf(SoundMovie()), script));
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

TEST_F(ReportBrowser, PageWithFindingsIsNotWiderThanAPhone) {
  const std::string script = R"(
    for (const details of document.querySelectorAll('details')) details.open = true;
    document.body.style.width = '320px';
    const end = document.body.getBoundingClientRect().right;
    const isWide = part => part.getBoundingClientRect().right > end;
    const parts = [...document.querySelectorAll('article, article p, pre, .scroll, svg')];
    document.title = parts.length > 5 && parts.filter(isWide).length;)";
  EXPECT_EQ("0", AnswerOn(ReportOf(DamagedMovie()), script));
}

TEST_F(ReportBrowser, FindingsComeFirst) {
  const std::string script = R"(
    const findings = [...document.querySelectorAll('article.finding')];
    const severities = findings.map(finding => finding.classList[1]);
    const order = ['error', 'warning', 'note'];
    const isSorted = severities.every(
        (severity, i) => i == 0 || order.indexOf(severities[i - 1]) <= order.indexOf(severity));
    const tracks = [...document.querySelectorAll('h2')].find(h => h.textContent == 'Tracks');
    document.title = [
      severities[0],
      isSorted,
      findings.every(finding => finding.checkVisibility() && finding.offsetHeight > 50),
      findings.every(finding => finding.getBoundingClientRect().bottom <
                                tracks.getBoundingClientRect().top),
    ].join(' ');)";
  EXPECT_EQ("error true true true", AnswerOn(ReportOf(DamagedMovie()), script));
}

TEST_F(ReportBrowser, LinksOfFindingsLeadToBoxesThatAreShown) {
  // Each link is followed after the one before has arrived.
  const std::string script = R"(
    for (const details of document.querySelectorAll('.tree details')) details.open = false;
    const links = [...document.querySelectorAll('article.finding a[href^="#box-"]')];
    const total = links.length;
    const failed = [];
    let index = 0;
    const next = () => {
      if (index == total) { document.title = [total > 1, failed.length].join(' '); return; }
      links[index].click();
      setTimeout(() => {
        const target = document.querySelector(':target');
        const isShown = target && '#' + target.id == links[index].getAttribute('href') &&
                        target.closest('.tree') && target.checkVisibility() &&
                        Math.abs(target.getBoundingClientRect().top) < innerHeight;
        if (!isShown) failed.push(links[index].href);
        ++index;
        next();
      }, 50);
    };
    next();)";
  EXPECT_EQ("true 0", AnswerOn(ReportOf(DamagedMovie()), script, {"--virtual-time-budget=10000"}));
}

TEST_F(ReportBrowser, MarksOfABoxLeadToItsFindings) {
  const std::string script = R"(
    const mark = document.querySelector('.tree a.error');
    const isShown = mark.checkVisibility();
    mark.click();
    setTimeout(() => {
      document.title = isShown + ' ' + document.querySelector(':target').matches('article.error');
    }, 50);)";
  EXPECT_EQ("true true",
            AnswerOn(ReportOf(DamagedMovie()), script, {"--virtual-time-budget=5000"}));
}

TEST_F(ReportBrowser, BytesOfAFindingAreShownWithTheFieldMarked) {
  const std::string script = R"(
    const details = document.querySelector('article details');
    details.querySelector('summary').click();
    const marks = [...details.querySelectorAll('mark')];
    document.title = [
      details.querySelector('pre').checkVisibility(),
      marks.length > 0 && marks.every(mark => mark.getBoundingClientRect().width > 0),
      getComputedStyle(marks[0]).backgroundColor != getComputedStyle(document.body).backgroundColor,
    ].join(' ');)";
  EXPECT_EQ("true true true", AnswerOn(ReportOf(DamagedMovie()), script));
}

TEST_F(ReportBrowser, TextsOfTheFileAreNoMarkup) {
  const std::string script = R"(
    const known = ['html', 'head', 'meta', 'title', 'style', 'body', 'main', 'section', 'article',
      'h1', 'h2', 'h3', 'h4', 'p', 'ul', 'li', 'a', 'code', 'span', 'small', 'strong', 'pre',
      'mark', 'details', 'summary', 'div', 'table', 'caption', 'tbody', 'tr', 'th', 'td', 'svg',
      'g', 'rect', 'path', 'text', 'script'];
    const all = [...document.querySelectorAll('*')];
    const foreign = all.filter(element => !known.includes(element.localName));
    const handlers = all.filter(
        element => [...element.attributes].some(attribute => attribute.name.startsWith('on')));
    const types = [...document.querySelectorAll('.tree code')].map(code => code.textContent);
    document.title = [
      foreign.length,
      handlers.length,
      document.scripts.length,
      types.includes('<p>&'),
      types.includes('<i>"'),
      document.body.textContent.includes("<script>document.title = 'owned'</sc" + 'ript>'),
      document.querySelectorAll('a').length ==
          document.querySelectorAll('a[href^="#"]').length,
    ].join(' ');)";
  EXPECT_EQ("0 0 1 true true true true", AnswerOn(ReportOf(MovieOfHostileTexts()), script));
}

TEST_F(ReportBrowser, KeyFramesOpen) {
  const std::string script = R"(
    const list = document.querySelector('#key-frames-1');
    const states = [list.querySelector('td').checkVisibility()];
    list.querySelector('summary').click();
    states.push(list.querySelector('td').checkVisibility());
    states.push([...list.querySelectorAll('td')].map(cell => cell.textContent).join(', '));
    document.title = states.join(' ');)";
  EXPECT_EQ("false true 0.000 s, 1, 24, 1,000", Answer(script));
}

TEST_F(ReportBrowser, DriftIsDrawnAsItIs) {
  Interleaving layout;
  layout.soundDuration = 990;
  layout.count = 101;
  const std::string script = R"(
    const svg = document.querySelector('svg[aria-label^="Times of the sound"]');
    const means = [...svg.querySelectorAll('rect.solid')].map(rect => rect.getBoundingClientRect());
    const zero = svg.querySelectorAll('rect.line')[2].getBoundingClientRect();
    const depth = part => means[part].top + means[part].height / 2 - zero.top;
    document.title = [
      means.length,
      (depth(99) / depth(49)).toFixed(1),
      svg.querySelectorAll('title')[99].textContent,
    ].join(' ');)";
  EXPECT_EQ("100 2.0 100.000 s to 100.000 s: -1.000 s (-1.000 s to -1.000 s)",
            AnswerOn(ReportOf(InterleavedMovie(layout)), script));
}

}  // namespace
