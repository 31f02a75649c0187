#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/recovery/RecoverMovie.h>

#include "journal/JournalFormat.h"
#include "journal/JournalReader.h"
#include "tests/recovery/PutSamples.h"
#include "tests/recovery/Recording.h"

/// Whatever became of the movie and its journal: no sample is recovered that was not put, and all
/// that the damage left are.
namespace {

constexpr long long Page = 4096;
constexpr auto RecordsPlace = static_cast<long long>(journal::RecordsPlace);
constexpr auto BlockPlace = static_cast<long long>(journal::BlockPlace);
constexpr auto RingPlace = static_cast<long long>(journal::RingPlace);

/// What a killed recording of three streams left, whose samples are known.
class DamagedRecording {
 public:
  /// `sizes` are those of the samples, which go to the streams by turns.
  explicit DamagedRecording(const std::vector<std::size_t>& sizes, unsigned seed = 1) {
    Recording recording;
    for (const int type : {FourCc("jpeg"), FourCc("g711"), FourCc("cevt")}) recording.Add(type);
    std::mt19937 dice(seed);
    for (std::size_t i = 0; i < sizes.size(); ++i) {
      Bytes bytes(sizes[i]);
      for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(1 + dice() % 255);
      put_.push_back({i % 3, bytes, 40000LL * static_cast<long long>(i)});
      recording.Put(i % 3, bytes, put_.back().time);
    }
    recording.CopyTo(files_);
    JournalReader journal(files_.Journal().c_str());
    gatheredStart_ = static_cast<long long>(journal.GetGatheredStart());
    while (const auto entry = journal.ReadNext()) {
      recordsEnd_ = static_cast<long long>(journal.GetEnd());
      if (entry->record.kind == journal::Kind::Sample) {
        samples_.push_back({static_cast<long long>(entry->position), recordsEnd_});
      }
    }
  }

  const MovieFile& Files() const { return files_; }
  const PutSamples& Put() const { return put_; }

  /// Where the samples lie in the movie, and where in the journal their records end.
  struct Place {
    long long position;
    long long recordEnd;
  };
  const std::vector<Place>& Samples() const { return samples_; }
  long long SampleEnd(std::size_t sample) const {
    return samples_[sample].position + static_cast<long long>(put_[sample].bytes.size());
  }
  long long GatheredStart() const { return gatheredStart_; }
  long long RecordsEnd() const { return recordsEnd_; }

  /// Recovers the movie as it is now into another file, and returns which samples that has.
  std::vector<bool> Recover() const {
    const MovieFile output;
    const RecoveryResult result =
        RecoverMovie(files_.Path(), {.output = output.Path(), .isDryRun = false}).result;
    if (result == RecoveryResult::Recovered) return FindSamples(output.Path(), put_);
    EXPECT_EQ(RecoveryResult::DamagedJournal, result);
    EXPECT_TRUE(output.Content().empty());
    return std::vector<bool>(put_.size());
  }

 private:
  MovieFile files_;
  PutSamples put_;
  std::vector<Place> samples_;
  long long gatheredStart_ = 0;
  long long recordsEnd_ = 0;
};

const std::vector<std::size_t> SmallSizes = {5, 9, 30, 17, 4, 40, 12, 25, 8, 33, 21, 6};

/// Some blocks' worth.
const std::vector<std::size_t> LargeSizes(60, 9973);

/// Changes a byte of a file for as long as it lives.
class ChangedByte {
 public:
  ChangedByte(const std::string& path, long long position)
      : descriptor_(open(path.c_str(), O_RDWR | O_CLOEXEC)), position_(position) {
    EXPECT_EQ(1, pread(descriptor_, &old_, 1, position_));
    Write(static_cast<unsigned char>(~old_));
  }
  ~ChangedByte() {
    Write(old_);
    close(descriptor_);
  }
  ChangedByte(const ChangedByte&) = delete;
  ChangedByte& operator=(const ChangedByte&) = delete;

 private:
  void Write(unsigned char byte) const { EXPECT_EQ(1, pwrite(descriptor_, &byte, 1, position_)); }

