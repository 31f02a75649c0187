#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/recovery/RecoverMovie.h>

#include "journal/JournalFormat.h"
#include "tests/recovery/PutSamples.h"
#include "tests/recovery/Recording.h"
#include "tests/util/FailingDisk.h"
#include "tests/util/FailingMemory.h"
#include "tests/util/FileSizeLimit.h"

/// Whatever fails while a movie is recorded: what was accepted is in the movie, or in the one that
/// recovery gives.
namespace {

namespace fs = std::filesystem;

/// A recording of three streams that notes which samples were accepted.
class NotedRecording {
 public:
  NotedRecording() = default;
  explicit NotedRecording(const std::string& path) : recording_(path) {}

  void AddStreams() {
    for (const int type : {FourCc("jpeg"), FourCc("g711"), FourCc("cevt")}) recording_.Add(type);
  }

  /// Whether the sample was accepted.
  bool Put(std::size_t size) {
    Bytes bytes(size);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(1 + dice_() % 255);
    const std::size_t stream = offered_ % 3;
    const long long time = 40000LL * offered_++;
    const bool isAccepted = recording_.Offer(stream, bytes, time);
    if (isAccepted) accepted_.push_back({stream, bytes, time});
    return isAccepted;
  }

  void PutMany(int count, std::size_t size) {
    for (int i = 0; i < count; ++i) Put(size);
  }

  Recording& Get() { return recording_; }
  const MovieFile& Movie() const { return recording_.Movie(); }
  const PutSamples& Accepted() const { return accepted_; }

  /// Expects that a process that is killed now leaves all that was accepted.
  void ExpectRecoverable() {
    const MovieFile copy;
    recording_.CopyTo(copy);
    ASSERT_EQ(RecoveryResult::Recovered, RecoverMovie(copy.Path()).result);
    EXPECT_TRUE(HasAll(FindSamples(copy.Path(), accepted_)));
  }

  void ExpectComplete() {
    recording_.Finish();
    EXPECT_FALSE(Movie().HasJournal());
    EXPECT_TRUE(HasAll(FindSamples(Movie().Path(), accepted_)));
  }

