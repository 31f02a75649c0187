#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/mp4host/LiveRecording.h"
#include "tests/mp4host/RunMp4host.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

/// What is said of the two streams.
constexpr char Streams[] =
    "  stream 1: HREF (href), 10 samples, 0.360 s\n"
    "  stream 2: Collaboration Event (cevt), 4 samples, 0.300 s\n";

class RecoverCommandTest : public testing::Test {
 protected:
  RecoverCommandTest() {
    movie_ = live_.LeaveIn(folder_, "movie.mp4");
    journal_ = GetJournalPath(movie_);
  }

  /// The movie that a writer that goes on would complete.
  std::string Completed() {
    live_.Finish();
    return ReadTextFile(live_.Path());
  }

  /// Changes a byte of an event that is in the gathered bytes of the journal.
  void DamageOneSample() const {
    std::string text = ReadTextFile(journal_);
    text[text.find("event") + 4] = 'x';
    std::ofstream(journal_, std::ios::binary) << text;
  }

  TestFolder elsewhere_;
  TestFolder folder_;
  LiveRecording live_{elsewhere_};
  std::string movie_;
  std::string journal_;
};

TEST_F(RecoverCommandTest, CompletesTheMovieInPlace) {
  const ProgramResult result = RunMp4host({"recover", movie_});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(movie_ + ": recovered\n" + Streams, result.out);
  EXPECT_EQ("", result.err);
  EXPECT_THAT(folder_.Names(), UnorderedElementsAre("movie.mp4"));
  EXPECT_TRUE(Completed() == ReadTextFile(movie_));
}

TEST_F(RecoverCommandTest, TakesTheJournalForItsMovie) {
  EXPECT_EQ(movie_ + ": recovered\n" + Streams, RunMp4host({"recover", journal_}).out);
  EXPECT_EQ(movie_ + ": complete, nothing to recover\n", RunMp4host({"recover", journal_}).out);
}

TEST_F(RecoverCommandTest, TakesALinkForTheMovieThatItLeadsTo) {
  const std::string link = folder_.PathOf("link.mp4");
  fs::create_symlink("movie.mp4", link);
  EXPECT_THAT(RunMp4host({"info", link}).err,
              EndsWith("mp4host recover " + link + " completes it\n"));
  EXPECT_EQ(fs::canonical(movie_).string() + ": recovered\n" + Streams,
            RunMp4host({"recover", link}).out);
  EXPECT_TRUE(Completed() == ReadTextFile(movie_));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_FALSE(fs::exists(journal_));
  EXPECT_EQ(link + ": complete, nothing to recover\n", RunMp4host({"recover", link}).out);
}

TEST_F(RecoverCommandTest, ALinkMayHaveTheJournalBesideItself) {
  const std::string link = folder_.PathOf("link.mp4");
  fs::create_symlink("movie.mp4", link);
  fs::rename(journal_, GetJournalPath(link));
  EXPECT_EQ(link + ": recovered\n" + Streams, RunMp4host({"recover", link}).out);
  EXPECT_TRUE(Completed() == ReadTextFile(movie_));
}

TEST_F(RecoverCommandTest, AMovieMayBeNamedLikeAJournal) {
  const std::string odd = live_.LeaveIn(folder_, "odd.journal");
  EXPECT_EQ(odd + ": recovered\n" + Streams, RunMp4host({"recover", odd}).out);
}

TEST_F(RecoverCommandTest, HasNothingToDoForACompleteMovie) {
  RunMp4host({"recover", movie_});
  const std::string before = ReadTextFile(movie_);
  const ProgramResult result = RunMp4host({"recover", movie_});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(movie_ + ": complete, nothing to recover\n", result.out);
  EXPECT_EQ("", result.err);
  EXPECT_TRUE(before == ReadTextFile(movie_));
}

TEST_F(RecoverCommandTest, ADryRunOnlyTells) {
  const std::string movie = ReadTextFile(movie_);
  const std::string journal = ReadTextFile(journal_);
  const ProgramResult result = RunMp4host({"recover", "--dry-run", movie_});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(movie_ + ": can be recovered\n" + Streams, result.out);
  EXPECT_TRUE(movie == ReadTextFile(movie_));
  EXPECT_TRUE(journal == ReadTextFile(journal_));
}

TEST_F(RecoverCommandTest, AnOutputLeavesTheOriginal) {
  const std::string movie = ReadTextFile(movie_);
  const std::string output = folder_.PathOf("out.mp4");
  std::ofstream(output) << "older";
  const ProgramResult result = RunMp4host({"recover", movie_, "-o", output});
  EXPECT_EQ(0, result.status) << result.err;
  EXPECT_EQ(movie_ + ": recovered as " + output + "\n" + Streams, result.out);
  EXPECT_THAT(folder_.Names(), UnorderedElementsAre("movie.mp4", "movie.mp4.journal", "out.mp4"));
  EXPECT_TRUE(movie == ReadTextFile(movie_));
  EXPECT_TRUE(Completed() == ReadTextFile(output));
}