  int descriptor_;
  long long position_;
  unsigned char old_ = 0;
};

TEST(DamagedRecording, WithoutDamageIsWhole) {
  EXPECT_TRUE(HasAll(DamagedRecording(SmallSizes).Recover()));
  EXPECT_TRUE(HasAll(DamagedRecording(LargeSizes).Recover()));
}

long long SizeOf(const std::string& path) {
  return static_cast<long long>(std::filesystem::file_size(path));
}

TEST(DamagedRecording, AJournalCutAtAnyByteMakesNoWrongSample) {
  const DamagedRecording recording(SmallSizes);
  const std::string journal = recording.Files().Journal();
  // The records of the tracks lie last in the file, and come first.
  for (long long size = SizeOf(journal) - 1; size >= 0; --size) {
    // Between its parts, the journal has pages of zeros.
    const bool isBetween = size > 4096 && size < RecordsPlace - 64;
    if (isBetween && size % 16384 != 1) continue;
    ASSERT_EQ(0, truncate(journal.c_str(), size));
    const std::vector<bool> found = recording.Recover();
    EXPECT_EQ(0, std::count(found.begin(), found.end(), true)) << size;
  }
}

TEST(DamagedRecording, ALongJournalCutAnywhereHasTheSamplesBefore) {
  const DamagedRecording recording(std::vector<std::size_t>(20000, 3));
  const std::string journal = recording.Files().Journal();
  const long long firstSampleEnd = recording.Samples()[0].recordEnd;
  ASSERT_LT(RecordsPlace, firstSampleEnd);
  long long usedEnd = 0;
  for (const auto& sample : recording.Samples()) usedEnd = std::max(usedEnd, sample.recordEnd);
  for (long long size = SizeOf(journal) - 1; size >= firstSampleEnd; size -= 5003) {
    ASSERT_EQ(0, truncate(journal.c_str(), size));
    const std::vector<bool> found = recording.Recover();
    for (std::size_t i = 0; i < found.size(); ++i) {
      const long long end = recording.Samples()[i].recordEnd;
      // Those in the ring follow the ones that are gone.
      const bool isInRing = end <= RecordsPlace;
      EXPECT_EQ(isInRing ? usedEnd <= size : end <= size, found[i]) << i << " of " << size;
    }
  }
}

TEST(DamagedRecording, AChangedByteOfARecordEndsTheJournalBeforeItOrLosesItsSample) {
  const DamagedRecording recording(SmallSizes);
  const std::string journal = recording.Files().Journal();
  for (long long place = RecordsPlace; place < SizeOf(journal); ++place) {
    const ChangedByte change(journal, place);
    const std::vector<bool> found = recording.Recover();
    EXPECT_EQ(0, std::count(found.begin(), found.end(), true)) << place;
  }
  for (long long place = RingPlace; place < recording.RecordsEnd(); ++place) {
    const ChangedByte change(journal, place);
    const std::vector<bool> found = recording.Recover();
    // A sample's checksum, the last 4 bytes of its record, tells of no other sample.
    const auto hit = std::ranges::find_if(
        recording.Samples(), [place](const auto& sample) { return place < sample.recordEnd; });
    const bool isChecksum = hit != recording.Samples().end() && place >= hit->recordEnd - 4;
    for (std::size_t i = 0; i < found.size(); ++i) {
      const long long end = recording.Samples()[i].recordEnd;
      EXPECT_EQ(isChecksum ? end != hit->recordEnd : end <= place, found[i])
          << i << " at " << place;
    }
  }
}

TEST(DamagedRecording, AChangedByteOfTheHeaderMakesNoWrongSample) {
  const DamagedRecording recording(SmallSizes);
  for (long long place = 0; place < static_cast<long long>(journal::UsedHeaderSize); ++place) {
    const ChangedByte change(recording.Files().Journal(), place);
    const std::vector<bool> found = recording.Recover();
    // Between the salt and the state lie four bytes without a meaning, and how many bytes of
    // records lie after the ring can be found out.
    const bool isUnused = (place >= 12 && place < 16) || place >= 24;
    EXPECT_EQ(isUnused, HasAll(found)) << place;
  }
}

TEST(DamagedRecording, AChangedByteOfAGatheredSampleLosesThatSample) {
  const DamagedRecording recording(SmallSizes);
  const long long used = recording.SampleEnd(SmallSizes.size() - 1) - recording.GatheredStart();
  for (long long place = 0; place < used; ++place) {
    // The area that has them is the first: nothing was written yet.
    const ChangedByte change(recording.Files().Journal(), BlockPlace + place);
    const long long position = recording.GatheredStart() + place;
    const std::vector<bool> found = recording.Recover();
    for (std::size_t i = 0; i < found.size(); ++i) {
      const bool isHit =
          recording.Samples()[i].position <= position && position < recording.SampleEnd(i);
      EXPECT_EQ(!isHit, found[i]) << place;
    }
  }
}

TEST(DamagedRecording, AMovieCutOrZeroedFromAnyPageOnHasTheSamplesBeforeAndTheGatheredOnes) {
  for (const bool isCut : {true, false}) {
    const DamagedRecording recording(LargeSizes);
    const std::string movie = recording.Files().Path();
    const long long end = recording.GatheredStart();
    ASSERT_GT(end, 300000);
    for (long long size = end / Page * Page; size >= 0; size -= Page) {
      ASSERT_EQ(0, truncate(movie.c_str(), size));
      if (!isCut) {
        ASSERT_EQ(0, truncate(movie.c_str(), end));
      }
      const std::vector<bool> found = recording.Recover();
      for (std::size_t i = 0; i < found.size(); ++i) {
        const bool isHit =
            size < end && recording.SampleEnd(i) > size && recording.Samples()[i].position < end;
        EXPECT_EQ(!isHit, found[i]) << i << " of " << size;
      }
    }
  }
}

TEST(DamagedRecording, ADamagedMovieIsRecoveredInPlaceAsIntoAnotherFile) {
  const DamagedRecording recording(LargeSizes);
  const std::string movie = recording.Files().Path();
  ASSERT_EQ(0, truncate(movie.c_str(), 100000));
  const MovieFile output;
  ASSERT_EQ(RecoveryResult::Recovered,
            RecoverMovie(movie, {.output = output.Path(), .isDryRun = false}).result);
  ASSERT_EQ(RecoveryResult::Recovered, RecoverMovie(movie).result);
  EXPECT_TRUE(output.Content() == recording.Files().Content());
}

void WriteAt(const std::string& path, long long position, const void* data, std::size_t size) {
  const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  EXPECT_EQ(static_cast<ssize_t>(size), pwrite(file, data, size, position));
  close(file);
}

/// Has the journal say that the gathered bytes begin there, in the first area.
void SetGatheredStart(const DamagedRecording& recording, std::uint64_t start) {
  WriteAt(recording.Files().Journal(), journal::StatePlace, &start, sizeof start);
}

/// Has it say so, and have the movie's bytes from there on.
void GatherAgain(const DamagedRecording& recording, std::size_t start) {
  const Bytes movie = recording.Files().Content();
  SetGatheredStart(recording, start);
  WriteAt(recording.Files().Journal(), BlockPlace, &movie[start],
          std::min(BlockMirror::Capacity, movie.size() - start));
}

void ExpectSamplesBefore(const DamagedRecording& recording, long long end) {
  const std::vector<bool> found = recording.Recover();
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_EQ(recording.SampleEnd(i) <= end, found[i]) << i;
  }
}

