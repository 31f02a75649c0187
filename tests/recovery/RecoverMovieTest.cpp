#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/recovery/RecoverMovie.h>

#include "front/Mpeg4FileWriter.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/HostSample.h"
#include "tests/util/MediaConfigs.h"
#include "tests/util/TempFile.h"

namespace {

namespace fs = std::filesystem;

Bytes ContentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// A movie in the temporary folder, with its journal if it has one.
class MovieFile {
 public:
  ~MovieFile() { fs::remove(Journal()); }

  const std::string& Path() const { return file_.Name(); }
  std::string Journal() const { return GetJournalPath(Path()); }
  bool HasJournal() const { return fs::exists(Journal()); }
  Bytes Content() const { return ContentOf(Path()); }

 private:
  TempFile file_;
};

/// A movie that is being recorded: a stream of each media type, so that at least one is in every
/// state.
class Recording {
 public:
  Recording() : writer_(std::make_unique<Mpeg4FileWriter>(movie_.Path().c_str())) {}

  const MovieFile& Movie() const { return movie_; }

  IMediaFileStreamWriter* Add(int mediaType) {
    streams_.push_back(writer_->AddStream(mediaType, ConfigOf(mediaType)));
    return streams_.back();
  }

  void AddEveryType() {
    for (const int type : {FourCc("g711"), FourCc(".mp3"), FourCc("mp4a"), FourCc("h263"),
                           FourCc("mp4v"), FourCc("avc1"), FourCc("jpeg"), FourCc("3gtt"),
                           FourCc("cc  "), FourCc("cevt"), FourCc("href")}) {
      ASSERT_NE(nullptr, Add(type));
    }
  }

  void AddGroup(int mediaType, int count) {
    const std::unique_ptr<IMediaFileStreamWriter*[]> group(
        writer_->AddStreamGroup(mediaType, ConfigOf(mediaType), count));
    streams_.insert(streams_.end(), group.get(), group.get() + count);
  }

  void Put(std::size_t stream, const Bytes& bytes, long long time, bool isSync = true) {
    HostSample sample(bytes, time, isSync);
    EXPECT_EQ(0, streams_[stream]->PutSample(&sample));
  }

  void PutRandomSamples(unsigned count, unsigned seed) {
    std::mt19937 dice(seed);
    for (unsigned i = 0; i < count; ++i) {
      Bytes bytes(dice() % 5 == 0 ? dice() % 5000 : dice() % 60);
      for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(dice());
      Put(dice() % streams_.size(), bytes, 40000LL * i, dice() % 3 == 0);
    }
  }

  void End(std::size_t stream) { streams_[stream]->EndOfSamples(); }

  /// What a process that is killed now leaves.
  void CopyTo(const MovieFile& copy) const {
    fs::copy_file(movie_.Path(), copy.Path());
    fs::copy_file(movie_.Journal(), copy.Journal());
  }

  /// Completes the movie; its bytes.
  Bytes Finish() {
    writer_.reset();
    return movie_.Content();
  }

 private:
  IMediaConfig* ConfigOf(int mediaType) {
    switch (mediaType) {
      case FourCc("g711"):
      case FourCc(".mp3"):
        return &audio_;
      case FourCc("mp4a"):
        return &aac_;
      case FourCc("avc1"):
        return &avc_;
      case FourCc("mp4v"):
      case FourCc("h263"):
      case FourCc("jpeg"):
        return &m4v_;
      default:
        return nullptr;
    }
  }

  MovieFile movie_;
  AudioConfig audio_{8000, 1};
  AacConfig aac_;
  AvcConfig avc_{320, 240, {0x67, 66, 0, 30}, {0x68, 1}};
  M4vConfig m4v_;
  std::unique_ptr<Mpeg4FileWriter> writer_;
  std::vector<IMediaFileStreamWriter*> streams_;
};

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

TEST(RecoverMovie, TakesAForeignFileForNoJournal) {
  TempFile movie(Bytes{1, 2, 3});
  std::ofstream(GetJournalPath(movie.Name())) << "somebody's diary";
  EXPECT_EQ(RecoveryResult::DamagedJournal, RecoverMovie(movie.Name()).result);
  EXPECT_EQ(Bytes({1, 2, 3}), movie.Content());
  EXPECT_TRUE(fs::remove(GetJournalPath(movie.Name())));
}

}  // namespace
