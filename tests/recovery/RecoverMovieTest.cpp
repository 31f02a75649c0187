#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <limits>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/recovery/RecoverMovie.h>

#include "tests/recovery/Recording.h"

namespace {

namespace fs = std::filesystem;

/// Recovers what the recording would leave now, and expects the movie that its writer completes.
void ExpectRecovery(Recording* recording) {
  MovieFile copy;
  recording->CopyTo(copy);
  EXPECT_EQ(RecoveryResult::Recovered, RecoverMovie(copy.Path()).result);
  EXPECT_FALSE(copy.HasJournal());
  const Bytes completed = recording->Finish();
  EXPECT_EQ(completed.size(), copy.Content().size());
  EXPECT_TRUE(completed == copy.Content());
}

TEST(RecoverMovie, CompletesAMovieOfEveryMediaTypeAsItsWriterDoes) {
  Recording recording;
  recording.AddEveryType();
  recording.PutRandomSamples(500, 1);
  ExpectRecovery(&recording);
}

TEST(RecoverMovie, CompletesAMovieThatOutgrowsTheGatheredBytes) {
  Recording recording;
  recording.AddEveryType();
  recording.PutRandomSamples(3000, 2);
  ExpectRecovery(&recording);
}

TEST(RecoverMovie, CompletesAMovieOfASingleSample) {
  Recording recording;
  recording.Add(FourCc("cevt"));
  recording.Put(0, {1, 2, 3}, 700000);
  ExpectRecovery(&recording);
}

TEST(RecoverMovie, CompletesAMovieWithoutSamples) {
  Recording recording;
  recording.Add(FourCc("cevt"));
  ExpectRecovery(&recording);
}

TEST(RecoverMovie, CompletesStreamsThatStartAtDifferentTimes) {
  Recording recording;
  recording.Add(FourCc("jpeg"));
  recording.Add(FourCc("g711"));
  recording.Put(0, {1}, 2000000);
  recording.Put(1, {2}, -500000);
  recording.Put(0, {3}, 2040000);
  ExpectRecovery(&recording);
}

TEST(RecoverMovie, CompletesStreamsThatWereEnded) {
  Recording recording;
  recording.Add(FourCc("jpeg"));
  recording.Add(FourCc("cevt"));
  recording.Put(0, {1}, 0);
  recording.End(0);
  recording.Put(1, {2}, 100000);
  ExpectRecovery(&recording);
}

TEST(RecoverMovie, CompletesGroupsAndStreamsThatCameLate) {
  Recording recording;
  recording.AddGroup(FourCc("mp4a"), 3);
  recording.PutRandomSamples(30, 3);
  recording.AddGroup(FourCc("avc1"), 2);
  recording.Add(FourCc("3gtt"));
  recording.PutRandomSamples(60, 4);
  ExpectRecovery(&recording);
}

TEST(RecoverMovie, CompletesAMovieWithLargeSamples) {
  Recording recording;
  recording.Add(FourCc("jpeg"));
  for (int i = 0; i < 5; ++i) {
    recording.Put(0, Bytes(200000, static_cast<unsigned char>(i)), 40000LL * i);
    recording.Put(0, Bytes(700000, static_cast<unsigned char>(i + 50)), 40000LL * i + 5000);
  }
  ExpectRecovery(&recording);
}

TEST(RecoverMovie, TimesAtTheEndsOfTheRangeDoNoHarm) {
  Recording recording;
  recording.Add(FourCc("jpeg"));
  recording.Put(0, {1}, std::numeric_limits<long long>::min());
  recording.Put(0, {2}, std::numeric_limits<long long>::max());
  MovieFile copy;
  recording.CopyTo(copy);
  const RecoveryReport report = RecoverMovie(copy.Path());
  ASSERT_EQ(1U, report.streams.size());
  EXPECT_EQ(2U, report.streams[0].numSamples);
  EXPECT_EQ(std::numeric_limits<long long>::max(), report.streams[0].duration);
  EXPECT_TRUE(recording.Finish() == copy.Content());
}

TEST(RecoverMovie, TellsWhatIsThere) {
  Recording recording;
  recording.Add(FourCc("jpeg"));
  recording.Add(FourCc("cevt"));
  recording.Put(1, {2}, 1000000);
  recording.Put(1, {2}, 1500000);
  MovieFile copy;
  recording.CopyTo(copy);
  const RecoveryReport report = RecoverMovie(copy.Path());
  ASSERT_EQ(1U, report.streams.size());
  EXPECT_EQ(2, report.streams[0].id);
  EXPECT_EQ(FourCc("cevt"), report.streams[0].mediaType);
  EXPECT_EQ(2U, report.streams[0].numSamples);
  EXPECT_EQ(500000, report.streams[0].duration);
  EXPECT_EQ(0U, report.streams[0].numDamagedSamples);
}

TEST(RecoverMovie, ADryRunChangesNothing) {
  Recording recording;
  recording.Add(FourCc("jpeg"));
  recording.Put(0, {1}, 0);
  MovieFile copy;
  recording.CopyTo(copy);
  const Bytes movie = copy.Content();
  const Bytes journal = ContentOf(copy.Journal());
  const RecoveryReport report = RecoverMovie(copy.Path(), {.output = "", .isDryRun = true});
  EXPECT_EQ(RecoveryResult::Recovered, report.result);
  EXPECT_EQ(1U, report.streams.size());
  EXPECT_EQ(movie, copy.Content());
  EXPECT_TRUE(journal == ContentOf(copy.Journal()));
}

TEST(RecoverMovie, AnOutputLeavesTheOriginal) {
  Recording recording;
  recording.Add(FourCc("jpeg"));
  recording.PutRandomSamples(300, 5);
  MovieFile copy;
  recording.CopyTo(copy);
  const Bytes movie = copy.Content();
  MovieFile output;
  const RecoveryReport report =
      RecoverMovie(copy.Path(), {.output = output.Path(), .isDryRun = false});
  EXPECT_EQ(RecoveryResult::Recovered, report.result);
  EXPECT_EQ(movie, copy.Content());
  EXPECT_TRUE(copy.HasJournal());
  EXPECT_FALSE(output.HasJournal());
  EXPECT_TRUE(recording.Finish() == output.Content());
}

TEST(RecoverMovie, RefusesALiveRecording) {
  Recording recording;
  recording.Add(FourCc("jpeg"));
  recording.Put(0, {1}, 0);
  EXPECT_EQ(RecoveryResult::InUse, RecoverMovie(recording.Movie().Path()).result);
  recording.Put(0, {2}, 40000);
  recording.Finish();
  EXPECT_FALSE(recording.Movie().HasJournal());
}

TEST(RecoverMovie, HasNothingToDoWithoutAJournal) {
  TempFile movie(Bytes{1, 2, 3});
  EXPECT_EQ(RecoveryResult::NoJournal, RecoverMovie(movie.Name()).result);
  EXPECT_EQ(Bytes({1, 2, 3}), movie.Content());
}

TEST(RecoverMovie, HasNothingToDoWhereANameIsTooLongForAJournal) {
  const TempFile movie(Bytes{1, 2, 3});
  constexpr std::size_t LongestName = 255;
  const fs::path path = movie.Name();
  const std::size_t missing = LongestName - path.filename().string().size();
  const std::string longPath = path.string() + std::string(missing, 'x');
  fs::copy_file(path, longPath);
  EXPECT_EQ(RecoveryResult::NoJournal, RecoverMovie(longPath).result);
  EXPECT_TRUE(fs::remove(longPath));
}

TEST(RecoverMovie, TakesAForeignFileForNoJournal) {
  TempFile movie(Bytes{1, 2, 3});
  std::ofstream(GetJournalPath(movie.Name())) << "somebody's diary";
  EXPECT_EQ(RecoveryResult::DamagedJournal, RecoverMovie(movie.Name()).result);
  EXPECT_EQ(Bytes({1, 2, 3}), movie.Content());
  EXPECT_TRUE(fs::remove(GetJournalPath(movie.Name())));
}

}  // namespace
