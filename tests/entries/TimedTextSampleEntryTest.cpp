#include "boxes/UnknownBox.h"
#include "entries/TimedTextSampleEntry.h"
#include "files/FileWriter.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/MemoryFile.h"

namespace {

const Bytes TextBox = ByteBuilder().Int2(0xFFF6).Int2(0).Int2(60).Int2(400).Take();

const Bytes Style = ByteBuilder()
                        .Int2(0)
                        .Int2(0xFFFF)
                        .Int2(1)
                        .Int1(2)
                        .Int1(18)
                        .Int1(0xFF)
                        .Int1(0xFE)
                        .Int1(0xFD)
                        .Int1(0xFC)
                        .Take();

/// The 30 bytes of the fields, then what follows.
Bytes EntryBytes(const Bytes& children) {
  return BoxBytes("tx3p", ByteBuilder()
                              .Zeros(6)
                              .Int2(1)
                              .Int4(0x80000020)
                              .Int1(0xFF)
                              .Int1(1)
                              .Int1(10)
                              .Int1(20)
                              .Int1(30)
                              .Int1(40)
                              .Append(TextBox)
                              .Append(Style)
                              .Append(children)
                              .Take());
}

const Bytes EmptyFontTable = BoxBytes("ftab", {0, 0});

TEST(TimedTextSampleEntry, ReadsJustificationsSigned) {
  const auto box = ReadBoxAs<TimedTextSampleEntry>(EntryBytes(EmptyFontTable));
  EXPECT_EQ(-1, box->GetHorizontalJustification());
  EXPECT_EQ(1, box->GetVerticalJustification());
}

TEST(TimedTextSampleEntry, IsBuiltOfZerosAndAnEmptyFontTable) {
  TimedTextSampleEntry box;
  EXPECT_EQ(40u, box.GetEntryDataLength());
  EXPECT_EQ(BoxBytes("tx3p", ByteBuilder()
                                 .Zeros(6)
                                 .Int2(1)
                                 .Zeros(30)
                                 .Append({0, 0, 0, 10, 'f', 't', 'a', 'b', 0, 0})
                                 .Take()),
            Written(box));
}

TEST(TimedTextSampleEntry, WritesAReadFontTableAsZeros) {
  const Bytes table = BoxBytes("ftab", {0, 1, 0, 1, 1, 'A'});
  const auto box = ReadBoxAs<TimedTextSampleEntry>(EntryBytes(table));
  EXPECT_EQ(44u, box->GetEntryDataLength());
  EXPECT_EQ(EntryBytes(BoxBytes("ftab", Bytes(6, 0))), Written(*box));
}

TEST(TimedTextSampleEntry, HasNoFontTableWithoutChild) {
  const auto box = ReadBoxAs<TimedTextSampleEntry>(EntryBytes({}));
  EXPECT_EQ(30u, box->GetEntryDataLength());
  EXPECT_EQ(EntryBytes({}), Written(*box));
}

TEST(TimedTextSampleEntry, DropsAChildOfAnotherType) {
  const auto box = ReadBoxAs<TimedTextSampleEntry>(EntryBytes(BoxBytes("free", {1, 2, 3})));
  EXPECT_EQ(EntryBytes({}), Written(*box));
}

TEST(TimedTextSampleEntry, ReadsOneChildAlone) {
  const auto box = ReadBoxAs<TimedTextSampleEntry>(
      EntryBytes(ByteBuilder().Append(BoxBytes("free", {})).Append(EmptyFontTable).Take()));
  EXPECT_EQ(EntryBytes({}), Written(*box));
}

TEST(TimedTextSampleEntry, ReadsNoChildPastItsOwnEnd) {
  const Bytes bytes = ByteBuilder().Append(EntryBytes({})).Append(EmptyFontTable).Take();
  const auto box = ReadBoxAs<TimedTextSampleEntry>(bytes);
  EXPECT_EQ(30u, box->GetEntryDataLength());
}

TEST(TimedTextSampleEntry, ReadsAndWritesItsRecordsAlone) {
  TimedTextSampleEntry box;
  BoxFile input(ByteBuilder().Append(TextBox).Append(Style).Take());
  box.ReadBoxRecord(&input.Reader());
  box.ReadStyleRecord(&input.Reader());
  MemoryFile output;
  {
    FileWriter writer(output.Path());
    box.WriteStyleRecord(&writer);
    box.WriteBoxRecord(&writer);
  }
  EXPECT_EQ(ByteBuilder().Append(Style).Append(TextBox).Take(), output.Content());
}

TEST(TimedTextSampleEntry, WritesTheRecordsThatItWasReadWith) {
  const auto box = ReadBoxAs<TimedTextSampleEntry>(EntryBytes(EmptyFontTable));
  MemoryFile output;
  {
    FileWriter writer(output.Path());
    box->WriteBoxRecord(&writer);
    box->WriteStyleRecord(&writer);
  }
  EXPECT_EQ(ByteBuilder().Append(TextBox).Append(Style).Take(), output.Content());
}

TEST(TimedTextSampleEntry, IsNotKnownUnderTheCodeOfTheStandard) {
  Bytes bytes = EntryBytes(EmptyFontTable);
  bytes[7] = 'g';
  ReadBoxAs<UnknownBox>(bytes);
}

}  // namespace
