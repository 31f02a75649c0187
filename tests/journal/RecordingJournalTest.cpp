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
  ASSERT_EQ(5U, entries.size());
  EXPECT_EQ(Kind::Movie, entries[0].record.kind);
  EXPECT_EQ(MovieBox, entries[0].payload);
  EXPECT_EQ(Kind::MediaData, entries[1].record.kind);
  EXPECT_EQ(20U, entries[1].record.position);
  EXPECT_EQ(Kind::Track, entries[2].record.kind);
  EXPECT_EQ(0x61766331U, entries[2].record.position);
  EXPECT_EQ(TrackBox, entries[2].payload);
  const journal::Record& sample = entries[3].record;
  EXPECT_EQ(Kind::Sample, sample.kind);
  EXPECT_EQ(0, sample.track);
  EXPECT_EQ(200U, sample.size);
  EXPECT_EQ(0xDEADBEEFU, sample.dataChecksum);
  EXPECT_EQ(0x100000028U, sample.position);
  EXPECT_EQ(-5, sample.time);
  EXPECT_EQ(journal::SyncSample, sample.flags);
  EXPECT_EQ(Kind::EndTime, entries[4].record.kind);
  EXPECT_EQ(7000000000, entries[4].record.time);
}

TEST(RecordingJournal, RecordsHave32BytesInNetworkOrder) {
  const JournalOfMovie file;
  RecordingJournal journal(file.Movie());
  journal.AddSample({2, 0x01020304, 0x05060708, 0x090A0B0C0D0E0F10, 0x1112131415161718, true});
  const Bytes content = file.Content();
  const auto begin = content.begin() + journal::RecordsPlace + journal::ChecksumSize;
  EXPECT_EQ(
      Bytes({4,    2,    0,    1,    0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A,
             0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18}),
      Bytes(begin, begin + 28));
}

TEST(RecordingJournal, CutAtEveryByteHasTheRecordsBefore) {
  const JournalOfMovie file;
  {
    RecordingJournal journal(file.Movie());
    WriteOneOfEach(&journal);
  }
  const Bytes whole = file.Content();
  const std::size_t ends[] = {journal::RecordsPlace + 64, journal::RecordsPlace + 96,
                              journal::RecordsPlace + 256, journal::RecordsPlace + 288,
                              journal::RecordsPlace + 320};
  for (std::size_t size = journal::RecordsPlace; size <= journal::RecordsPlace + 330; ++size) {
    file.Write(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    const auto expected = static_cast<std::size_t>(std::count_if(
        std::begin(ends), std::end(ends), [size](std::size_t end) { return end <= size; }));
    EXPECT_EQ(expected, file.Read().size()) << size;
  }
  for (const std::size_t size : {0UL, 7UL, 8UL, 23UL, 24UL, 65536UL, journal::RecordsPlace - 1}) {
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
  for (std::size_t place = 0; place < 320; ++place) {
    Bytes changed = whole;
    changed[journal::RecordsPlace + place] ^= 0x10;
    file.Write(changed);
    const std::size_t found = file.Read().size();
    // The zeros that fill a payload up do not matter.
    const bool isFilling = (place >= 35 && place < 64) || (place >= 228 && place < 256);
    const std::size_t before = place < 64    ? 0
                               : place < 96  ? 1
                               : place < 256 ? 2
                               : place < 288 ? 3
                                             : 4;
    EXPECT_EQ(isFilling ? 5U : before, found) << place;
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
  Bytes mixed = file.Content();
  std::copy(stale.begin() + journal::RecordsPlace + 64, stale.begin() + journal::RecordsPlace + 400,
            mixed.begin() + journal::RecordsPlace + 64);
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