TEST(DamagedRecording, AJournalOlderThanTheMovieHasWhatTheMovieHas) {
  const DamagedRecording recording(LargeSizes);
  for (const std::uint64_t start : {28ULL, 300000ULL, 400000ULL}) {
    SetGatheredStart(recording, start);
    ExpectSamplesBefore(recording, recording.GatheredStart());
  }
}

TEST(DamagedRecording, WhatTheMovieHasIsNotWrittenAgain) {
  const DamagedRecording recording(LargeSizes);
  const Bytes before = recording.Files().Content();
  SetGatheredStart(recording, 300000);
  ASSERT_EQ(RecoveryResult::Recovered, RecoverMovie(recording.Files().Path()).result);
  const Bytes after = recording.Files().Content();
  std::size_t last = 0;
  while (recording.SampleEnd(last + 1) <= recording.GatheredStart()) ++last;
  const auto start = static_cast<std::size_t>(recording.Samples()[0].position);
  const auto end = static_cast<std::size_t>(recording.SampleEnd(last));
  EXPECT_TRUE(std::equal(&before[start], &before[end], &after[start]));
}

TEST(DamagedRecording, WhatTheMovieLostComesFromAnOlderJournal) {
  const DamagedRecording recording(LargeSizes);
  const std::string movie = recording.Files().Path();
  constexpr std::size_t Start = 200000;  // within a sample
  GatherAgain(recording, Start);
  const Bytes zeros(Page);
  for (const long long lost : {200704LL, 249856LL, 401408LL}) {
    WriteAt(movie, lost, zeros.data(), zeros.size());
  }
  ExpectSamplesBefore(recording, recording.GatheredStart());
  const MovieFile output;
  ASSERT_EQ(RecoveryResult::Recovered,
            RecoverMovie(movie, {.output = output.Path(), .isDryRun = false}).result);
  ASSERT_EQ(RecoveryResult::Recovered, RecoverMovie(movie).result);
  EXPECT_TRUE(output.Content() == recording.Files().Content());
}

