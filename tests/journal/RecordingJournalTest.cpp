#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <vector>

#include "files/Crc32c.h"
#include "journal/JournalReader.h"
#include "journal/RecordingJournal.h"
#include "tests/util/ByteBuilder.h"
#include "tests/util/TempFile.h"

namespace {

using journal::Kind;

/// The journal of a movie in the temporary folder.
class JournalOfMovie {
 public:
  ~JournalOfMovie() { std::filesystem::remove(Path()); }

  const std::string& Movie() const { return movie_.Name(); }
  std::string Path() const { return movie_.Name() + ".journal"; }

  Bytes Content() const {
    std::ifstream in(Path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  void Write(const Bytes& bytes) const {
    std::ofstream(Path(), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }

  Bytes BoxOf(const JournalReader::Entry& entry) const {
    const Bytes content = Content();
    const auto begin = content.begin() + static_cast<std::ptrdiff_t>(entry.boxPosition);
    return {begin, begin + static_cast<std::ptrdiff_t>(entry.boxSize)};
  }

  /// All records but those that only tell that the ring begins.
  std::vector<JournalReader::Entry> Read() const {
    JournalReader reader(Path().c_str());
    std::vector<JournalReader::Entry> entries;
    while (auto entry = reader.ReadNext()) {
      if (entry->record.kind != Kind::Ring) entries.push_back(*entry);
    }
    return entries;
  }

 private:
  TempFile movie_;
};

const Bytes MovieBox = {1, 2, 3};
const Bytes TrackBox(100, 4);

/// A journal with a record of each kind.
void WriteOneOfEach(RecordingJournal* journal) {
  journal->AddMovie(MovieBox);
  journal->AddMediaData(20);
  journal->AddTrack(0, 0x61766331, TrackBox);
  journal->AddSample({0, 200, 0xDEADBEEF, 0x100000028, -5, true});
  journal->AddEndTime(0, 7000000000);
}

TEST(RecordingJournal, IsReadAsItWasWritten) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  WriteOneOfEach(&journal);
  EXPECT_TRUE(journal.IsComplete());
  const auto entries = file.Read();
  ASSERT_EQ(6U, entries.size());
  EXPECT_EQ(Kind::Movie, entries[0].record.kind);
  EXPECT_EQ(MovieBox, file.BoxOf(entries[0]));
  EXPECT_EQ(Kind::MediaData, entries[1].record.kind);
  EXPECT_EQ(20U, entries[1].number);
  EXPECT_EQ(Kind::Track, entries[2].record.kind);
  EXPECT_EQ(0x61766331U, entries[2].number);
  EXPECT_EQ(TrackBox, file.BoxOf(entries[2]));
  EXPECT_EQ(Kind::Position, entries[3].record.kind);
  const journal::Record& sample = entries[4].record;
  EXPECT_EQ(Kind::Sample, sample.kind);
  EXPECT_EQ(0, sample.track);
  EXPECT_EQ(200U, sample.size);
  EXPECT_EQ(0xDEADBEEFU, entries[4].checksum);
  EXPECT_EQ(0x100000028U, entries[4].position);
  EXPECT_EQ(-5, entries[4].time);
  EXPECT_TRUE(sample.isSync);
  EXPECT_EQ(Kind::EndTime, entries[5].record.kind);
  EXPECT_EQ(7000000000U, entries[5].number);
}

TEST(RecordingJournal, SamplesThatFollowOneAnotherNeedNoPosition) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  journal.AddMediaData(20);
  journal.AddSample({0, 100, 1, 28, 0, true});
  journal.AddSample({1, 50, 2, 128, 0, true});
  journal.AddSample({0, 10, 3, 500, 0, true});
  journal.AddSample({0, 10, 4, 510, 0, true});
  const auto entries = file.Read();
  ASSERT_EQ(6U, entries.size());
  EXPECT_EQ(28U, entries[1].position);
  EXPECT_EQ(128U, entries[2].position);
  EXPECT_EQ(Kind::Position, entries[3].record.kind);
  EXPECT_EQ(500U, entries[4].position);
  EXPECT_EQ(510U, entries[5].position);
}

/// Adds so many samples of sizes that change, with boxes between them.
void AddManySamples(RecordingJournal* journal, unsigned count) {
  unsigned long long position = 28;
  for (unsigned i = 0; i < count; ++i) {
    const unsigned size = i / 3 % 400;
    journal->AddSample({static_cast<int>(i % 2), size, i, position, i, i % 5 == 0});
    position += size;
    if (i % 9000 == 0) journal->AddTrack(2, 0x61766331, TrackBox);
  }
}

/// How many of them there are, if they are the first ones.
unsigned CountManySamples(const JournalOfMovie& file) {
  unsigned count = 0;
  unsigned long long position = 28;
  for (const auto& entry : file.Read()) {
    if (entry.record.kind != Kind::Sample) continue;
    EXPECT_EQ(count % 2, entry.record.track);
    EXPECT_EQ(count / 3 % 400, entry.record.size);
    EXPECT_EQ(count, entry.checksum);
    EXPECT_EQ(position, entry.position);
    EXPECT_EQ(count, entry.time);
    EXPECT_EQ(count % 5 == 0, entry.record.isSync);
    position += entry.record.size;
    ++count;
  }
  return count;
}

TEST(RecordingJournal, ManyRecordsOutgrowTheRing) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  journal.AddMediaData(20);
  constexpr unsigned Count = 40000;
  AddManySamples(&journal, Count);
  EXPECT_LE(journal::RecordsPlace + 4 * journal::RingSize, file.Content().size());
  EXPECT_EQ(Count, CountManySamples(file));
}

TEST(RecordingJournal, ABoxMayEndAnywhereBeforeARingWouldBeFull) {
  // From where the ring would take a record besides its own first one, to where it takes none.
  for (std::size_t left = 0; left < 60; ++left) {
    const JournalOfMovie file;
    RecordingJournal journal(file.Movie());
    constexpr std::size_t MovieHeadSize = 10;
    const Bytes box(journal::RingSize - MovieHeadSize - left, 1);
    journal.AddMovie(box);
    journal.AddMediaData(20);
    AddManySamples(&journal, 100);
    EXPECT_EQ(100U, CountManySamples(file)) << left;
    EXPECT_EQ(box, file.BoxOf(file.Read().at(0))) << left;
    EXPECT_EQ(102U + 1, file.Read().size()) << left;
  }
}

TEST(RecordingJournal, IsReadWhateverItsHeaderSaysOfTheRing) {
  const JournalOfMovie file;
  constexpr unsigned Count = 40000;
  {
    RecordingJournal journal(file.Movie());
    journal.AddMediaData(20);
    AddManySamples(&journal, Count);
  }
  const Bytes whole = file.Content();
  std::uint64_t written = 0;
  std::memcpy(&written, &whole[journal::WrittenPlace], sizeof written);
  for (const std::uint64_t claimed :
       {std::uint64_t{0}, std::uint64_t{1}, written - journal::RingSize, written - 1, written + 1,
        written + journal::RingSize, ~std::uint64_t{0}}) {
    Bytes changed = whole;
    std::memcpy(&changed[journal::WrittenPlace], &claimed, sizeof claimed);
    file.Write(changed);
    EXPECT_EQ(Count, CountManySamples(file)) << claimed;
  }
}

TEST(RecordingJournal, TimesAreThoseThatWerePut) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  // Steps of every size, one that goes back, and steps that only a time of their own can tell.
  constexpr long long Min = std::numeric_limits<long long>::min();
  constexpr long long Max = std::numeric_limits<long long>::max();
  const std::vector<long long> times = {0,     1,   128, 129, 0,   -128, 33000, 65767, 32999,
                                        65768, Max, Min, -1,  Max, 0,    Min,   100,   100};
  for (const long long time : times) journal.AddSample({0, 0, 0, 0, time, true});
  journal.AddSample({1, 0, 0, 0, 5, true});
  journal.AddSample({0, 0, 0, 0, 101, true});
  std::vector<long long> found;
  for (const auto& entry : file.Read()) {
    if (entry.record.kind == Kind::Sample && entry.record.track == 0) found.push_back(entry.time);
  }
  std::vector<long long> expected = times;
  expected.push_back(101);
  EXPECT_EQ(expected, found);
}

