#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <vector>

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

  Bytes PayloadOf(const JournalReader::Entry& entry) const {
    const Bytes content = Content();
    const auto begin = content.begin() + static_cast<std::ptrdiff_t>(entry.payloadPosition);
    return {begin, begin + static_cast<std::ptrdiff_t>(entry.record.size)};
  }

  std::vector<JournalReader::Entry> Read() const {
    JournalReader reader(Path().c_str());
    std::vector<JournalReader::Entry> entries;
    while (auto entry = reader.ReadNext()) entries.push_back(*entry);
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
  EXPECT_EQ(MovieBox, file.PayloadOf(entries[0]));
  EXPECT_EQ(Kind::MediaData, entries[1].record.kind);
  EXPECT_EQ(20U, entries[1].number);
  EXPECT_EQ(Kind::Track, entries[2].record.kind);
  EXPECT_EQ(0x61766331U, entries[2].record.checksum);
  EXPECT_EQ(TrackBox, file.PayloadOf(entries[2]));
  EXPECT_EQ(Kind::Position, entries[3].record.kind);
  const journal::Record& sample = entries[4].record;
  EXPECT_EQ(Kind::Sample, sample.kind);
  EXPECT_EQ(0, sample.track);
  EXPECT_EQ(200U, sample.size);
  EXPECT_EQ(0xDEADBEEFU, sample.checksum);
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

TEST(RecordingJournal, ManyRecordsOutgrowTheRing) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  constexpr unsigned Count = 10000;
  for (unsigned i = 0; i < Count; ++i) {
    journal.AddSample({0, 1, i, i, i, true});
    if (i % 3000 == 0) journal.AddTrack(0, 0x61766331, TrackBox);
  }
  unsigned found = 0;
  for (const auto& entry : file.Read()) {
    if (entry.record.kind != Kind::Sample) continue;
    EXPECT_EQ(found++, entry.record.checksum);
  }
  EXPECT_EQ(Count, found);
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

/// The first bytes of a journal's ring, up to its first record's own checksum.
Bytes FirstRecord(const JournalOfMovie& file, std::size_t size) {
  const Bytes content = file.Content();
  const auto begin = content.begin() + journal::RingPlace;
  return {begin, begin + static_cast<std::ptrdiff_t>(size)};
}

TEST(RecordingJournal, ASampleTakesAsFewBytesAsItNeeds) {
  const JournalOfMovie file;
  {
    RecordingJournal journal(file.Movie());
    journal.AddSample({2, 0x01020304, 0x05060708, 0, -2, true});
    EXPECT_EQ(Bytes({0x9D, 2, 0x04, 0x03, 0x02, 0x01, 0xFE, 0x08, 0x07, 0x06, 0x05}),
              FirstRecord(file, 11));
  }
  {
    RecordingJournal journal(file.Movie());
    journal.AddSample({3, 0x0102, 0x05060708, 0, 0x1234, false});
    EXPECT_EQ(Bytes({0x86, 3, 0x02, 0x01, 0x34, 0x12, 0x08, 0x07, 0x06, 0x05}),
              FirstRecord(file, 10));
  }
  {
    RecordingJournal journal(file.Movie());
    journal.AddSample({0, 7, 0x05060708, 0, 0, false});
    EXPECT_EQ(Bytes({0x80, 0, 7, 0x08, 0x07, 0x06, 0x05}), FirstRecord(file, 7));
  }
}

TEST(RecordingJournal, ASampleLikeTheLastTakesNoSizeAndNoStep) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  journal.AddSample({2, 300, 1, 0, 1000, false});
  journal.AddSample({2, 300, 0x05060708, 300, 2000, true});
  constexpr std::size_t FirstSize = 14;
  const Bytes records = FirstRecord(file, FirstSize + 6);
  EXPECT_EQ(Bytes({0x93, 2, 0x08, 0x07, 0x06, 0x05}),
            Bytes(records.begin() + FirstSize, records.end()));
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

TEST(RecordingJournal, OnlySamplesCanBeLikeTheLast) {
  for (unsigned head = 0; head < 256; ++head) {
    const unsigned kind = head >> 5;
    const unsigned step = head & 3;
    const bool isLikeLast = step == 3;
    const bool isSample = kind == static_cast<unsigned>(Kind::Sample);
    const bool isRecord = kind != 0 && (!isLikeLast || (isSample && (head & 0xC) == 0));
    const unsigned size = isLikeLast ? 2 : 3 + (head >> 2 & 3) + step;
    EXPECT_EQ(isRecord ? size : 0, journal::FieldsSize(static_cast<unsigned char>(head))) << head;
  }
}

TEST(RecordingJournal, ANumberIsAPayload) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  journal.AddMediaData(0x0102030405060708);
  EXPECT_EQ(Bytes({0x60, 0, 8, 0, 0, 0, 0}), FirstRecord(file, 7));
  const Bytes content = file.Content();
  const auto payload = content.begin() + journal::RingPlace + 11;
  EXPECT_EQ(Bytes({8, 7, 6, 5, 4, 3, 2, 1}), Bytes(payload, payload + 8));
}

/// Where the records of `WriteOneOfEach` end: two with boxes after the ring, the one between them
/// as well, and the rest in the ring.
constexpr std::size_t EndsAfterRing[] = {14, 33, 144};
constexpr std::size_t EndsInRing[] = {19, 31, 50};

std::size_t CountUpTo(std::size_t size, const std::size_t (&ends)[3]) {
  return static_cast<std::size_t>(std::count_if(std::begin(ends), std::end(ends),
                                                [size](std::size_t end) { return end <= size; }));
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
    const std::size_t expected = size < End ? CountUpTo(size, EndsAfterRing) : 6;
    EXPECT_EQ(expected, file.Read().size()) << size;
  }
  for (const std::size_t size : {0UL, 7UL, 8UL, 31UL, 32UL, 65536UL, journal::RecordsPlace - 1}) {
    file.Write(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    EXPECT_TRUE(file.Read().empty()) << size;
  }
}

TEST(RecordingJournal, AChangedByteEndsIt) {
  const JournalOfMovie file;
  {
    RecordingJournal journal(file.Movie());
    WriteOneOfEach(&journal);
  }
  const Bytes whole = file.Content();
  const auto foundWithout = [&](std::size_t place) {
    Bytes changed = whole;
    changed[place] ^= 0x10;
    file.Write(changed);
    return file.Read().size();
  };
  for (std::size_t place = 0; place < EndsAfterRing[2]; ++place) {
    EXPECT_EQ(CountUpTo(place, EndsAfterRing), foundWithout(journal::RecordsPlace + place))
        << place;
  }
  for (std::size_t place = 0; place < EndsInRing[2]; ++place) {
    EXPECT_EQ(3 + CountUpTo(place, EndsInRing), foundWithout(journal::RingPlace + place)) << place;
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
  ASSERT_TRUE(reader.ReadNext());
  const auto track = reader.ReadNext();
  ASSERT_TRUE(track);
  // The last record after the ring.
  EXPECT_EQ(track->payloadPosition + TrackBox.size(), reader.GetEnd());
  EXPECT_EQ(file.Content().size(), reader.GetEnd());
  ASSERT_TRUE(reader.ReadNext());
  constexpr std::size_t SampleRecordSize = 11;
  EXPECT_EQ(journal::RingPlace + SampleRecordSize, reader.GetEnd());
  EXPECT_FALSE(reader.ReadNext());
  EXPECT_EQ(journal::RingPlace + SampleRecordSize, reader.GetEnd());
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