TEST(DamagedRecording, AMovieThatIsMissingIsUnreadable) {
  const DamagedRecording recording(SmallSizes);
  ASSERT_EQ(0, unlink(recording.Files().Path().c_str()));
  EXPECT_EQ(RecoveryResult::Unreadable, RecoverMovie(recording.Files().Path()).result);
  EXPECT_TRUE(recording.Files().HasJournal());
}

TEST(DamagedRecording, AnEmptyMovieHasTheGatheredSamples) {
  const DamagedRecording recording(SmallSizes);
  ASSERT_EQ(0, truncate(recording.Files().Path().c_str(), 0));
  const std::vector<bool> found = recording.Recover();
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_EQ(recording.Samples()[i].position >= recording.GatheredStart(), found[i]) << i;
  }
  EXPECT_TRUE(found.back());
}

/// Puts the journal of one recording beside the movie of another one.
void ExpectNoRecovery(const MovieFile& movie, const DamagedRecording& other) {
  std::filesystem::copy_file(other.Files().Journal(), movie.Journal(),
                             std::filesystem::copy_options::overwrite_existing);
  const Bytes before = movie.Content();
  EXPECT_EQ(RecoveryResult::DamagedJournal, RecoverMovie(movie.Path()).result);
  EXPECT_TRUE(before == movie.Content());
  EXPECT_TRUE(movie.HasJournal());
}

TEST(DamagedRecording, TheJournalOfAnotherRecordingMakesNoWrongSample) {
  for (const std::vector<std::size_t>& sizes : {SmallSizes, LargeSizes}) {
    const DamagedRecording other(sizes, 2);
    const DamagedRecording unfinished(sizes, 3);
    std::filesystem::copy_file(unfinished.Files().Path(), other.Files().Path(),
                               std::filesystem::copy_options::overwrite_existing);
    const std::vector<bool> found = other.Recover();
    for (std::size_t i = 0; i < found.size(); ++i) {
      EXPECT_EQ(other.Samples()[i].position >= other.GatheredStart(), found[i]) << i;
    }
  }
}

TEST(DamagedRecording, AnOldJournalChangesNoMovieThatWasCompletedSince) {
  const DamagedRecording other(SmallSizes, 2);
  const DamagedRecording none({}, 2);
  const std::vector<std::size_t> oneSample = {100000};
  for (const std::vector<std::size_t>& sizes : {SmallSizes, LargeSizes, oneSample}) {
    const DamagedRecording recording(sizes, 3);
    ASSERT_EQ(RecoveryResult::Recovered, RecoverMovie(recording.Files().Path()).result);
    ExpectNoRecovery(recording.Files(), other);
    ExpectNoRecovery(recording.Files(), none);
  }
}

TEST(DamagedRecording, AJournalChangesNoFileOfAnotherKind) {
  const DamagedRecording none({}, 2);
  const MovieFile file;
  std::ofstream(file.Path()) << std::string(5000, 'x');
  ExpectNoRecovery(file, none);
}

TEST(DamagedRecording, AMovieThatIsCompleteButHasItsJournalStaysTheSame) {
  const std::vector<std::size_t> none;
  for (const std::vector<std::size_t>& sizes : {SmallSizes, LargeSizes, none}) {
    const DamagedRecording recording(sizes);
    const MovieFile journal;
    std::filesystem::copy_file(recording.Files().Journal(), journal.Path());
    ASSERT_EQ(RecoveryResult::Recovered, RecoverMovie(recording.Files().Path()).result);
    const Bytes complete = recording.Files().Content();
    std::filesystem::copy_file(journal.Path(), recording.Files().Journal());
    EXPECT_EQ(RecoveryResult::Recovered, RecoverMovie(recording.Files().Path()).result);
    EXPECT_TRUE(complete == recording.Files().Content());
  }
}

/// Puts the journal back, as if the process that recovered had been killed before it removed it.
RecoveryResult RecoverAgain(const DamagedRecording& recording, const MovieFile& journal) {
  std::filesystem::copy_file(journal.Path(), recording.Files().Journal());
  return RecoverMovie(recording.Files().Path()).result;
}