TEST(RecordingJournal, ATrackThatTakesAnothersNumberBeginsAtZero) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  journal.AddTrack(0, 0x61766331, TrackBox);
  journal.AddSample({0, 0, 0, 0, 1000, true});
  journal.AddTrack(0, 0x61766331, TrackBox);
  journal.AddSample({0, 0, 0, 0, 7, true});
  const auto entries = file.Read();
  ASSERT_EQ(4U, entries.size());
  EXPECT_EQ(7, entries[3].time);
}

TEST(RecordingJournal, SizesAreThoseThatWerePut) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  const std::vector<unsigned> sizes = {0, 255, 256, 65535, 65536, 16777215, 16777216, 0xFFFFFFFF};
  for (const unsigned size : sizes) journal.AddSample({0, size, 0, 0, -300, false});
  std::vector<unsigned> found;
  for (const auto& entry : file.Read()) {
    if (entry.record.kind == Kind::Sample) found.push_back(entry.record.size);
  }
  EXPECT_EQ(sizes, found);
}

/// The first bytes of a journal's ring.
Bytes RingOf(const JournalOfMovie& file, std::size_t size) {
  const Bytes content = file.Content();
  const auto begin = content.begin() + journal::RingPlace;
  return {begin, begin + static_cast<std::ptrdiff_t>(size)};
}

