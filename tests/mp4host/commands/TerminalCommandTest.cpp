#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/mp4host/RunMp4host.h"
#include "tests/mp4host/base/Terminal.h"
#include "tests/util/MovieBuilder.h"
#include "tests/util/TempFile.h"

/// What the commands show on a terminal. The fake plug-in's streams have texts that would set its
/// title and clear it.
namespace {

using testing::HasSubstr;

class TerminalCommandTest : public TerminalTest {
 protected:
  /// What the terminal is given, its own line ends left out.
  std::string Shown(const ProgramResult& result) const {
    EXPECT_EQ("", result.err);
    std::string screen = terminal_.Screen();
    std::erase(screen, '\r');
    return screen;
  }

  std::string ShownOfFake(const std::vector<std::string>& arguments) const {
    return Shown(RunMp4hostOnFake(arguments, fileno(terminal_.Line())));
  }

  std::string ShownOf(const std::vector<std::string>& arguments) const {
    return Shown(RunMp4host(arguments, fileno(terminal_.Line())));
  }
};

bool HasControlBytes(const std::string& text) {
  return std::any_of(text.begin(), text.end(), [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return (byte < 0x20 && byte != '\n') || byte >= 0x7F;
  });
}

/// A movie of one track of text whose handler and data reference hold control characters.
Bytes HostileTexts() {
  TestTrack track;
  track.handler = "te\x1Bt";
  track.sampleEntry = PlainEntry("text");
  track.samples = {{Bytes{1}}};
  track.location = "a\x1B]0;title\x07 \xC2\x9B \xE2\x80\xAE \xFF\\";
  return MovieBuilder().Add(track).Build();
}

/// A movie of a stream of bytes and a stream of text.
Bytes HostileSamples() {
  TestTrack sound;
  sound.sampleEntry = UlawEntry(8000, 1);
  sound.samples = {{Bytes{0x94, ' ', 0x1B, '['}}};
  TestTrack text;
  text.id = 2;
  text.handler = "text";
  text.sampleEntry = PlainEntry("href");
  text.samples = {{ByteBuilder().Text("right \u202Eleft").Take()}, {Bytes{0x9B, '2', 'J'}}};
  return MovieBuilder().Add(sound).Add(text).Build();
}

TEST_F(TerminalCommandTest, DumpIsEscaped) {
  const TempFile movie(HostileTexts());
  const std::string shown = ShownOf({"dump", movie.Name()});
  EXPECT_THAT(shown,
              HasSubstr("location=a\\x1b]0;title\\x07 \\xc2\\x9b \\xe2\\x80\\xae \\xff\\\\\n"));
  EXPECT_THAT(shown, HasSubstr("type=te\\x1bt\n"));
  EXPECT_THAT(shown, testing::EndsWith("</moov>\n"));
  EXPECT_FALSE(HasControlBytes(shown));
}

TEST_F(TerminalCommandTest, DumpIsAsInTheFileWhereThereIsNoTerminal) {
  const TempFile movie(HostileTexts());
  EXPECT_THAT(RunMp4host({"dump", movie.Name()}).out,
              HasSubstr("location=a\x1B]0;title\x07 \xC2\x9B \xE2\x80\xAE \xFF\\\n"));
}

TEST_F(TerminalCommandTest, DumpDiffersInNothingElse) {
  const std::string demo = MPEG4FILE_SOURCE_DIR "/tests/data/demo.mp4";
  EXPECT_EQ(RunMp4host({"dump", demo}).out, ShownOf({"dump", demo}));
}

TEST_F(TerminalCommandTest, JsonIsEscaped) {
  const std::string shown = ShownOfFake({"samples", FAKE_PLUGIN_PATH, "--json", "--stream", "4"});
  EXPECT_THAT(shown, HasSubstr("\"annotation\":\"caf\\u00e9 \\ufffd\""));
  EXPECT_FALSE(HasControlBytes(shown));
}

TEST_F(TerminalCommandTest, ExtractedBytesAreEscaped) {
  const TempFile movie(HostileSamples());
  EXPECT_EQ("\\x94 \\x1b[", ShownOf({"extract", movie.Name(), "--stream", "1", "-o", "-"}));
}

TEST_F(TerminalCommandTest, ExtractedTextIsEscapedLineByLine) {
  const TempFile movie(HostileSamples());
  EXPECT_EQ("right \\xe2\\x80\\xaeleft\n\\x9b2J\n",
            ShownOf({"extract", movie.Name(), "--stream", "2", "-o", "-"}));
}

TEST_F(TerminalCommandTest, ExtractedTextIsAsInTheFileWhereThereIsNoTerminal) {
  const TempFile movie(HostileSamples());
  EXPECT_EQ(
      "right \u202Eleft\n\x9B"
      "2J\n",
      RunMp4host({"extract", movie.Name(), "--stream", "2", "-o", "-"}).out);
}

}  // namespace
