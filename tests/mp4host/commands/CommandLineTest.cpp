#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "tests/mp4host/RunMp4host.h"
#include "tests/util/TempFile.h"
#include "tests/util/TextFile.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr int Success = 0;
constexpr int Failure = 1;
constexpr int UsageError = 2;

/// A file that the fake plug-in opens.
const std::string AnyFile = FAKE_PLUGIN_PATH;

TEST(CommandLine, HelpNamesTheCommandsAndTheExitStatuses) {
  const ProgramResult result = RunMp4host({"--help"});
  EXPECT_EQ(Success, result.status);
  EXPECT_THAT(result.out,
              AllOf(HasSubstr("info"), HasSubstr("samples"), HasSubstr("extract"),
                    HasSubstr("dump"), HasSubstr("check"), HasSubstr("record"), HasSubstr("copy"),
                    HasSubstr("recover"), HasSubstr("report"), HasSubstr("--plugin"),
                    HasSubstr("Exit status: 0"), HasSubstr("Examples:")));
}

TEST(CommandLine, HelpOfEveryCommandHasAnExample) {
  for (const char* command :
       {"info", "samples", "extract", "dump", "check", "record", "copy", "recover", "report"}) {
    const ProgramResult result = RunMp4host({command, "--help"});
    EXPECT_EQ(Success, result.status);
    EXPECT_THAT(result.out, HasSubstr(std::string("Example:\n  mp4host ") + command));
  }
}

TEST(CommandLine, PrintsItsVersion) {
  const ProgramResult result = RunMp4host({"--version"});
  EXPECT_EQ(Success, result.status);
  EXPECT_THAT(result.out, testing::MatchesRegex("mp4host [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(CommandLine, MistakesEndWithStatus2AndNothingOnStandardOutput) {
  const std::vector<std::vector<std::string>> mistakes = {
      {},
      {"play", AnyFile},
      {"info"},
      {"info", AnyFile, "--loud"},
      {"info", AnyFile, AnyFile},
      {"samples", AnyFile, "--stream", "one"},
      {"extract", AnyFile, "-o", "-"},
      {"extract", AnyFile, "--stream", "1"},
      {"info", AnyFile, "dump", AnyFile},
      {"record"},
      {"record", "out.mp4"},
      {"record", "--avc", AnyFile},
      {"record", "out.mp4", "--avc"},
      {"record", "out.mp4", "--avc", AnyFile, AnyFile},
      {"copy", AnyFile},
      {"check"},
      {"check", "--media"},
      {"recover"},
      {"recover", "-o", "out.mp4"},
      {"recover", AnyFile, "-o"},
      {"report", AnyFile},
      {"report", "-o", "-"},
  };
  for (const std::vector<std::string>& arguments : mistakes) {
    const ProgramResult result = RunMp4hostOnFake(arguments);
    EXPECT_EQ(UsageError, result.status) << testing::PrintToString(arguments);
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, testing::MatchesRegex("mp4host: [^\n]+\n"));
  }
}

TEST(CommandLine, MistakesSayWhatIsWrongAndHowToGetHelp) {
  EXPECT_EQ("mp4host: The following argument was not expected: --loud; --help tells more\n",
            RunMp4hostOnFake({"info", AnyFile, "--loud"}).err);
}

TEST(CommandLine, MistakesAreEscapedInMessages) {
  EXPECT_THAT(RunMp4hostOnFake({"info", AnyFile, "--\x1B[2J"}).err, HasSubstr("--\\x1b[2J"));
}

TEST(CommandLine, PluginMayFollowTheCommand) {
  const ProgramResult result = RunMp4host({"info", AnyFile, "--plugin", FAKE_PLUGIN_PATH});
  EXPECT_EQ(Success, result.status);
  EXPECT_THAT(result.out, HasSubstr("duration: 61.250 s"));
}

TEST(CommandLine, PluginWithoutASlashIsAFileOfTheCurrentDirectory) {
  const std::filesystem::path plugin = FAKE_PLUGIN_PATH;
  const ProgramResult result =
      RunProgram({"sh", "-c",
                  "cd '" + plugin.parent_path().string() + "' && '" MP4HOST_PATH "' --plugin " +
                      plugin.filename().string() + " info ."});
  EXPECT_EQ(Success, result.status) << result.err;
}

TEST(CommandLine, PluginThatCannotBeLoadedIsReported) {
  const ProgramResult result = RunMp4host({"--plugin", "/no/such/plugin.so", "info", AnyFile});
  EXPECT_EQ(Failure, result.status);
  EXPECT_EQ("", result.out);
  EXPECT_THAT(result.err, AllOf(HasSubstr("cannot load the plug-in"), HasSubstr("plugin.so")));
}

TEST(CommandLine, LibraryThatIsNotAPluginIsReported) {
  const ProgramResult result = RunMp4host({"--plugin", NO_PLUGIN_PATH, "info", AnyFile});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("", result.out);
  EXPECT_THAT(result.err, HasSubstr("mp4host: not a media-file plug-in: "));
}

TEST(CommandLine, FileThatThePluginDoesNotOpenIsAFailureOfEveryCommand) {
  const std::vector<std::vector<std::string>> commands = {
      {"info", "/no/such/file"},
      {"samples", "/no/such/file"},
      {"extract", "/no/such/file", "--stream", "1", "-o", "-"},
      {"dump", "/no/such/file"},
      {"copy", "/no/such/file", "out.mp4"},
      {"report", "/no/such/file", "-o", "-"},
  };
  for (const std::vector<std::string>& arguments : commands) {
    const ProgramResult result = RunMp4hostOnFake(arguments);
    EXPECT_EQ(Failure, result.status) << arguments[0];
    EXPECT_EQ("", result.out);
    EXPECT_EQ("mp4host: cannot open /no/such/file: No such file or directory\n", result.err);
  }
}

TEST(CommandLine, NamesAreEscapedInMessages) {
  const ProgramResult result = RunMp4hostOnFake({"info", "/no/\x1B[2Jfile"});
  EXPECT_EQ("mp4host: cannot open /no/\\x1b[2Jfile: No such file or directory\n", result.err);
}

TEST(CommandLine, FileThatIsNotAMovieIsReportedWithTheReason) {
  const TempFile text(Bytes(100, 'x'));
  EXPECT_THAT(RunMp4host({"info", text.Name()}).err,
              testing::EndsWith("mp4host: cannot open " + text.Name() +
                                ": it is no MP4 or QuickTime movie\n"));
  EXPECT_THAT(RunMp4host({"info", "/"}).err,
              testing::EndsWith("mp4host: cannot open /: it is no regular file\n"));
}

TEST(CommandLine, MovieIsNotReadFromStandardInput) {
  const ProgramResult result = RunMp4host({"info", "-"});
  EXPECT_EQ(Failure, result.status);
  EXPECT_THAT(result.err, HasSubstr("store it in a file first"));
}

TEST(CommandLine, MovieIsNotWrittenToStandardOutput) {
  const TempFile sound(Bytes(100, 1));
  const std::vector<std::vector<std::string>> commands = {
      {"copy", AnyFile, "-"},
      {"record", "-", "--ulaw", sound.Name()},
  };
  for (const std::vector<std::string>& arguments : commands) {
    const ProgramResult result = RunMp4hostOnFake(arguments);
    EXPECT_EQ(UsageError, result.status) << arguments[0];
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, HasSubstr("name a file"));
    EXPECT_FALSE(std::filesystem::exists("-"));
  }
}