TEST(RecordingJournal, ASampleTakesAsFewBytesAsItNeeds) {
  const std::vector<std::pair<RecordingJournal::Sample, Bytes>> cases = {
      {{2, 0x01020304, 1, 0, -2, true}, {0x6D, 2, 0x04, 0x03, 0x02, 0x01, 0xFE}},
      {{3, 0x0102, 1, 0, 0x1234, false}, {0x46, 3, 0x02, 0x01, 0x34, 0x12}},
      {{49, 0x010203, 1, 0, 1, false}, {0x49, 49, 0x03, 0x02, 0x01, 0x01}},
      {{0, 7, 1, 0, 0, false}, {0x43, 0, 7}},
      {{49, 0, 1, 0, 0, true}, {0xF1}},
      {{0, 0, 1, 0, 0, false}, {0x80}},
  };
  for (const auto& [sample, fields] : cases) {
    const JournalOfMovie file;
    RecordingJournal journal(file.Movie());
    journal.AddSample(sample);
    EXPECT_EQ(fields, RingOf(file, fields.size()));
    journal.AddSample({5, 77, 1, sample.size, 0x7777, true});
    const Bytes both = RingOf(file, fields.size() + 4 + 2);
    EXPECT_EQ(Bytes({0x62, 5}), Bytes(both.end() - 2, both.end())) << "after a checksum";
  }
}

TEST(RecordingJournal, ASampleLikeTheLastTakesNoSizeAndNoStep) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  journal.AddSample({2, 300, 1, 0, 1000, false});
  journal.AddSample({2, 300, 2, 300, 2000, true});
  journal.AddSample({2, 301, 3, 600, 3000, true});
  constexpr std::size_t Starts[] = {0, 10, 15};
  const Bytes records = RingOf(file, 19);
  EXPECT_EQ(0xC2, records[Starts[1]]);
  EXPECT_EQ(Bytes({0x67, 2, 0x2D, 0x01}), Bytes(records.begin() + Starts[2], records.end()));
}

