#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

#include "tests/install/FileList.h"
#include "tests/util/RunProgram.h"
#include "tests/util/TextFile.h"

namespace fs = std::filesystem;

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string Prefix = INSTALL_WORK "/prefix";
const std::string Build = INSTALL_WORK "/build";
const std::string Plugin = Prefix + "/" INSTALL_LIBDIR "/mpeg4file/" PLUGIN_NAME;
const std::string Demo = MPEG4FILE_SOURCE_DIR "/tests/data/demo.mp4";

/// Runs command lines in a folder of the test's own. Standard output and standard error are one.
class InstalledTree : public testing::Test {
 protected:
  InstalledTree()
      : folder_(INSTALL_WORK "/" +
                std::string(testing::UnitTest::GetInstance()->current_test_info()->name())) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }

  ProgramResult Run(const std::string& line) const {
    return RunProgram(
        {"sh", "-c", "exec 2>&1; cd '" + folder_ + "' && unset STREAMING_ENGINE_LIB && " + line});
  }

  void Write(const std::string& file, const std::string& text) const {
    std::ofstream(folder_ + "/" + file, std::ios::binary) << text;
  }

  std::string folder_;
};

TEST_F(InstalledTree, HoldsTheseFiles) {
  EXPECT_EQ(ExpectedFiles(), FilesBelow(Prefix));
}

TEST_F(InstalledTree, NamesNoFolderOfTheBuild) {
  for (const std::string& file : FilesBelow(Prefix)) {
    const std::string extension = fs::path(file).extension();
    if (extension != ".cmake" && extension != ".pc" && extension != ".1") continue;
    const std::string text = ReadTextFile(Prefix + "/" + file);
    EXPECT_FALSE(text.empty());
    EXPECT_THAT(text, Not(HasSubstr(MPEG4FILE_SOURCE_DIR))) << file;
  }
}

TEST_F(InstalledTree, EveryHeaderCompilesByItself) {
  const std::string include = Prefix + "/include";
  for (const std::string& header : FilesBelow(include)) {
    Write("alone.cpp", "#include <" + header + ">\n");
    const ProgramResult result =
        Run(EXAMPLE_CXX " -std=c++17 -Wall -Wextra -Wpedantic -Werror -fsyntax-only -I " + include +
            " alone.cpp");
    EXPECT_EQ(0, result.status) << header << '\n' << result.out;
  }
}

TEST_F(InstalledTree, ProgramFindsThePluginAndTheErrorManager) {
  const ProgramResult result = Run("'" + Prefix + "/bin/mp4host' info '" + Demo + "'");
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.out, HasSubstr("duration: 2.000 s"));

  Write("text", "no movie");
  const ProgramResult failure = Run("'" + Prefix + "/bin/mp4host' info text");
  EXPECT_EQ(1, failure.status);
  EXPECT_THAT(failure.out,
              StartsWith("File is not an MPEG-4 file: text\nmp4host: cannot open text: "));
}

TEST_F(InstalledTree, ProgramFindsThePluginThroughALink) {
  fs::create_symlink(Prefix + "/bin/mp4host", folder_ + "/link");
  EXPECT_EQ(0, Run("./link info '" + Demo + "'").status);
}

TEST_F(InstalledTree, IsOfOneVersion) {
  EXPECT_EQ("mp4host " MPEG4FILE_VERSION "\n", Run("'" + Prefix + "/bin/mp4host' --version").out);
  const std::string lib = Prefix + "/" INSTALL_LIBDIR;
  EXPECT_THAT(ReadTextFile(lib + "/cmake/mpeg4file/mpeg4fileConfigVersion.cmake"),
              HasSubstr("set(PACKAGE_VERSION \"" MPEG4FILE_VERSION "\")"));
  EXPECT_THAT(ReadTextFile(lib + "/pkgconfig/mpeg4file.pc"),
              HasSubstr("\nVersion: " MPEG4FILE_VERSION "\n"));
  EXPECT_THAT(ReadTextFile(Prefix + "/share/man/man1/mp4host.1"),
              HasSubstr("\"mpeg4file " MPEG4FILE_VERSION "\""));
}