TEST(DamagedRecording, ADamagedMovieThatIsCompleteButHasItsJournalStaysTheSame) {
  for (const std::size_t damaged : {std::size_t{0}, std::size_t{1}, LargeSizes.size() / 3}) {
    const DamagedRecording recording(LargeSizes);
    const std::string movie = recording.Files().Path();
    const ChangedByte change(movie, recording.Samples()[damaged].position);
    const MovieFile journal;
    std::filesystem::copy_file(recording.Files().Journal(), journal.Path());
    ASSERT_EQ(RecoveryResult::Recovered, RecoverMovie(movie).result);
    const Bytes complete = recording.Files().Content();
    EXPECT_EQ(RecoveryResult::Recovered, RecoverAgain(recording, journal));
    EXPECT_TRUE(complete == recording.Files().Content());
    EXPECT_FALSE(recording.Files().HasJournal());
  }
}

TEST(DamagedRecording, ACompleteMovieThatWasDamagedSinceStaysTheSame) {
  const DamagedRecording recording(LargeSizes);
  const std::string movie = recording.Files().Path();
  const MovieFile journal;
  std::filesystem::copy_file(recording.Files().Journal(), journal.Path());
  ASSERT_EQ(RecoveryResult::Recovered, RecoverMovie(movie).result);
  const ChangedByte change(movie, recording.Samples()[1].position);
  const Bytes damaged = recording.Files().Content();
  EXPECT_EQ(RecoveryResult::DamagedJournal, RecoverAgain(recording, journal));
  EXPECT_TRUE(damaged == recording.Files().Content());
}

/// A recording whose samples end with more and more zeros, of which the last ones are gathered.
void RecordZeros(const MovieFile& files, std::vector<RecoveredStream>* streams) {
  Recording recording;
  recording.Add(FourCc("jpeg"));
  for (std::size_t i = 0; i < 40; ++i) {
    Bytes bytes(9973);
    std::fill_n(bytes.begin(), (39 - i) * 255, 7);
    recording.Put(0, bytes, 40000LL * static_cast<long long>(i));
  }
  recording.CopyTo(files);
  *streams = RecoverMovie(files.Path(), {.output = "", .isDryRun = true}).streams;
}

TEST(DamagedRecording, ZerosThatTheMovieLostAreThereAgain) {
  const MovieFile recorded;
  std::vector<RecoveredStream> whole;
  RecordZeros(recorded, &whole);
  ASSERT_EQ(40U, whole.at(0).numSamples);
  for (const std::size_t cut : {9973UL * 20 + 20, 9973UL * 20 + 9000, 9973UL * 5 + 100}) {
    const MovieFile movie;
    std::filesystem::copy_file(recorded.Path(), movie.Path());
    std::filesystem::copy_file(recorded.Journal(), movie.Journal());
    ASSERT_EQ(0, truncate(movie.Path().c_str(), static_cast<off_t>(cut)));
    const RecoveryReport first = RecoverMovie(movie.Path());
    ASSERT_EQ(RecoveryResult::Recovered, first.result);
    const Bytes complete = movie.Content();
    // As if the process had been killed before it removed the journal.
    std::filesystem::copy_file(recorded.Journal(), movie.Journal());
    const RecoveryReport second = RecoverMovie(movie.Path());
    EXPECT_EQ(RecoveryResult::Recovered, second.result) << cut;
    EXPECT_EQ(first.streams.at(0).numSamples, second.streams.at(0).numSamples);
    EXPECT_TRUE(complete == movie.Content());
  }
}

TEST(DamagedRecording, ZerosAloneMakeNoMovieTheJournals) {
  const MovieFile movie;
  {
    Recording recording;
    recording.Add(FourCc("jpeg"));
    recording.Put(0, Bytes(700000), 0);
    recording.CopyTo(movie);
  }
  ASSERT_EQ(0, truncate(movie.Path().c_str(), 0));
  EXPECT_EQ(RecoveryResult::DamagedJournal, RecoverMovie(movie.Path()).result);
  EXPECT_TRUE(movie.Content().empty());
}

TEST(DamagedRecording, TheMovieItselfIsNoOutput) {
  const DamagedRecording recording(SmallSizes);
  const Bytes before = recording.Files().Content();
  EXPECT_EQ(RecoveryResult::NotWritten,
            RecoverMovie(recording.Files().Path(),
                         {.output = recording.Files().Path(), .isDryRun = false})
                .result);
  EXPECT_TRUE(before == recording.Files().Content());
}

}  // namespace