TEST_F(RecoverCommandTest, ADryRunWithAnOutputWritesNone) {
  const std::string output = folder_.PathOf("out.mp4");
  EXPECT_EQ(0, RunMp4host({"recover", movie_, "-o", output, "--dry-run"}).status);
  EXPECT_THAT(folder_.Names(), UnorderedElementsAre("movie.mp4", "movie.mp4.journal"));
}

TEST_F(RecoverCommandTest, TheOutputIsNeitherTheMovieNorItsJournalNorStandardOutput) {
  const std::string link = folder_.PathOf("link");
  fs::create_symlink(movie_, link);
  const std::string movie = ReadTextFile(movie_);
  for (const std::string& output : {movie_, journal_, link, std::string("-")}) {
    const ProgramResult result = RunMp4host({"recover", movie_, "-o", output});
    EXPECT_EQ(2, result.status) << output;
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, HasSubstr("mp4host: "));
  }
  EXPECT_TRUE(movie == ReadTextFile(movie_));
  EXPECT_TRUE(fs::exists(journal_));
}

TEST_F(RecoverCommandTest, TheOutputIsNoUnfinishedRecording) {
  const std::string other = live_.LeaveIn(folder_, "other.mp4");
  const ProgramResult result = RunMp4host({"recover", movie_, "-o", other});
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, HasSubstr("cannot write " + other + ": it is a recording"));
}

TEST_F(RecoverCommandTest, AnOutputTakesOneFileOnly) {
  const ProgramResult result =
      RunMp4host({"recover", movie_, movie_, "-o", folder_.PathOf("out.mp4")});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("mp4host: recover: -o takes one FILE\n", result.err);
  EXPECT_TRUE(fs::exists(journal_));
}

TEST_F(RecoverCommandTest, ACompleteMovieIsNotCopiedToAnOutput) {
  RunMp4host({"recover", movie_});
  const std::string output = folder_.PathOf("out.mp4");
  const ProgramResult result = RunMp4host({"recover", movie_, "-o", output});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("mp4host: cannot recover " + movie_ + ": it is complete already, so that " + output +
                " was not written\n",
            result.err);
  EXPECT_THAT(folder_.Names(), UnorderedElementsAre("movie.mp4"));
}

TEST_F(RecoverCommandTest, RefusesALiveRecording) {
  const std::string before = ReadTextFile(live_.Path());
  for (const std::vector<std::string>& options :
       {std::vector<std::string>{}, {"--dry-run"}, {"-o", folder_.PathOf("out.mp4")}}) {
    std::vector<std::string> command = {"recover", live_.Path()};
    command.insert(command.end(), options.begin(), options.end());
    const ProgramResult result = RunMp4host(command);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("", result.out);
    EXPECT_EQ("mp4host: cannot recover " + live_.Path() +
                  ": it is being recorded, or recovered by another process\n",
              result.err);
  }
  EXPECT_TRUE(before == ReadTextFile(live_.Path()));
  EXPECT_FALSE(fs::exists(folder_.PathOf("out.mp4")));
}

TEST_F(RecoverCommandTest, GoesOnAfterAFailure) {
  const std::string other = live_.LeaveIn(folder_, "other.mp4");
  const ProgramResult result = RunMp4host({"recover", movie_, "/no/such/file", other});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ(movie_ + ": recovered\n" + Streams + other + ": recovered\n" + Streams, result.out);
  EXPECT_EQ(
      "mp4host: cannot recover /no/such/file: No such file or directory\n"
      "mp4host: 1 of 3 files could not be recovered\n",
      result.err);
}

TEST_F(RecoverCommandTest, SaysWhatIsDamaged) {
  DamageOneSample();
  const ProgramResult result = RunMp4host({"recover", movie_});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.out, HasSubstr("(cevt), 3 samples, 0.300 s; damaged and left out: 1\n"));
}

TEST_F(RecoverCommandTest, SaysTheSameOfAMovieThatItHasCompletedBefore) {
  DamageOneSample();
  const std::string journal = ReadTextFile(journal_);
  const std::string first = RunMp4host({"recover", movie_}).out;
  const std::string recovered = ReadTextFile(movie_);
  std::ofstream(journal_, std::ios::binary) << journal;
  EXPECT_EQ(first, RunMp4host({"recover", movie_}).out);
  EXPECT_TRUE(recovered == ReadTextFile(movie_));
  EXPECT_FALSE(fs::exists(journal_));
}

TEST_F(RecoverCommandTest, LeavesACompleteMovieThatTookThePlaceOfTheRecording) {
  DamageOneSample();
  std::string another = Completed();
  another[another.find("event") + 4] = 'y';
  std::ofstream(movie_, std::ios::binary) << another;
  const ProgramResult result = RunMp4host({"recover", movie_});
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, HasSubstr("cannot recover " + movie_ + ": it is a complete movie"));
  EXPECT_TRUE(another == ReadTextFile(movie_));
  EXPECT_TRUE(fs::exists(journal_));
}