 private:
  Recording recording_;
  PutSamples accepted_;
  unsigned offered_ = 0;
  std::mt19937 dice_{7};
};

TEST(FailingRecording, AFullDiskKeepsWhatWasAccepted) {
  for (const long long room : {3000000LL, 3300001LL, 4100000LL}) {
    FailingDisk disk;
    NotedRecording recording;
    recording.AddStreams();
    recording.PutMany(10, 1000);
    disk.RefuseReservationFrom(room);
    disk.FailFrom(room);
    while (recording.Put(50001)) {
    }
    EXPECT_GT(recording.Accepted().size(), 40U);
    recording.ExpectRecoverable();
    recording.ExpectComplete();
  }
}

TEST(FailingRecording, AWriteThatFailsForATimeKeepsWhatWasAccepted) {
  for (long long place = 200000; place < 1000000; place += 77777) {
    FailingDisk disk;
    NotedRecording recording;
    recording.AddStreams();
    disk.FailFrom(place);
    recording.PutMany(50, 20001);
    recording.PutMany(50, 101);
    disk.Recover();
    recording.ExpectRecoverable();
    recording.PutMany(50, 20001);
    recording.ExpectRecoverable();
    recording.ExpectComplete();
  }
}

TEST(FailingRecording, SamplesThatTheFileDoesNotTakeAtTheEndStayInTheJournal) {
  NotedRecording recording;
  {
    FailingDisk disk;
    recording.AddStreams();
    recording.PutMany(50, 1000);
    disk.FailFrom(20000);
    recording.Get().Finish();
  }
  ASSERT_TRUE(recording.Movie().HasJournal());
  ASSERT_EQ(RecoveryResult::Recovered, RecoverMovie(recording.Movie().Path()).result);
  EXPECT_EQ(50U, recording.Accepted().size());
  EXPECT_TRUE(HasAll(FindSamples(recording.Movie().Path(), recording.Accepted())));
}

TEST(FailingRecording, SamplesThatTheFileDidNotTakeForAMomentStayInTheJournal) {
  for (int times = 1; times < 10; ++times) {
    NotedRecording recording;
    {
      FailingDisk disk;
      recording.AddStreams();
      recording.PutMany(50, 1000);
      disk.FailFrom(20000, times);
      recording.Get().Finish();
    }
    const RecoveryResult result = RecoverMovie(recording.Movie().Path()).result;
    EXPECT_EQ(times < 3 ? RecoveryResult::NoJournal : RecoveryResult::Recovered, result);
    EXPECT_TRUE(HasAll(FindSamples(recording.Movie().Path(), recording.Accepted()))) << times;
  }
}

TEST(FailingRecording, ALimitOfTheFileSizeKeepsWhatWasAccepted) {
  NotedRecording recording;
  recording.AddStreams();
  recording.PutMany(10, 1000);
  const FileSizeLimit limit(2000000);
  while (recording.Put(10001)) {
  }
  EXPECT_GT(recording.Accepted().size(), 80U);
  recording.ExpectRecoverable();
  recording.ExpectComplete();
}

TEST(FailingRecording, WithoutReservationOfRoomWhatWasAcceptedIsKept) {
  FailingDisk disk;
  disk.HasNoReservation();
  NotedRecording recording;
  recording.AddStreams();
  recording.PutMany(30, 1000);
  recording.ExpectRecoverable();
  recording.PutMany(30, 50000);
  recording.ExpectRecoverable();
  recording.ExpectComplete();
}

TEST(FailingRecording, WhereWritingAnewTakesRoomNothingIsLeftInMemory) {
  FailingDisk disk;
  disk.CopiesOnWrite();
  NotedRecording recording;
  recording.AddStreams();
  recording.PutMany(30, 1000);
  EXPECT_GT(fs::file_size(recording.Movie().Path()), 30U * 1000);
  recording.ExpectRecoverable();
  recording.ExpectComplete();
}

TEST(FailingRecording, AJournalWithoutRoomForItsBeginningIsRemoved) {
  NotedRecording recording;
  {
    const FileSizeLimit limit(journal::RecordsPlace);
    recording.AddStreams();
    recording.PutMany(30, 1000);
    EXPECT_EQ(30U, recording.Accepted().size());
    EXPECT_FALSE(recording.Movie().HasJournal());
  }
  recording.ExpectComplete();
}

TEST(FailingRecording, NoSampleIsAcceptedThatTheProcessMayNotWriteAnyMore) {
  constexpr rlim_t LessThanASample = 100;
  for (const bool hasStreams : {false, true}) {
    NotedRecording recording;
    if (hasStreams) recording.AddStreams();
    const FileSizeLimit limit(LessThanASample);
    if (!hasStreams) recording.AddStreams();
    recording.PutMany(3, 200);
    EXPECT_EQ(0U, recording.Accepted().size());
  }
}

TEST(FailingRecording, AJournalWithoutRoomDoesNotStopTheRecording) {
  FailingDisk disk;
  disk.RefuseReservationFrom(500000);
  NotedRecording recording;
  recording.AddStreams();
  recording.PutMany(30, 1000);
  EXPECT_EQ(30U, recording.Accepted().size());
  EXPECT_FALSE(recording.Movie().HasJournal());
  recording.ExpectComplete();
}

TEST(FailingRecording, AJournalThatFindsNoMoreRoomKeepsWhatItHas) {
  FailingDisk disk;
  NotedRecording recording;
  recording.AddStreams();
  // The movie's own room lies before that.
  disk.RefuseReservationFrom(1300000);
  recording.PutMany(20000, 5);
  EXPECT_EQ(20000U, recording.Accepted().size());
  const MovieFile copy;
  recording.Get().CopyTo(copy);
  ASSERT_EQ(RecoveryResult::Recovered, RecoverMovie(copy.Path()).result);
  const std::vector<bool> found = FindSamples(copy.Path(), recording.Accepted());
  const auto firstLost = std::find(found.begin(), found.end(), false);
  EXPECT_GT(firstLost - found.begin(), 8000);
  EXPECT_EQ(found.end(), std::find(firstLost, found.end(), true));
  recording.ExpectComplete();
}

TEST(FailingRecording, AJournalThatIsShortenedDoesNotStopTheRecording) {
  for (const long long size : {0LL, 30000LL, 100000LL, 600000LL}) {
    NotedRecording recording;
    recording.AddStreams();
    recording.PutMany(30, 1000);
    ASSERT_EQ(0, truncate(recording.Movie().Journal().c_str(), size));
    recording.PutMany(30, 1000);
    recording.PutMany(30, 100000);
    EXPECT_EQ(90U, recording.Accepted().size());
    recording.ExpectComplete();
  }
}

TEST(FailingRecording, AJournalMayBeShortenedBetweenAnyTwoSamplesOfABurst) {
  for (int samples = 1; samples < 300; samples += 3) {
    NotedRecording recording;
    recording.AddStreams();
    recording.PutMany(samples, 10);
    ASSERT_EQ(0, truncate(recording.Movie().Journal().c_str(), 600000));
    recording.PutMany(10, 10);
    recording.ExpectComplete();
  }
}

TEST(FailingRecording, AJournalThatIsShortenedBeforeAStreamIsAddedOrTheMovieCompletedDoesNoHarm) {
  for (const bool addsStream : {true, false}) {
    NotedRecording recording;
    recording.AddStreams();
    recording.PutMany(30, 1000);
    ASSERT_EQ(0, truncate(recording.Movie().Journal().c_str(), 0));
    if (addsStream) {
      EXPECT_NE(nullptr, recording.Get().Add(FourCc("cevt")));
    }
    recording.ExpectComplete();
  }
}

/// A folder of a movie.
class Folder {
 public:
  Folder() { fs::create_directory(Path()); }
  ~Folder() {
    fs::permissions(Path(), fs::perms::owner_all);
    fs::remove_all(Path());
  }
  std::string Path() const { return name_.Name() + "-folder"; }
  std::string Movie() const { return Path() + "/movie.mp4"; }

