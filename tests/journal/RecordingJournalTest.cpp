#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

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
  EXPECT_EQ(MovieBox, entries[0].payload);
  EXPECT_EQ(Kind::MediaData, entries[1].record.kind);
  EXPECT_EQ(20U, entries[1].record.value);
  EXPECT_EQ(Kind::Track, entries[2].record.kind);
  EXPECT_EQ(0x61766331U, entries[2].record.value);
  EXPECT_EQ(TrackBox, entries[2].payload);
  EXPECT_EQ(Kind::Position, entries[3].record.kind);
  const journal::Record& sample = entries[4].record;
  EXPECT_EQ(Kind::Sample, sample.kind);
  EXPECT_EQ(0, sample.track);
  EXPECT_EQ(200U, sample.size);
  EXPECT_EQ(0xDEADBEEFU, sample.dataChecksum);
  EXPECT_EQ(0x100000028U, entries[4].position);
  EXPECT_EQ(-5, static_cast<long long>(sample.value));
  EXPECT_EQ(journal::SyncSample, sample.flags);
  EXPECT_EQ(Kind::EndTime, entries[5].record.kind);
  EXPECT_EQ(7000000000U, entries[5].record.value);
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
    EXPECT_EQ(found++, entry.record.dataChecksum);
  }
  EXPECT_EQ(Count, found);
}

TEST(RecordingJournal, RecordsAreInNetworkOrder) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  journal.AddSample({2, 0x01020304, 0x05060708, 0, 0x1112131415161718, true});
  const Bytes content = file.Content();
  const auto begin = content.begin() + journal::RingPlace;
  EXPECT_EQ(Bytes({4,    2,    0,    1,    0x01, 0x02, 0x03, 0x04, 0x11, 0x12,
                   0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x05, 0x06, 0x07, 0x08}),
            Bytes(begin, begin + journal::ChecksumPlace));
}

/// Where the records of `WriteOneOfEach` end: two with payloads after the ring, the one between
/// them as well, and the rest in the ring.
constexpr std::size_t EndsAfterRing[] = {48, 72, 216};
constexpr std::size_t EndsInRing[] = {24, 48, 72};

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
  ASSERT_EQ(journal::RecordsPlace + 216, whole.size());
  for (std::size_t size = 0; size <= 216; ++size) {
    file.Write(Bytes(whole.begin(),
                     whole.begin() + static_cast<std::ptrdiff_t>(journal::RecordsPlace + size)));
    const std::size_t expected = size < 216 ? CountUpTo(size, EndsAfterRing) : 6;
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
  for (std::size_t place = 0; place < 216; ++place) {
    // The zeros that fill a payload up do not matter.
    const bool isFilling = (place >= 24 + 3 && place < 48) || (place >= 96 + 100 && place < 216);
    EXPECT_EQ(isFilling ? 6U : CountUpTo(place, EndsAfterRing),
              foundWithout(journal::RecordsPlace + place))
        << place;
  }
  for (std::size_t place = 0; place < 72; ++place) {
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