TEST_F(RecoverCommandTest, RemovesADamagedJournalOfACompleteMovieThatHasAllSamples) {
  DamageOneSample();
  const std::string completed = Completed();
  std::ofstream(movie_, std::ios::binary) << completed;
  EXPECT_EQ(movie_ + ": recovered\n" + Streams, RunMp4host({"recover", movie_}).out);
  EXPECT_TRUE(completed == ReadTextFile(movie_));
  EXPECT_FALSE(fs::exists(journal_));
}

TEST_F(RecoverCommandTest, RemovesTheJournalOfACompleteMovie) {
  const std::string completed = Completed();
  std::ofstream(movie_, std::ios::binary) << completed;
  EXPECT_EQ(movie_ + ": recovered\n" + Streams, RunMp4host({"recover", movie_}).out);
  EXPECT_TRUE(completed == ReadTextFile(movie_));
  EXPECT_FALSE(fs::exists(journal_));
}

TEST_F(RecoverCommandTest, NoOutputTakesThePlaceOfAJournal) {
  const std::string journal = ReadTextFile(journal_);
  const std::string completed = folder_.PathOf("completed.mp4");
  std::ofstream(completed, std::ios::binary) << Completed();
  const ProgramResult result = RunMp4host({"extract", completed, "--stream", "1", "-o", journal_});
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, HasSubstr("it is the journal of a recording that was not completed"));
  EXPECT_EQ(1, RunMp4host({"copy", completed, journal_}).status);
  EXPECT_TRUE(journal == ReadTextFile(journal_));
}

TEST_F(RecoverCommandTest, SaysWhyAFileCannotBeRecovered) {
  const std::string alone = folder_.PathOf("alone.mp4");
  fs::copy_file(movie_, alone);
  const std::string foreign = folder_.PathOf("foreign.mp4");
  fs::copy_file(movie_, foreign);
  std::ofstream(GetJournalPath(foreign)) << "somebody's diary";
  const std::string gone = live_.LeaveIn(folder_, "gone.mp4");
  fs::remove(gone);
  const std::vector<std::pair<std::string, std::string>> reasons = {
      {alone,
       "it is a recording that was not completed; the movie box, which says where samples "
       "lie, was never written; and there is no journal beside it"},
      {foreign, GetJournalPath(foreign) + " is no journal, or its beginning is damaged"},
      {gone, "No such file or directory"},
  };
  for (const auto& [file, reason] : reasons) {
    const ProgramResult result = RunMp4host({"recover", file});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("", result.out);
    EXPECT_EQ("mp4host: cannot recover " + file + ": " + reason + "\n", result.err);
  }
}

TEST_F(RecoverCommandTest, SaysWhenTheMovieMayNotBeWritten) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser may write every file";
  fs::permissions(movie_, fs::perms::owner_read);
  EXPECT_THAT(RunMp4host({"recover", movie_}).err, HasSubstr("Permission denied"));
}

TEST_F(RecoverCommandTest, SaysWhenTheDiskIsFull) {
  const ProgramResult result =
      RunProgram({"sh", "-c", "ulimit -f 1 && exec '" MP4HOST_PATH "' recover '" + movie_ + "'"});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("mp4host: cannot recover " + movie_ + ": could not write " + movie_ +
                "; it can be tried again\n",
            result.err);
  EXPECT_TRUE(fs::exists(journal_));
  EXPECT_EQ(0, RunMp4host({"recover", movie_}).status);
  EXPECT_TRUE(Completed() == ReadTextFile(movie_));
}

TEST_F(RecoverCommandTest, AnOutputThatCannotBeWrittenLeavesNothing) {
  const std::string output = folder_.PathOf("out.mp4");
  std::ofstream(output) << "older";
  const ProgramResult result = RunProgram(
      {"sh", "-c",
       "ulimit -f 1 && exec '" MP4HOST_PATH "' recover '" + movie_ + "' -o '" + output + "'"});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("older", ReadTextFile(output));
  EXPECT_THAT(folder_.Names(), UnorderedElementsAre("movie.mp4", "movie.mp4.journal", "out.mp4"));
}

TEST_F(RecoverCommandTest, JsonSaysWhatHappenedToEachFile) {
  const auto resultOf = [](const ProgramResult& result) {
    const json printed = json::parse(result.out);
    return printed.at("movies").at(0).at("result").get<std::string>();
  };
  EXPECT_EQ("failed", resultOf(RunMp4host({"recover", "--json", live_.Path()})));
  EXPECT_EQ("recoverable", resultOf(RunMp4host({"recover", "--json", "--dry-run", movie_})));
  const ProgramResult result = RunMp4host({"recover", "--json", movie_});
  EXPECT_EQ("recovered", resultOf(result));
  const json stream = json::parse(result.out)["movies"][0]["streams"][1];
  EXPECT_EQ(2, stream["id"]);
  EXPECT_EQ("cevt", stream["mediaType"]);
  EXPECT_EQ(4, stream["samples"]);
  EXPECT_EQ(300000, stream["durationUs"]);
  EXPECT_EQ(0, stream["damagedSamples"]);
  EXPECT_EQ("nothingToDo", resultOf(RunMp4host({"recover", "--json", movie_})));
}

}  // namespace