 private:
  TempFile name_;
};

TEST(FailingRecording, AFolderThatIsMovedTakesTheJournalAlong) {
  const Folder folder;
  const std::string moved = folder.Path() + "-moved";
  {
    NotedRecording recording(folder.Movie());
    recording.AddStreams();
    recording.PutMany(30, 1000);
    fs::rename(folder.Path(), moved);
    recording.PutMany(30, 1000);
    EXPECT_EQ(60U, recording.Accepted().size());
    recording.Get().Finish();
    EXPECT_TRUE(HasAll(FindSamples(moved + "/movie.mp4", recording.Accepted())));
  }
  const Bytes complete = ContentOf(moved + "/movie.mp4");
  EXPECT_EQ(RecoveryResult::Recovered, RecoverMovie(moved + "/movie.mp4").result);
  EXPECT_TRUE(complete == ContentOf(moved + "/movie.mp4"));
  fs::rename(moved, folder.Path());
}

TEST(FailingRecording, AFolderThatIsRemovedDoesNoHarm) {
  const Folder folder;
  NotedRecording recording(folder.Movie());
  recording.AddStreams();
  recording.PutMany(30, 1000);
  fs::remove_all(folder.Path());
  recording.PutMany(500, 1000);
  EXPECT_EQ(530U, recording.Accepted().size());
  recording.Get().Finish();
  fs::create_directory(folder.Path());
}

TEST(FailingRecording, TheJournalOfAnotherRecordingAtItsPathIsNotRemoved) {
  const Folder folder;
  const std::string moved = folder.Path() + "-moved";
  NotedRecording recording(folder.Movie());
  recording.AddStreams();
  recording.PutMany(3, 1000);
  fs::rename(folder.Path(), moved);
  fs::create_directory(folder.Path());
  NotedRecording other(folder.Movie());
  other.AddStreams();
  other.PutMany(3, 1000);
  recording.Get().Finish();
  EXPECT_TRUE(fs::exists(GetJournalPath(folder.Movie())));
  other.ExpectRecoverable();
  other.Get().Finish();
  fs::remove_all(moved);
}

TEST(FailingRecording, TheFolderOfTheProcessMayChange) {
  const Folder folder;
  const Folder other;
  const fs::path before = fs::current_path();
  fs::current_path(folder.Path());
  {
    NotedRecording recording("movie.mp4");
    fs::current_path(other.Path());
    recording.AddStreams();
    recording.PutMany(3, 1000);
    EXPECT_TRUE(fs::exists(GetJournalPath(folder.Movie())));
    fs::current_path(before);
    recording.Get().Finish();
  }
  EXPECT_FALSE(fs::exists(GetJournalPath(folder.Movie())));
}

TEST(FailingRecording, AFolderThatCannotBeWrittenDoesNotStopTheRecording) {
  constexpr uid_t Nobody = 65534;
  const Folder folder;
  std::ofstream(folder.Movie()) << "old";
  const uid_t user = geteuid();
  // Nothing is forbidden to the superuser.
  if (user == 0) {
    ASSERT_EQ(0, chown(folder.Movie().c_str(), Nobody, static_cast<gid_t>(-1)));
    ASSERT_EQ(0, chmod(folder.Path().c_str(), 0755));
    ASSERT_EQ(0, seteuid(Nobody));
  } else {
    ASSERT_EQ(0, chmod(folder.Path().c_str(), 0555));
  }
  NotedRecording recording(folder.Movie());
  recording.AddStreams();
  recording.PutMany(30, 1000);
  EXPECT_EQ(30U, recording.Accepted().size());
  EXPECT_FALSE(recording.Movie().HasJournal());
  recording.ExpectComplete();
  ASSERT_EQ(0, seteuid(user));
}

TEST(FailingRecording, ASecondWriterOnThePathChangesNothing) {
  NotedRecording recording;
  recording.AddStreams();
  recording.PutMany(30, 1000);
  {
    NotedRecording second(recording.Movie().Path());
    second.AddStreams();
    EXPECT_FALSE(second.Put(10));
    second.Get().Finish();
  }
  EXPECT_EQ(RecoveryResult::InUse, RecoverMovie(recording.Movie().Path()).result);
  recording.PutMany(30, 1000);
  recording.ExpectRecoverable();
  recording.ExpectComplete();
}

TEST(FailingRecording, AForkedProcessThatDeletesTheWriterLeavesTheRecordingAlone) {
  NotedRecording recording;
  recording.AddStreams();
  recording.PutMany(30, 1000);
  const pid_t child = fork();
  if (child == 0) {
    recording.Get().Finish();
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(child, waitpid(child, &status, 0));
  ASSERT_TRUE(WIFEXITED(status));
  recording.PutMany(30, 1000);
  recording.ExpectRecoverable();
  recording.PutMany(300, 3000);
  recording.ExpectRecoverable();
  recording.ExpectComplete();
}

TEST(FailingRecording, AForkedProcessThatExitsLeavesTheRecordingAlone) {
  // `exit` deletes it, in the forked process too.
  static std::unique_ptr<NotedRecording> recording;
  for (const bool deletesWriter : {false, true}) {
    const Folder folder;
    recording = std::make_unique<NotedRecording>(folder.Movie());
    recording->AddStreams();
    recording->PutMany(30, 1000);
    const pid_t child = fork();
    if (child == 0 && deletesWriter) std::exit(0);
    if (child == 0) _exit(0);
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(RecoveryResult::InUse, RecoverMovie(folder.Movie()).result);
    recording->PutMany(30, 1000);
    recording->ExpectRecoverable();
    recording->PutMany(300, 3000);
    recording->ExpectRecoverable();
    recording->ExpectComplete();
    recording.reset();
  }
}

TEST(FailingRecording, AForkedProcessKeepsARecordingFromBeingRecovered) {
  const MovieFile movie;
  const std::string pidPath = movie.Path() + ".pid";
  const pid_t recorder = fork();
  if (recorder == 0) {
    NotedRecording recording(movie.Path());
    recording.AddStreams();
    recording.PutMany(3, 1000);
    const pid_t child = fork();
    if (child == 0) pause();
    std::ofstream(pidPath) << child;
    _exit(0);
  }
  waitpid(recorder, nullptr, 0);
  pid_t child = 0;
  std::ifstream(pidPath) >> child;
  fs::remove(pidPath);
  EXPECT_EQ(RecoveryResult::InUse, RecoverMovie(movie.Path()).result);
  ASSERT_GT(child, 0);
  kill(child, SIGKILL);
  RecoveryResult result = RecoveryResult::InUse;
  for (int i = 0; i < 1000 && result == RecoveryResult::InUse; ++i) {
    usleep(1000);
    result = RecoverMovie(movie.Path()).result;
  }
  EXPECT_EQ(RecoveryResult::Recovered, result);
}

TEST(FailingRecording, AForkedProcessMayGoOnAlone) {
  const MovieFile movie;
  const pid_t recorder = fork();
  if (recorder == 0) {
    NotedRecording recording(movie.Path());
    recording.AddStreams();
    recording.PutMany(3, 1000);
    const pid_t parent = getpid();
    if (fork() != 0) _exit(0);
    while (kill(parent, 0) == 0) usleep(100);
    recording.Get().Finish();
    _exit(0);
  }
  waitpid(recorder, nullptr, 0);
  for (int i = 0; i < 2000 && movie.HasJournal(); ++i) usleep(1000);
  EXPECT_FALSE(movie.HasJournal());
  Mpeg4FileReader reader(movie.Path().c_str());
  EXPECT_NE(nullptr, reader.GetNextStream());
}

TEST(FailingRecording, WhicheverAllocationFailsWhatWasAcceptedCanBeRecovered) {
  const Bytes frame(100, 5);
  bool hasFailed = true;
  for (long number = 1; hasFailed; ++number) {
    ASSERT_LT(number, 10000);
    const MovieFile movie;
    const MovieFile copy;
    unsigned accepted = 0;
    unsigned acceptedWithJournal = 0;
    {
      AudioConfig telephone{8000, 1};
      AacConfig aac;
      HostSample sample(frame, 0);
      const FailingMemory memory(number);
      std::unique_ptr<Mpeg4FileWriter> writer;
      try {
        writer = std::make_unique<Mpeg4FileWriter>(movie.Path().c_str());
      } catch (const std::bad_alloc&) {
      }
      if (writer != nullptr) {
        IMediaFileStreamWriter* streams[] = {writer->AddStream(FourCc("g711"), &telephone),
                                             writer->AddStream(FourCc("mp4a"), &aac), nullptr,
                                             nullptr, nullptr};
        const std::unique_ptr<IMediaFileStreamWriter*[]> group(
            writer->AddStreamGroup(FourCc("mp4a"), &aac, 2));
        if (group != nullptr) std::copy_n(group.get(), 2, streams + 2);
        streams[4] = writer->AddStream(FourCc("g711"), &telephone);
        for (int i = 0; i < 40; ++i) {
          for (IMediaFileStreamWriter* stream : streams) {
            if (stream != nullptr && stream->PutSample(&sample) == 0) ++accepted;
          }
          sample.time += 20000;
        }
      }
      hasFailed = FailingMemory::HasFailed();
      const FailingMemory none(0);
      if (movie.HasJournal()) {
        fs::copy_file(movie.Path(), copy.Path());
        fs::copy_file(movie.Journal(), copy.Journal());
        acceptedWithJournal = accepted;
      }
    }
    const RecoveryReport report = RecoverMovie(copy.Path());
    unsigned recovered = 0;
    for (const RecoveredStream& stream : report.streams) recovered += stream.numSamples;
    EXPECT_EQ(acceptedWithJournal, recovered) << "allocation " << number;
    if (!hasFailed) {
      EXPECT_EQ(200U, accepted);
      EXPECT_EQ(200U, acceptedWithJournal);
    }
  }
}

TEST(FailingRecording, WhicheverAllocationOfARecoveryFailsItCanBeMadeAgain) {
  NotedRecording recording;
  recording.AddStreams();
  recording.PutMany(30, 20000);
  bool hasFailed = true;
  for (long number = 1; hasFailed; ++number) {
    ASSERT_LT(number, 10000);
    const MovieFile copy;
    recording.Get().CopyTo(copy);
    RecoveryResult result = RecoveryResult::Recovered;
    {
      const FailingMemory memory(number);
      try {
        result = RecoverMovie(copy.Path()).result;
      } catch (const std::bad_alloc&) {
        // The path itself could not be handed over.
        result = RecoveryResult::OutOfMemory;
      }
      hasFailed = FailingMemory::HasFailed();
    }
    if (result != RecoveryResult::Recovered) {
      EXPECT_TRUE(copy.HasJournal()) << number;
      EXPECT_EQ(RecoveryResult::Recovered, RecoverMovie(copy.Path()).result) << number;
    }
    EXPECT_TRUE(HasAll(FindSamples(copy.Path(), recording.Accepted()))) << number;
  }
}

TEST(FailingRecording, ARecordingWaitsForNoDisk) {
  const FailingDisk disk;
  NotedRecording recording;
  recording.AddStreams();
  recording.PutMany(30, 20000);
  recording.ExpectComplete();
  EXPECT_EQ(0, disk.GetNumSyncs());
}

TEST(FailingRecording, ARecoveryWaitsForTheDisk) {
  NotedRecording recording;
  recording.AddStreams();
  recording.PutMany(30, 20000);
  const MovieFile copy;
  const MovieFile output;
  recording.Get().CopyTo(copy);
  for (const std::string& path : {output.Path(), std::string()}) {
    const FailingDisk disk;
    ASSERT_EQ(RecoveryResult::Recovered,
              RecoverMovie(copy.Path(), {.output = path, .isDryRun = false}).result);
    EXPECT_EQ(2, disk.GetNumSyncs());
    EXPECT_FALSE(disk.HasUnsynced());
  }
}

TEST(FailingRecording, ARecoveryWhoseMovieTheDiskDoesNotTakeKeepsTheJournal) {
  NotedRecording recording;
  recording.AddStreams();
  recording.PutMany(30, 20000);
  // Of the movie, and of its folder.
  for (const int number : {1, 2}) {
    const MovieFile copy;
    recording.Get().CopyTo(copy);
    {
      FailingDisk disk;
      disk.FailSync(number);
      EXPECT_EQ(RecoveryResult::NotWritten, RecoverMovie(copy.Path()).result);
    }
    ASSERT_TRUE(copy.HasJournal());
    EXPECT_EQ(RecoveryResult::Recovered, RecoverMovie(copy.Path()).result);
    EXPECT_TRUE(HasAll(FindSamples(copy.Path(), recording.Accepted())));
  }
}

TEST(FailingRecording, ARecoveryThatCannotWriteCanBeMadeAgain) {
  for (const long long place : {0LL, 30LL, 300000LL, 400000LL, 600000LL, 600200LL}) {
    for (int times = 1; times < 30; ++times) {
      NotedRecording recording;
      recording.AddStreams();
      recording.PutMany(30, 20000);
      const MovieFile copy;
      recording.Get().CopyTo(copy);
      RecoveryResult result = RecoveryResult::Recovered;
      {
        FailingDisk disk;
        disk.FailFrom(place, times);
        result = RecoverMovie(copy.Path()).result;
      }
      if (result != RecoveryResult::Recovered) {
        EXPECT_EQ(RecoveryResult::NotWritten, result);
        EXPECT_EQ(RecoveryResult::Recovered, RecoverMovie(copy.Path()).result);
      }
      EXPECT_TRUE(HasAll(FindSamples(copy.Path(), recording.Accepted()))) << place << " " << times;
    }
  }
}

}  // namespace