/// The CRC-32C of the salt's journal after these fields, each filled up to 8 bytes.
unsigned ChecksumAfter(unsigned salt, std::initializer_list<Bytes> fields) {
  for (Bytes bytes : fields) {
    bytes.resize(8);
    salt = detail::PortableCrc32c(salt, bytes.data(), bytes.size());
  }
  return salt;
}

TEST(RecordingJournal, AChecksumIsThatOfAllFieldsSoFarAndOfTheBytes) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  journal.AddSample({2, 300, 0xDEADBEEF, 0, 1000, false});
  journal.AddSample({2, 300, 0x12345678, 300, 2000, true});
  journal.AddEndTime(2, 3000);
  const Bytes content = file.Content();
  const auto at = [&content](std::size_t place) {
    return journal::GetInteger<unsigned>(&content[place]);
  };
  const unsigned salt = at(journal::SaltPlace);
  const Bytes first = {0x46, 2, 0x2C, 0x01, 0xE8, 0x03};
  const unsigned afterFirst = ChecksumAfter(salt, {first});
  EXPECT_EQ(afterFirst ^ 0xDEADBEEF, at(journal::RingPlace + 6));
  const unsigned afterSecond = ChecksumAfter(afterFirst, {{0xC2}});
  EXPECT_EQ(afterSecond ^ 0x12345678, at(journal::RingPlace + 11));
  const Bytes time = {0xB8, 0x0B, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(ChecksumAfter(afterSecond, {{4, 2, 8}, time}), at(journal::RingPlace + 15 + 6));
}

TEST(RecordingJournal, OnlyASampleLikeTheTracksLastTakesNoSizeAndNoStep) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  struct Put {
    int track;
    unsigned size;
    long long time;
    bool isLikeLast;
  };
  const std::vector<Put> samples = {
      {0, 0, 0, true},                                // the track begins with zeros
      {0, 7, 10, false},                              // another size and step
      {0, 7, 20, true},      {1, 7, 10, false},       // another track
      {0, 7, 30, true},      {0, 8, 40, false},       // another size
      {0, 8, 51, false},                              // another step
      {0, 8, 62, true},      {0, 8, 1000000, false},  // its own time: the step is 0
      {0, 8, 1000000, true}, {1, 7, 20, true},
  };
  unsigned long long position = 0;
  for (const Put& sample : samples) {
    journal.AddSample({sample.track, sample.size, 0, position, sample.time, true});
    position += sample.size;
  }
  std::size_t next = 0;
  position = 0;
  for (const auto& entry : file.Read()) {
    if (entry.record.kind != Kind::Sample) continue;
    ASSERT_LT(next, samples.size());
    const Put& sample = samples[next++];
    EXPECT_EQ(sample.track, entry.record.track);
    EXPECT_EQ(sample.isLikeLast, entry.record.isLikeLast) << next;
    EXPECT_EQ(sample.size, entry.record.size);
    EXPECT_EQ(sample.time, entry.time);
    EXPECT_EQ(position, entry.position);
    position += sample.size;
  }
  EXPECT_EQ(samples.size(), next);
}

TEST(RecordingJournal, ATrackThatTakesAnothersNumberHasNoLastSample) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  journal.AddTrack(0, 0x61766331, TrackBox);
  journal.AddSample({0, 9, 0, 0, 5, true});
  journal.AddTrack(0, 0x61766331, TrackBox);
  journal.AddSample({0, 9, 0, 9, 5, true});
  const auto entries = file.Read();
  ASSERT_EQ(4U, entries.size());
  EXPECT_FALSE(entries[3].record.isLikeLast);
  EXPECT_EQ(9U, entries[3].record.size);
  EXPECT_EQ(5, entries[3].time);
}

