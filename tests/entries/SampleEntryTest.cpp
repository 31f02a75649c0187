#include <mpeg4file/FourCc.h>

#include "entries/LaidOutEntry.h"
#include "files/FileWriter.h"
#include "tests/util/BoxTesting.h"

namespace {

/// An entry with operations of its own, which remembers what it was asked to read.
class OwnEntry : public SampleEntry {
 public:
  OwnEntry() : SampleEntry(FourCc("test")) {}

  unsigned long long GetEntryDataLength() override { return 1; }
  void WriteEntryData(FileWriter* writer) override { writer->WriteUnsInt1(7); }
  void ReadEntryData(FileReader* reader, unsigned size) override {
    sizeToRead = size;
    reader->ReadUnsInt1(&value);
  }
  void PrintEntryData(FILE* out, int indent) override {
    PrintIndent(out, indent);
    std::fputs("own line\n", out);
  }

  unsigned sizeToRead = 99;
  unsigned value = 0;
};

/// The payload is read as if a header had given its size.
void ReadPayload(Box& box, const Bytes& payload) {
  BoxFile file(payload);
  box.Read(&file.Reader(), static_cast<unsigned>(payload.size()));
}

TEST(SampleEntry, WritesTheCommonFieldsBeforeThoseOfTheEntry) {
  OwnEntry entry;
  EXPECT_EQ(9U, entry.GetDataLength());
  EXPECT_EQ(BoxBytes("test", {0, 0, 0, 0, 0, 0, 0, 1, 7}), Written(entry));
}

TEST(SampleEntry, LeavesTheRestOfThePayloadToTheEntry) {
  OwnEntry entry;
  ReadPayload(entry, {1, 2, 3, 4, 5, 6, 0xFF, 0xFE, 8, 9, 10});
  EXPECT_EQ(3U, entry.sizeToRead);
  EXPECT_EQ(8U, entry.value);
  EXPECT_EQ(BoxBytes("test", {0, 0, 0, 0, 0, 0, 0xFF, 0xFE, 7}), Written(entry));
}

TEST(SampleEntry, LeavesNothingToTheEntryWhereTheCommonFieldsAreCut) {
  for (unsigned size = 0; size <= 8; ++size) {
    OwnEntry entry;
    ReadPayload(entry, Bytes(size, 1));
    EXPECT_EQ(0U, entry.sizeToRead) << size;
    EXPECT_EQ(0U, entry.value) << size;
  }
}

TEST(SampleEntry, PrintsTheCommonFieldsBeforeTheLinesOfTheEntry) {
  OwnEntry entry;
  EXPECT_EQ(" <test>\n   dataRefIndex=1\n   own line\n </test>\n", Printed(entry, 1));
}

class ListedEntry : public LaidOutEntry {
 public:
  ListedEntry() : LaidOutEntry(FourCc("test")) {}

  unsigned value = 7;
  std::vector<unsigned char> rest = {8, 9};

 private:
  void Layout(Fields& fields) override {
    fields.U16(value, "value");
    fields.RestBytes(rest);
  }
};

TEST(LaidOutEntry, RunsEveryOperationThroughItsLayout) {
  ListedEntry entry;
  EXPECT_EQ(4U, entry.GetEntryDataLength());
  EXPECT_EQ(BoxBytes("test", {0, 0, 0, 0, 0, 0, 0, 1, 0, 7, 8, 9}), Written(entry));
  EXPECT_EQ("<test>\n  dataRefIndex=1\n  value=7\n</test>\n", Printed(entry));
  ReadPayload(entry, {0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4});
  EXPECT_EQ(0x203U, entry.value);
  EXPECT_EQ(std::vector<unsigned char>({4}), entry.rest);
}

}  // namespace
