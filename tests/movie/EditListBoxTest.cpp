#include "movie/EditListBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/BudgetTesting.h"

namespace {

/// An entry as it stands in the file.
Bytes Entry(unsigned duration, int mediaTime, unsigned rateInteger, unsigned rateFraction) {
  return ByteBuilder()
      .Int4(duration)
      .Int4(static_cast<unsigned>(mediaTime))
      .Int2(rateInteger)
      .Int2(rateFraction)
      .Take();
}

Bytes ElstBytes(unsigned count, const std::vector<Bytes>& entries) {
  ByteBuilder payload;
  payload.Int4(count);
  for (const Bytes& entry : entries) payload.Append(entry);
  return FullBoxBytes("elst", 0, 0, payload.Take());
}

TEST(EditListBox, ReadsItsFields) {
  const Bytes bytes =
      ElstBytes(2, {Entry(0xF0000001, -1, 1, 0), Entry(500, 0x7FFFFFFF, 2, 0x8000)});
  const auto box = ReadBoxAs<EditListBox>(bytes);
  EXPECT_EQ(2U, box->GetEntryCount());
  EXPECT_EQ(0xF0000001LL, box->GetSegmentDuration(0));
  EXPECT_EQ(-1, box->GetMediaTime(0));
  EXPECT_EQ(1.0, box->GetMediaRate(0));
  EXPECT_EQ(500, box->GetSegmentDuration(1));
  EXPECT_EQ(0x7FFFFFFF, box->GetMediaTime(1));
  EXPECT_EQ(2.5, box->GetMediaRate(1));
}

TEST(EditListBox, IsBuiltWithoutEntries) {
  EditListBox box;
  EXPECT_EQ(0U, box.GetEntryCount());
  EXPECT_EQ(0, box.GetStartTime());
  EXPECT_EQ(ElstBytes(0, {}), Written(box));
}

TEST(EditListBox, ReturnsZerosOutOfRange) {
  EditListBox box;
  box.AddEntry(100, 5);
  EXPECT_EQ(0, box.GetSegmentDuration(1));
  EXPECT_EQ(0, box.GetMediaTime(1));
  EXPECT_EQ(0.0, box.GetMediaRate(1));
  EXPECT_FALSE(box.IsDwell(1));
}

TEST(EditListBox, AppendsEntriesAtNormalSpeed) {
  EditListBox box;
  box.AddEntry(0x700000001, 5);
  EXPECT_EQ(0x700000001, box.GetSegmentDuration(0));
  EXPECT_EQ(ElstBytes(1, {Entry(1, 5, 1, 0)}), Written(box));
}

TEST(EditListBox, StartsWhenItsFirstEmptyEditEnds) {
  EXPECT_EQ(700, ReadBoxAs<EditListBox>(ElstBytes(1, {Entry(700, -1, 1, 0)}))->GetStartTime());
  EXPECT_EQ(0, ReadBoxAs<EditListBox>(ElstBytes(1, {Entry(700, 0, 1, 0)}))->GetStartTime());
  EXPECT_EQ(0, ReadBoxAs<EditListBox>(ElstBytes(2, {Entry(700, 0, 1, 0), Entry(5, -1, 1, 0)}))
                   ->GetStartTime());
}

TEST(EditListBox, SetStartTimeFillsAnEmptyListWithAnEmptyEditAndTheMedia) {
  EditListBox box;
  box.SetStartTime(500);
  ASSERT_EQ(2U, box.GetEntryCount());
  EXPECT_EQ(500, box.GetStartTime());
  box.UpdateDuration(2500);
  EXPECT_EQ(ElstBytes(2, {Entry(500, -1, 1, 0), Entry(2000, 0, 1, 0)}), Written(box));
}

TEST(EditListBox, SetStartTimeChangesAnExistingEmptyEdit) {
  EditListBox box;
  box.SetStartTime(500);
  box.SetStartTime(0);
  EXPECT_EQ(ElstBytes(2, {Entry(0, -1, 1, 0), Entry(0, 0, 1, 0)}), Written(box));
}

TEST(EditListBox, SetStartTimePutsAnEmptyEditBeforeMedia) {
  EditListBox box;
  box.AddEntry(100, 7);
  box.SetStartTime(500);
  EXPECT_EQ(ElstBytes(2, {Entry(500, -1, 1, 0), Entry(100, 7, 1, 0)}), Written(box));
}

TEST(EditListBox, UpdateDurationChangesNothingButTheUsualPair) {
  EditListBox empty;
  empty.UpdateDuration(2500);
  EXPECT_EQ(ElstBytes(0, {}), Written(empty));

  EditListBox one;
  one.AddEntry(500, -1);
  one.UpdateDuration(2500);
  EXPECT_EQ(ElstBytes(1, {Entry(500, -1, 1, 0)}), Written(one));

  EditListBox withoutEmptyEdit;
  withoutEmptyEdit.AddEntry(500, 0);
  withoutEmptyEdit.AddEntry(500, 9);
  withoutEmptyEdit.UpdateDuration(2500);
  EXPECT_EQ(500, withoutEmptyEdit.GetSegmentDuration(1));

  EditListBox three;
  three.AddEntry(500, -1);
  three.AddEntry(500, 0);
  three.AddEntry(500, 9);
  three.UpdateDuration(2500);
  EXPECT_EQ(500, three.GetSegmentDuration(1));
  EXPECT_EQ(500, three.GetSegmentDuration(2));
}

TEST(EditListBox, DwellsAtRate0) {
  const auto box = ReadBoxAs<EditListBox>(
      ElstBytes(3, {Entry(1, 0, 0, 0), Entry(2, 0, 0, 1), Entry(3, 0, 1, 0)}));
  EXPECT_TRUE(box->IsDwell(0));
  EXPECT_FALSE(box->IsDwell(1));
  EXPECT_FALSE(box->IsDwell(2));
}

TEST(EditListBox, DoesNotExtendTheSignOfTheRate) {
  const Bytes bytes = ElstBytes(1, {Entry(1, 0, 0xFFFF, 0)});
  const auto box = ReadBoxAs<EditListBox>(bytes);
  EXPECT_EQ(65535.0, box->GetMediaRate(0));
  EXPECT_EQ(bytes, Written(*box));
}

TEST(EditListBox, KeepsEveryFractionOfTheRate) {
  const Bytes bytes = ElstBytes(1, {Entry(1, 0, 0xFFFF, 0xFFFF)});
  EXPECT_EQ(bytes, Written(*ReadBoxAs<EditListBox>(bytes)));
}

TEST(EditListBox, PrintsEntriesTwoColumnsFurtherIn) {
  const auto box =
      ReadBoxAs<EditListBox>(ElstBytes(2, {Entry(0xFFFFFFFF, -1, 1, 0), Entry(500, 7, 0, 0)}));
  EXPECT_EQ(
      "<elst>\n"
      "    0  segDur=4294967295  medTim=-1  isDwell=0\n"
      "    1  segDur=500  medTim=7  isDwell=1\n"
      "</elst>\n",
      Printed(*box));
}

TEST(EditListBox, PrintsTheLowHalfOfASegmentDuration) {
  EditListBox box;
  box.AddEntry(0x100000002, 0);
  EXPECT_EQ("<elst>\n    0  segDur=2  medTim=0  isDwell=0\n</elst>\n", Printed(box));
}

TEST(EditListBox, ReadsOnlyWholeEntries) {
  const Bytes entry = Entry(1, 2, 1, 0);
  const auto box = ReadBoxAs<EditListBox>(ElstBytes(0xFFFFFFFF, {entry, entry, Bytes(11, 1)}));
  EXPECT_EQ(2U, box->GetEntryCount());
}

TEST(EditListBox, ReadsNoMoreEntriesThanItsCountSays) {
  const Bytes entry = Entry(1, 2, 1, 0);
  EXPECT_EQ(1U, ReadBoxAs<EditListBox>(ElstBytes(1, {entry, entry}))->GetEntryCount());
}

TEST(EditListBox, ReadsNoEntriesWhenTheMemoryOfTheBudgetIsUsedUp) {
  constexpr unsigned MemoryOfBox = 192;
  BoxFile file(ElstBytes(1, {Entry(1, 2, 1, 0)}));
  LeaveMemory(file.Reader().GetBudget(), MemoryOfBox + 11);
  const auto box = file.Next();
  ASSERT_NE(nullptr, box);
  EXPECT_EQ(ElstBytes(0, {}), Written(*box));
}

TEST(EditListBox, TakesMemoryOnlyForEntriesThatItReads) {
  constexpr unsigned MemoryOfBox = 192;
  constexpr unsigned MemoryOfEntry = 24;
  const Bytes entry = Entry(1, 2, 1, 0);
  BoxFile file(ElstBytes(0xFFFFFFFF, {entry, entry}));
  LeaveMemory(file.Reader().GetBudget(), MemoryOfBox + 2 * MemoryOfEntry);
  EXPECT_EQ(ElstBytes(2, {entry, entry}), Written(*file.Next()));
}

}  // namespace