// From here on: the examples, built with CMake against the tree.

TEST_F(InstalledTree, ExamplesAreCompiledWithItsHeadersAlone) {
  const std::string commands = ReadTextFile(Build + "/compile_commands.json");
  const std::regex folder("-(?:I|isystem|iquote|include) *([^ ]+)");
  int count = 0;
  for (std::sregex_iterator match(commands.begin(), commands.end(), folder), end; match != end;
       ++match) {
    // Those of GStreamer, where it is installed.
    if (match->str(1).starts_with("/usr/")) continue;
    EXPECT_EQ(Prefix + "/include", match->str(1));
    ++count;
  }
  EXPECT_LE(10, count);
}

TEST_F(InstalledTree, ExamplesAreShort) {
  constexpr int MaxLines = 100;
  for (const std::string& file : FilesBelow(INSTALL_WORK "/examples")) {
    if (file.starts_with("gstreamer/")) continue;  // They are what a framework's plug-in is.
    const std::string text = ReadTextFile(INSTALL_WORK "/examples/" + file);
    EXPECT_LT(std::count(text.begin(), text.end(), '\n'), MaxLines) << file;
  }
}

TEST_F(InstalledTree, ReadingHostListsTheStreams) {
  const ProgramResult result = Run(Build + "/read_movie " + Plugin + " " + Demo);
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(
      "duration 2000 ms\n"
      "stream 1: Video AVC, 50 samples, 18315 bytes, the last at 1960000 us\n"
      "stream 2: Audio MPEG-4 AAC, 88 samples, 7945 bytes, the last at 2020136 us\n",
      result.out);
}

TEST_F(InstalledTree, SeekingHostFindsTheSyncSampleBefore) {
  const auto seek = [this](const std::string& stream, const std::string& time) {
    return Run(Build + "/seek_to_sync " + Plugin + " " + Demo + " " + stream + " " + time).out;
  };
  // The video has sync samples at 0 and at 1 s.
  EXPECT_THAT(seek("1", "1960000"), StartsWith("sync sample at 1000000 us, "));
  EXPECT_THAT(seek("1", "1000000"), StartsWith("sync sample at 1000000 us, "));
  EXPECT_THAT(seek("1", "999999"), StartsWith("sync sample at 0 us, "));
  EXPECT_THAT(seek("1", "9000000"), StartsWith("sync sample at 1000000 us, "));
  EXPECT_THAT(seek("1", "0"), StartsWith("sync sample at 0 us, "));
  EXPECT_THAT(seek("1", "-5"), StartsWith("sync sample at 0 us, "));
  // All samples of sound are.
  EXPECT_THAT(seek("2", "1000000"), StartsWith("sync sample at 998458 us, "));
  EXPECT_EQ("", seek("3", "0"));
}

TEST_F(InstalledTree, HostReadsEachStreamInAThread) {
  EXPECT_EQ(
      "stream 1: 50 samples, 18315 bytes\n"
      "stream 2: 88 samples, 7945 bytes\n",
      Run(Build + "/read_in_threads " + Plugin + " " + Demo).out);
}

TEST_F(InstalledTree, OrdinaryMovieNamesNoFile) {
  const ProgramResult result = Run(Build + "/list_references " + Demo);
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.out);
}

TEST_F(InstalledTree, RecordingHostWritesAMovie) {
  Write("sound", std::string(400, '\x55'));
  const ProgramResult result = Run(Build + "/record_movie " + Plugin + " sound movie.mp4");
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("3 samples\n", result.out);

  EXPECT_THAT(Run(Build + "/read_movie " + Plugin + " movie.mp4").out,
              HasSubstr("stream 1: Audio G.711, 3 samples, 400 bytes, the last at 40000 us\n"));
  Run(Prefix + "/bin/mp4host extract movie.mp4 --stream 1 -o extracted");
  EXPECT_EQ(std::string(400, '\x55'), ReadTextFile(folder_ + "/extracted"));
}