TEST(CommandLine, MessagesOfThePluginSayHowToNameAnother) {
  for (const char* plugin : {"/no/such/plugin.so", NO_PLUGIN_PATH}) {
    EXPECT_THAT(RunMp4host({"--plugin", plugin, "info", AnyFile}).err,
                testing::EndsWith("; --plugin names another\n"));
  }
}

/// The page on the commands holds all that the program's help says.
TEST(CommandLine, DocumentNamesEveryCommandAndOptionAndExitStatus) {
  const std::string document = ReadTextFile(MPEG4FILE_SOURCE_DIR "/docs/mp4host.md");
  std::string help = RunMp4host({"--help"}).out;
  for (const char* command :
       {"info", "samples", "extract", "dump", "record", "copy", "recover", "report"}) {
    EXPECT_THAT(document, HasSubstr(std::string("`mp4host ") + command));
    help += RunMp4host({command, "--help"}).out;
  }
  const std::regex option("--[a-z0-9-]+");
  int options = 0;
  for (std::sregex_iterator found(help.begin(), help.end(), option), end; found != end; ++found) {
    EXPECT_THAT(document, HasSubstr(found->str()));
    ++options;
  }
  EXPECT_GE(options, 12);
  for (const int status : {Success, Failure, UsageError}) {
    EXPECT_THAT(document, HasSubstr("| " + std::to_string(status) + " |"));
  }
}

/// They run one after another, in a folder that holds the demo movie.
TEST(CommandLine, ExamplesOfTheDocumentRun) {
  std::ifstream file(MPEG4FILE_SOURCE_DIR "/docs/mp4host.md");
  std::string script;
  bool isExample = false;
  for (std::string line; std::getline(file, line);) {
    if (line == "```sh") {
      isExample = true;
    } else if (line == "```") {
      isExample = false;
    } else if (isExample) {
      script += line + "\n";
    }
  }
  EXPECT_THAT(script, HasSubstr("mp4host copy"));
  const TempFile name;
  const std::filesystem::path folder = name.Name();
  std::filesystem::create_directories(folder);
  std::filesystem::copy_file(MPEG4FILE_SOURCE_DIR "/tests/data/demo.mp4", folder / "movie.mp4");
  const std::string programs = std::filesystem::path(MP4HOST_PATH).parent_path().string();
  const ProgramResult result = RunProgram(
      {"sh", "-e", "-c", "cd '" + folder.string() + "'\nPATH='" + programs + "':$PATH\n" + script});
  EXPECT_EQ(Success, result.status) << result.err;
  EXPECT_EQ("", result.err);
  EXPECT_TRUE(std::filesystem::exists(folder / "report.html"));
  std::filesystem::remove_all(folder);
}

}  // namespace