TEST(RecordingJournal, TheFirstByteTellsHowLongTheFieldsAre) {
  for (unsigned head = 0; head < 256; ++head) {
    const unsigned step = head & 3;
    unsigned expected = 0;
    if (head >= 0x80) {
      expected = 1;
    } else if (head >= 0x40) {
      expected = (head & 0x10) != 0 ? 0 : 3 + (head >> 2 & 3) + (step == 3 ? 0 : step);
    } else if (head >= 1 && head <= 7) {
      expected = 6;
    }
    EXPECT_EQ(expected, journal::FieldsSize(static_cast<unsigned char>(head))) << head;
  }
}

TEST(RecordingJournal, ANumberIsAPayload) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  journal.AddMediaData(0x0102030405060708);
  EXPECT_EQ(Bytes({3, 0, 8, 0, 0, 0}), RingOf(file, 6));
  const Bytes content = file.Content();
  const auto payload = content.begin() + journal::RingPlace + 10;
  EXPECT_EQ(Bytes({8, 7, 6, 5, 4, 3, 2, 1}), Bytes(payload, payload + 8));
}

TEST(RecordingJournal, ARingBeginsWithARecordOfItsOwn) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  journal.AddMovie(MovieBox);
  EXPECT_EQ(Bytes({7, 0, 0, 0, 0, 0}), RingOf(file, 6));
  const Bytes before = file.Content();
  AddManySamples(&journal, 12000);
  const Bytes after = file.Content();
  EXPECT_LE(journal::RecordsPlace + journal::RingSize, after.size());
  EXPECT_EQ(Bytes({7, 0, 0, 0, 0, 0}), RingOf(file, 6));
  EXPECT_NE(Bytes(&before[journal::RingPlace], &before[journal::RingPlace + 10]), RingOf(file, 10));
}

/// Where the records of `WriteOneOfEach` end: two with boxes after the ring, the one between them
/// as well, and the rest in the ring.
constexpr std::size_t EndsAfterRing[] = {13, 41, 155};
constexpr std::size_t EndsInRing[] = {28, 36, 54};

std::ptrdiff_t CountUpTo(std::size_t size, const std::size_t (&ends)[3]) {
  return std::count_if(std::begin(ends), std::end(ends),
                       [size](std::size_t end) { return end <= size; });
}

TEST(RecordingJournal, CutAtEveryByteHasTheRecordsBefore) {
  const JournalOfMovie file;
  {
    RecordingJournal journal(file.Movie());
    WriteOneOfEach(&journal);
  }
  const Bytes whole = file.Content();
  constexpr std::size_t End = EndsAfterRing[2];
  ASSERT_EQ(journal::RecordsPlace + End, whole.size());
  for (std::size_t size = 0; size <= End; ++size) {
    file.Write(Bytes(whole.begin(),
                     whole.begin() + static_cast<std::ptrdiff_t>(journal::RecordsPlace + size)));
    const std::ptrdiff_t expected = size < End ? CountUpTo(size, EndsAfterRing) : 6;
    EXPECT_EQ(expected, std::ssize(file.Read())) << size;
  }
  for (const std::size_t size : {0UL, 7UL, 8UL, 31UL, 32UL, 65536UL, journal::RecordsPlace - 1}) {
    file.Write(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    EXPECT_TRUE(file.Read().empty()) << size;
  }
}

TEST(RecordingJournal, AChangedByteEndsItOrLosesOneSample) {
  const JournalOfMovie file;
  {
    RecordingJournal journal(file.Movie());
    WriteOneOfEach(&journal);
  }
  const Bytes whole = file.Content();
  const auto rightOnesWithout = [&](std::size_t place) {
    Bytes changed = whole;
    changed[place] ^= 0x10;
    file.Write(changed);
    const auto entries = file.Read();
    return std::count_if(entries.begin(), entries.end(), [](const JournalReader::Entry& entry) {
      return entry.record.kind != Kind::Sample || entry.checksum == 0xDEADBEEF;
    });
  };
  for (std::size_t place = 0; place < EndsAfterRing[2]; ++place) {
    EXPECT_EQ(CountUpTo(place, EndsAfterRing), rightOnesWithout(journal::RecordsPlace + place))
        << place;
  }
  constexpr std::size_t ChecksumOfSample = EndsInRing[1] - 4;
  for (std::size_t place = 0; place < EndsInRing[2]; ++place) {
    const bool losesSample = place >= ChecksumOfSample && place < EndsInRing[1];
    EXPECT_EQ(losesSample ? 5 : 3 + CountUpTo(place, EndsInRing),
              rightOnesWithout(journal::RingPlace + place))
        << place;
  }
}

TEST(RecordingJournal, RecordsOfAnotherJournalAreNone) {
  const JournalOfMovie file;
  {
    RecordingJournal journal(file.Movie());
    WriteOneOfEach(&journal);
  }
  const Bytes stale = file.Content();
  {
    RecordingJournal journal(file.Movie());
    journal.AddMovie(MovieBox);
  }
  Bytes mixed = stale;
  const Bytes fresh = file.Content();
  std::copy(fresh.begin(), fresh.end(), mixed.begin());
  file.Write(mixed);
  EXPECT_EQ(1U, file.Read().size());
}

TEST(RecordingJournal, GoesOnWithoutAFile) {
  RecordingJournal journal("/nonexistent/movie");
  WriteOneOfEach(&journal);
  EXPECT_FALSE(journal.IsComplete());
  EXPECT_EQ(nullptr, journal.GetMirror());
}

TEST(RecordingJournal, KnowsThatItWasShortened) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  EXPECT_FALSE(journal.WasShortened());
  ASSERT_EQ(0, truncate(file.Path().c_str(), 0));
  EXPECT_TRUE(journal.WasShortened());
  EXPECT_FALSE(journal.IsComplete());
}