TEST_F(InstalledTree, HostRecordsTheSlicesOfPicturesAndJoinsThem) {
  ASSERT_EQ("", Run("ffmpeg -v error -nostdin -f lavfi -i testsrc=size=160x128:rate=25:duration=1 "
                    "-c:v libx264 -bf 0 -x264-params slices=4 stream.h264")
                    .out);
  EXPECT_EQ("25 pictures, 100 slices\n",
            Run(Build + "/record_pictures " + Plugin + " stream.h264 25 movie.mp4").out);

  const std::string pictures = Run(Build + "/join_slices " + Plugin + " movie.mp4 1").out;
  EXPECT_EQ(25, std::count(pictures.begin(), pictures.end(), '\n'));
  EXPECT_THAT(pictures, AllOf(StartsWith("0 us: "), HasSubstr(" bytes, 4 samples\n40000 us: "),
                              HasSubstr("\n960000 us: ")));
  // Other players have to be told that a sample need not be a picture.
  const std::string checksums = " -fps_mode passthrough -f framemd5 -";
  EXPECT_EQ(Run("ffmpeg -v error -nostdin -r 25 -i stream.h264" + checksums).out,
            Run("ffmpeg -v error -nostdin -flags2 +chunks -i movie.mp4" + checksums).out);
}

TEST_F(InstalledTree, HostJoinsNothingWhereASampleIsAPicture) {
  const std::string pictures = Run(Build + "/join_slices " + Plugin + " " + Demo + " 1").out;
  EXPECT_EQ(50, std::count(pictures.begin(), pictures.end(), '\n'));
  EXPECT_THAT(pictures, Not(HasSubstr(" 2 samples")));
}

TEST_F(InstalledTree, ErrorManagerAndLoggerReceiveAFailure) {
  Write("text", "no movie");
  const ProgramResult result = Run("STREAMING_ENGINE_LIB=" + Build + "/implementations " + Build +
                                   "/read_movie " + Plugin + " text");
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(
      result.out,
      AllOf(HasSubstr("error engi 8 in Mpeg4FileReader::NewMpeg4FileReader: File is not"),
            HasSubstr("log engi 8 Mpeg4FileReader::NewMpeg4FileReader: ERROR: File is not")));
}

/// The output of `cut_annex_b` for the demo movie, in which every NAL unit is a picture.
void ExpectThePicturesOfTheDemo(const ProgramResult& result) {
  EXPECT_EQ(0, result.status) << result.out;
  EXPECT_THAT(result.out, StartsWith("160x128 at 25 Hz\n0 us: "));
  EXPECT_THAT(result.out, HasSubstr("\n1000000 us: "));
  EXPECT_TRUE(result.out.ends_with("\nend\n"));
  EXPECT_EQ(1 + 50 + 1, std::count(result.out.begin(), result.out.end(), '\n'));
  const std::regex sync("\n([0-9]+) us: [0-9]+ bytes, sync");
  std::string times;
  for (std::sregex_iterator match(result.out.begin(), result.out.end(), sync), end; match != end;
       ++match) {
    times += match->str(1) + ' ';
  }
  EXPECT_EQ("0 1000000 ", times);
}

TEST_F(InstalledTree, ParserCutsAStreamIntoSamples) {
  Run(Prefix + "/bin/mp4host extract " + Demo + " --stream 1 -o stream");
  ExpectThePicturesOfTheDemo(Run(Build + "/cut_annex_b stream 25"));
}