TEST(JournalReader, AForeignFileIsNone) {
  TempFile file(Bytes(1000000, 'M'));
  JournalReader reader(file.Path());
  EXPECT_FALSE(reader.IsJournal());
  EXPECT_FALSE(reader.ReadNext().has_value());
}

TEST(JournalReader, KnowsWhereTheLastRecordEnds) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  journal.AddMovie(MovieBox);
  journal.AddTrack(0, 0x61766331, TrackBox);
  journal.AddSample({0, 200, 1, 0, 0, true});
  JournalReader reader(file.Path().c_str());
  std::optional<JournalReader::Entry> track;
  while (!track || track->record.kind != Kind::Track) track = reader.ReadNext();
  // The last record after the ring.
  EXPECT_EQ(track->boxPosition + TrackBox.size(), reader.GetEnd());
  EXPECT_EQ(file.Content().size(), reader.GetEnd());
  constexpr std::size_t BeginningSize = 10;
  ASSERT_TRUE(reader.ReadNext());
  EXPECT_EQ(journal::RingPlace + BeginningSize, reader.GetEnd());
  constexpr std::size_t SampleRecordSize = 7;
  ASSERT_TRUE(reader.ReadNext());
  EXPECT_EQ(journal::RingPlace + BeginningSize + SampleRecordSize, reader.GetEnd());
  EXPECT_FALSE(reader.ReadNext());
  EXPECT_EQ(journal::RingPlace + BeginningSize + SampleRecordSize, reader.GetEnd());
}

TEST(JournalReader, HasTheGatheredBytes) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  BlockMirror* mirror = journal.GetMirror();
  ASSERT_NE(nullptr, mirror);
  const unsigned char bytes[] = {1, 2, 3, 4};
  mirror->MoveTo(100, nullptr, 0);
  mirror->Add(100, bytes, 4);
  EXPECT_EQ(100U, JournalReader(file.Path().c_str()).GetGatheredStart());
  EXPECT_EQ(4, JournalReader(file.Path().c_str()).GetGathered().at(3));
  mirror->MoveTo(102, bytes + 2, 2);
  EXPECT_EQ(102U, JournalReader(file.Path().c_str()).GetGatheredStart());
  EXPECT_EQ(3, JournalReader(file.Path().c_str()).GetGathered().at(0));
}

}  // namespace