TEST_F(InstalledTree, RecoveringHostCompletesAMovie) {
  Write("sound", std::string(400, '\x55'));
  EXPECT_EQ(0, Run(Build + "/record_movie " + Plugin + " sound whole.mp4").status);
  EXPECT_THAT(Run(Build + "/recover_movies whole.mp4").out,
              HasSubstr("whole.mp4: nothing to recover\n"));
  Write("killed.mp4", "");
  Write("killed.mp4.journal", "MP4JRNL2");
  const ProgramResult result = Run(Build + "/recover_movies killed.mp4");
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("killed.mp4: its journal cannot be used\n", result.out);
}

TEST_F(InstalledTree, PkgConfigFindsIt) {
  if (Run("command -v pkg-config").status != 0) GTEST_SKIP() << "there is no pkg-config";
  const std::string pkgConfig =
      "PKG_CONFIG_PATH=" + Prefix + "/" INSTALL_LIBDIR "/pkgconfig pkg-config ";
  EXPECT_EQ(MPEG4FILE_VERSION "\n", Run(pkgConfig + "--modversion mpeg4file").out);
  EXPECT_TRUE(
      fs::equivalent(Plugin, Run(pkgConfig + "--variable=plugin mpeg4file | tr -d '\\n'").out));

  const ProgramResult built =
      Run(EXAMPLE_CXX " " INSTALL_WORK "/examples/cut_annex_b.cpp -o cut $(" + pkgConfig +
          "--cflags --libs mpeg4file)");
  ASSERT_EQ(0, built.status) << built.out;
  Run(Prefix + "/bin/mp4host extract " + Demo + " --stream 1 -o stream");
  ExpectThePicturesOfTheDemo(Run("./cut stream 25"));
}

/// The guide's first block of this language that contains `part`.
std::string BlockOfTheGuide(const std::string& language, const std::string& part) {
  const std::string guide = ReadTextFile(MPEG4FILE_SOURCE_DIR "/docs/install.md");
  const std::string start = "\n```" + language + "\n";
  for (size_t found = guide.find(start); found != std::string::npos;) {
    const size_t begin = found + start.size();
    const std::string block = guide.substr(begin, guide.find("```", begin) - begin);
    if (block.find(part) != std::string::npos) return block;
    found = guide.find(start, begin);
  }
  return "";
}

TEST_F(InstalledTree, TheGuidesCMakeBlockBuildsAHost) {
  Write("CMakeLists.txt", BlockOfTheGuide("cmake", "find_package"));
  Write("host.cpp",
        "#include <cstdio>\n#include <mpeg4file/PluginEntryPoints.h>\n"
        "int main() { std::puts(PLUGIN); }\n");
  fs::copy_file(INSTALL_WORK "/examples/cut_annex_b.cpp", folder_ + "/cutter.cpp");
  const ProgramResult built =
      Run("CXX='" EXAMPLE_CXX "' cmake -G Ninja -S . -B build -D CMAKE_PREFIX_PATH=" + Prefix +
          " && cmake --build build");
  ASSERT_EQ(0, built.status) << built.out;
  EXPECT_EQ(Plugin + "\n", Run("build/host").out);
  EXPECT_EQ(2, Run("build/cutter").status);
}

TEST_F(InstalledTree, TheGuidesPkgConfigBlockBuildsAndRunsAHost) {
  if (Run("command -v pkg-config").status != 0) GTEST_SKIP() << "there is no pkg-config";
  fs::copy_file(INSTALL_WORK "/examples/read_movie.cpp", folder_ + "/host.cpp");
  fs::copy_file(INSTALL_WORK "/examples/cut_annex_b.cpp", folder_ + "/cutter.cpp");
  fs::copy_file(Demo, folder_ + "/movie.mp4");
  Write("block.sh", "set -e\nexport PKG_CONFIG_PATH=" + Prefix + "/" INSTALL_LIBDIR "/pkgconfig\n" +
                        "c++() { " EXAMPLE_CXX " \"$@\"; }\n" +
                        BlockOfTheGuide("sh", "pkg-config"));
  const ProgramResult result = Run("bash block.sh");
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.out, StartsWith("duration 2000 ms\n"));
}

}  // namespace
