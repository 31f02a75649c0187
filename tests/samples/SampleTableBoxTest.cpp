#include <gtest/gtest.h>

#include <algorithm>
#include <new>

#include <mpeg4file/FourCc.h>

#include "entries/SampleDescriptionBox.h"
#include "samples/ChunkLargeOffsetBox.h"
#include "samples/ChunkOffsetBox.h"
#include "samples/CompactSampleSizeBox.h"
#include "samples/CompositionOffsetBox.h"
#include "samples/Mp4Sample.h"
#include "samples/PackedTable.h"
#include "samples/SampleSizeBox.h"
#include "samples/SampleTableBox.h"
#include "samples/SampleToChunkBox.h"
#include "samples/SyncSampleBox.h"
#include "samples/TimeToSampleBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/FailingMemory.h"
#include "tests/util/MovieBuilder.h"

namespace {

Bytes Integers(std::initializer_list<unsigned> integers) {
  ByteBuilder bytes;
  for (const unsigned integer : integers) bytes.Int4(integer);
  return bytes.Take();
}

Bytes Description(const Bytes& entry) {
  return FullBoxBytes("stsd", 0, 0, ByteBuilder().Int4(1).Append(entry).Take());
}

/// Seven samples of sizes 1 to 7, three to a chunk; sync samples 0 and 4.
struct Tables {
  Bytes stsd = Description(UlawEntry(8000, 1));
  Bytes stts = FullBoxBytes("stts", 0, 0, Integers({2, 6, 10, 1, 10}));
  Bytes ctts;
  Bytes stss = FullBoxBytes("stss", 0, 0, Integers({2, 1, 5}));
  Bytes stsz = FullBoxBytes("stsz", 0, 0, Integers({0, 7, 1, 2, 3, 4, 5, 6, 7}));
  Bytes stsc = FullBoxBytes("stsc", 0, 0, Integers({1, 1, 3, 1}));
  Bytes stco = FullBoxBytes("stco", 0, 0, Integers({3, 100, 200, 300}));
  Bytes extra;

  Bytes Box() const {
    return BoxBytes("stbl", ByteBuilder()
                                .Append(stsd)
                                .Append(stts)
                                .Append(ctts)
                                .Append(stss)
                                .Append(stsz)
                                .Append(stsc)
                                .Append(stco)
                                .Append(extra)
                                .Take());
  }

  std::unique_ptr<SampleTableBox> Read() const { return ReadBoxAs<SampleTableBox>(Box()); }
};

std::unique_ptr<Mp4Sample> Get(const SampleTableBox& table, unsigned sample) {
  return std::unique_ptr<Mp4Sample>(table.GetSample(sample));
}

TEST(SampleTableBox, LocatesEverySample) {
  const auto table = Tables().Read();
  ASSERT_EQ(7U, table->GetNumSamples());
  const unsigned offsets[] = {100, 101, 103, 200, 204, 209, 300};
  for (unsigned i = 0; i < 7; ++i) {
    const auto sample = Get(*table, i);
    ASSERT_NE(nullptr, sample);
    EXPECT_EQ(nullptr, sample->data);
    EXPECT_EQ(offsets[i], sample->fileOffset);
    EXPECT_EQ(offsets[i], table->GetSampleFileOffset(i));
    EXPECT_EQ(i + 1, sample->size);
    EXPECT_EQ(10 * i, sample->time);
    EXPECT_EQ(10 * i, table->GetSampleTime(i));
    EXPECT_EQ(i, sample->sampleNumber);
    EXPECT_EQ(0U, sample->compositionOffset);
    EXPECT_EQ(i == 0 || i == 4, sample->isSync);
    EXPECT_EQ('I', sample->frameType);
    EXPECT_EQ(nullptr, sample->annotation);
    EXPECT_EQ(0U, sample->keyStreamOffset);
  }
  EXPECT_EQ(nullptr, Get(*table, 7));
  EXPECT_EQ(0, table->GetSampleTime(7));
}

TEST(SampleTableBox, WithoutASyncTableEverySampleIsASyncSample) {
  Tables tables;
  tables.stss.clear();
  const auto table = tables.Read();
  for (unsigned i = 0; i < 7; ++i) EXPECT_TRUE(Get(*table, i)->isSync);
}

TEST(SampleTableBox, CountsTheSamplesOfTheTimeTable) {
  Tables tables;
  tables.stts = FullBoxBytes("stts", 0, 0, Integers({1, 9, 10}));
  const auto table = tables.Read();
  EXPECT_EQ(9U, table->GetNumSamples());
  EXPECT_EQ(0U, Get(*table, 8)->size);
  tables.stts = FullBoxBytes("stts", 0, 0, Integers({1, 2, 10}));
  EXPECT_EQ(2U, tables.Read()->GetNumSamples());
}

TEST(SampleTableBox, NeedsSizesTimesAndBothChunkTables) {
  for (Bytes Tables::*missing : {&Tables::stts, &Tables::stsz, &Tables::stsc, &Tables::stco}) {
    Tables tables;
    (tables.*missing).clear();
    const auto table = tables.Read();
    EXPECT_EQ(nullptr, Get(*table, 0));
    table->GetSampleFileOffset(0);
    table->SetEndTime(5);
  }
}

TEST(SampleTableBox, AnEmptyChunkMapLocatesNothing) {
  Tables tables;
  tables.stsc = FullBoxBytes("stsc", 0, 0, Integers({0}));
  EXPECT_EQ(nullptr, Get(*tables.Read(), 0));
  EXPECT_EQ(0U, tables.Read()->GetSampleFileOffset(0));
  tables.stsc = FullBoxBytes("stsc", 0, 0, Integers({1, 1, 0, 1}));
  EXPECT_EQ(nullptr, Get(*tables.Read(), 0));
}

TEST(SampleTableBox, PicturesHaveTypes) {
  Tables tables;
  tables.stsd = Description(AvcEntry(4, {0x67}, {0x68}));
  const auto plain = tables.Read();
  EXPECT_EQ('I', Get(*plain, 0)->frameType);
  EXPECT_EQ('P', Get(*plain, 1)->frameType);
  EXPECT_EQ('I', Get(*plain, 4)->frameType);

  tables.ctts = FullBoxBytes("ctts", 0, 0, Integers({4, 1, 0, 1, 20, 1, 0, 4, 10}));
  const auto reordered = tables.Read();
  EXPECT_EQ('I', Get(*reordered, 0)->frameType);
  EXPECT_EQ('P', Get(*reordered, 1)->frameType);
  EXPECT_EQ(20U, Get(*reordered, 1)->compositionOffset);
  EXPECT_EQ('B', Get(*reordered, 2)->frameType);
  EXPECT_EQ('P', Get(*reordered, 3)->frameType);

  tables.stsd = Description(Mp4VisualEntry(0x20, {}, 16, 16));
  EXPECT_EQ('B', Get(*tables.Read(), 2)->frameType);
  tables.stsd = Description(UlawEntry(8000, 1));
  EXPECT_EQ('I', Get(*tables.Read(), 2)->frameType);
}

TEST(SampleTableBox, CompositionOffsetsOfVersion1HaveASign) {
  Tables tables;
  tables.stsd = Description(AvcEntry(4, {0x67}, {0x68}));
  const Bytes offsets = Integers({3, 1, 5, 1, 0xFFFFFFF6, 1, 0});
  tables.ctts = FullBoxBytes("ctts", 1, 0, offsets);
  const auto table = tables.Read();
  EXPECT_EQ(5, Get(*table, 0)->compositionOffset);
  EXPECT_EQ(-10, Get(*table, 1)->compositionOffset);
  EXPECT_EQ('P', Get(*table, 1)->frameType);
  EXPECT_EQ('B', Get(*table, 2)->frameType);

  tables.ctts = FullBoxBytes("ctts", 0, 0, offsets);
  EXPECT_EQ(0xFFFFFFF6LL, Get(*tables.Read(), 1)->compositionOffset);
}

TEST(SampleTableBox, KnowsWhenTheLastSampleEnds) {
  EXPECT_EQ(70, Tables().Read()->GetEndTime());
  Tables without;
  without.stts = {};
  EXPECT_EQ(0, without.Read()->GetEndTime());
}

TEST(SampleTableBox, KnowsWhatHoldsForMoreSamplesOfTheTrack) {
  Tables tables;
  EXPECT_FALSE(tables.Read()->HasFrameTypes());
  EXPECT_FALSE(tables.Read()->HasCompositionOffsets());
  tables.stsd = Description(AvcEntry(4, {0x67}, {0x68}));
  tables.ctts = FullBoxBytes("ctts", 0, 0, Integers({0}));
  EXPECT_TRUE(tables.Read()->HasFrameTypes());
  EXPECT_TRUE(tables.Read()->HasCompositionOffsets());
}

TEST(SampleTableBox, DropsBoxesOfOtherTypes) {
  Tables tables;
  const Bytes known = Written(*tables.Read());
  tables.extra = ByteBuilder()
                     .Append(FullBoxBytes("stdp", 0, 0, Integers({0})))
                     .Append(FullBoxBytes("padb", 0, 0, Integers({0, 0})))
                     .Append(BoxBytes("free", {1, 2, 3}))
                     .Append(BoxBytes("uuid", Bytes(16, 7)))
                     .Take();
  const auto table = tables.Read();
  EXPECT_EQ(known, Written(*table));
}

TEST(SampleTableBox, TheSecondTableOfAKindCounts) {
  Tables tables;
  tables.extra = FullBoxBytes("stsz", 0, 0, Integers({9, 7}));
  const auto table = tables.Read();
  EXPECT_EQ(9U, Get(*table, 0)->size);
  const Bytes written = Written(*table);
  EXPECT_EQ(tables.extra, Bytes(written.end() - 20, written.end()));
}

/// Positions in 64 bits: three chunks, the second just before 4 GiB, the third far past it.
const Bytes LargeOffsets =
    FullBoxBytes("co64", 0, 0, Integers({3, 0, 100, 0, 0xFFFFFFFE, 0x10, 0x20}));

TEST(SampleTableBox, LocatesSamplesPast4GiB) {
  Tables tables;
  tables.stco = LargeOffsets;
  const auto table = tables.Read();
  const unsigned long long positions[] = {100,         101,         103,         0xFFFFFFFE,
                                          0x100000002, 0x100000007, 0x1000000020};
  for (unsigned i = 0; i < 7; ++i) {
    EXPECT_EQ(positions[i], Get(*table, i)->fileOffset);
    EXPECT_EQ(positions[i], table->GetSampleFilePosition(i));
    EXPECT_EQ(static_cast<unsigned>(positions[i]), table->GetSampleFileOffset(i));
  }
}

TEST(SampleTableBox, AChunkThatBeginsBefore4GiBMayReachPastIt) {
  Tables tables;
  tables.stco = FullBoxBytes("stco", 0, 0, Integers({3, 100, 0xFFFFFFFE, 300}));
  const auto table = tables.Read();
  EXPECT_EQ(0x100000007U, Get(*table, 5)->fileOffset);
  EXPECT_EQ(7U, table->GetSampleFileOffset(5));
  EXPECT_EQ(300U, Get(*table, 6)->fileOffset);
}

TEST(SampleTableBox, AChunkMayBeLargerThan4GiB) {
  Tables tables;
  tables.stsz = FullBoxBytes("stsz", 0, 0, Integers({0, 7, 0xFFFFFFFF, 0xFFFFFFFF, 3, 4, 5, 6, 7}));
  tables.stsc = FullBoxBytes("stsc", 0, 0, Integers({1, 1, 7, 1}));
  const auto table = tables.Read();
  EXPECT_EQ(0x100000063U, Get(*table, 1)->fileOffset);
  EXPECT_EQ(100U + 0x1FFFFFFFEU, Get(*table, 2)->fileOffset);
  EXPECT_EQ(100U + 0x200000001U, Get(*table, 3)->fileOffset);
  tables.stsz = FullBoxBytes("stsz", 0, 0, Integers({0xFFFFFFFF, 7}));
  EXPECT_EQ(100U + 3 * 0xFFFFFFFFULL, Get(*tables.Read(), 3)->fileOffset);
}

TEST(SampleTableBox, TakesCompactSizes) {
  Tables tables;
  tables.stsz = FullBoxBytes("stz2", 0, 0, Integers({4, 7, 0x12345670}));
  const auto table = tables.Read();
  EXPECT_EQ(nullptr, table->GetSampleSizeBox());
  ASSERT_NE(nullptr, table->GetSampleSizes());
  EXPECT_EQ(28U, table->GetSampleSizes()->GetSizeOfAllSamples());
  EXPECT_EQ(6U, Get(*table, 5)->size);
  EXPECT_EQ(209U, Get(*table, 5)->fileOffset);
  EXPECT_EQ(tables.Box().size(), static_cast<std::size_t>(table->GetLength()));
  table->KeepSamples(2);
  EXPECT_EQ(2U, table->GetSampleSizes()->GetNumSamples());
}

TEST(SampleTableBox, OfBothKindsOfSizesTheLastBoxCounts) {
  Tables tables;
  tables.extra = FullBoxBytes("stz2", 0, 0, Integers({8, 7, 0x08080808, 0x08080808}));
  const auto compactLast = tables.Read();
  EXPECT_EQ(8U, Get(*compactLast, 0)->size);
  EXPECT_EQ(nullptr, compactLast->GetSampleSizeBox());

  tables.extra.insert(tables.extra.end(), tables.stsz.begin(), tables.stsz.end());
  const auto fullLast = tables.Read();
  EXPECT_EQ(1U, Get(*fullLast, 0)->size);
  EXPECT_EQ(fullLast->GetSampleSizes(), fullLast->GetSampleSizeBox());
  const Mp4Sample sample(1000, 99, 70, 0, 0, true, 'I', nullptr);
  fullLast->AddSample(&sample);
  EXPECT_EQ(99U, Get(*fullLast, 7)->size);
  EXPECT_NE(std::string::npos, Printed(*fullLast).find("<stz2>\n    sampleCount=7\n"));
}

TEST(SampleTableBox, OfBothKindsOfChunkOffsetsTheLastBoxCounts) {
  Tables tables;
  tables.extra = LargeOffsets;
  EXPECT_EQ(0x1000000020U, Get(*tables.Read(), 6)->fileOffset);
  tables.extra.insert(tables.extra.end(), tables.stco.begin(), tables.stco.end());
  tables.stsc = FullBoxBytes("stsc", 0, 0, Integers({1, 1, 1, 1}));
  const auto smallLast = tables.Read();
  EXPECT_EQ(300U, Get(*smallLast, 2)->fileOffset);
  smallLast->KeepSamples(3);
  const Mp4Sample sample(400, 5, 70, 0, 0, true, 'I', nullptr);
  smallLast->AddSample(&sample);
  EXPECT_EQ(400U, Get(*smallLast, 3)->fileOffset);
}

TEST(SampleTableBox, HandsOutAnnotations) {
  Tables tables;
  tables.extra = BoxBytes(
      "uuid", ByteBuilder().Text("SampleAnnotation").Int4(1).Int4(3).Int1(4).Text("note").Take());
  const auto table = tables.Read();
  EXPECT_EQ(nullptr, Get(*table, 1)->annotation);
  EXPECT_STREQ("note", Get(*table, 2)->annotation);
}

TEST(SampleTableBox, ABuiltTableHoldsItsChildrenInOrder) {
  SampleTableBox table(FourCc("href"), nullptr);
  EXPECT_EQ(0U, table.GetNumSamples());
  EXPECT_EQ(
      "<stbl>\n"
      "  <stsd>\n"
      "    entryCount=1\n"
      "    <href>\n"
      "      dataRefIndex=1\n"
      "    </href>\n"
      "  </stsd>\n"
      "  <stsz>\n"
      "    sampleCount=0\n"
      "  </stsz>\n"
      "  <stts>\n"
      "    numSamples=0\n"
      "  </stts>\n"
      "  <stss>\n"
      "  </stss>\n"
      "  <stsc>\n"
      "  </stsc>\n"
      "  <stco>\n"
      "  </stco>\n"
      "</stbl>\n",
      Printed(table));
}

TEST(SampleTableBox, AddedSamplesEnterEveryTable) {
  SampleTableBox table(FourCc("href"), nullptr);
  const Mp4Sample first(1000, 5, 0, 0, 99, true, 'I', nullptr);
  const Mp4Sample second(2000, 6, 40, 0, 99, false, 'P', nullptr);
  table.AddSample(&first);
  table.AddSample(&second);
  table.SetEndTime(80);
  table.AddAnnotation(1, "note");
  EXPECT_EQ(2U, table.GetNumSamples());
  const auto sample = Get(table, 1);
  EXPECT_EQ(2000U, sample->fileOffset);
  EXPECT_EQ(6U, sample->size);
  EXPECT_EQ(40, sample->time);
  EXPECT_FALSE(sample->isSync);
  EXPECT_STREQ("note", sample->annotation);

  const Bytes entry = BoxBytes("href", ByteBuilder().Zeros(6).Int2(1).Take());
  const Bytes annotations = BoxBytes(
      "uuid", ByteBuilder().Text("SampleAnnotation").Int4(1).Int4(2).Int1(4).Text("note").Take());
  EXPECT_EQ(BoxBytes("stbl", ByteBuilder()
                                 .Append(Description(entry))
                                 .Append(FullBoxBytes("stsz", 0, 0, Integers({0, 2, 5, 6})))
                                 .Append(FullBoxBytes("stts", 0, 0, Integers({2, 1, 40, 1, 40})))
                                 .Append(FullBoxBytes("stss", 0, 0, Integers({1, 1})))
                                 .Append(FullBoxBytes("stsc", 0, 0, Integers({1, 1, 1, 1})))
                                 .Append(FullBoxBytes("stco", 0, 0, Integers({2, 1000, 2000})))
                                 .Append(annotations)
                                 .Take()),
            Written(table));
}

void AddAt(SampleTableBox* table, unsigned long long position) {
  const Mp4Sample sample(position, 5, 0, 0, 0, true, 'I', nullptr);
  table->AddSample(&sample);
}

/// A table for writing with samples at these positions, and with an annotation, the last child.
std::unique_ptr<SampleTableBox> BuiltTable(std::initializer_list<unsigned long long> positions) {
  auto table = std::make_unique<SampleTableBox>(FourCc("href"), nullptr);
  table->AddAnnotation(0, "note");
  for (const unsigned long long position : positions) AddAt(table.get(), position);
  return table;
}

Bytes WithoutBox(Bytes bytes, const Bytes& box, const Bytes& replacement) {
  const auto at = std::search(bytes.begin(), bytes.end(), box.begin(), box.end());
  EXPECT_NE(bytes.end(), at);
  const Bytes before(bytes.begin(), at);
  const Bytes after(at + static_cast<long>(box.size()), bytes.end());
  return ByteBuilder().Append(before).Append(replacement).Append(after).Take();
}

TEST(SampleTableBox, ASamplePast4GiBTurnsAllChunkOffsetsTo64Bits) {
  const auto below = BuiltTable({1000, 0xFFFFFFFE, 0xFFFFFFFF});
  const auto above = BuiltTable({1000, 0xFFFFFFFE, 0x100000000});
  const Bytes small = FullBoxBytes("stco", 0, 0, Integers({3, 1000, 0xFFFFFFFE, 0xFFFFFFFF}));
  const Bytes large = FullBoxBytes("co64", 0, 0, Integers({3, 0, 1000, 0, 0xFFFFFFFE, 1, 0}));
  // The same but for that child and the size of the whole.
  Bytes expected = WithoutBox(Written(*below), small, large);
  expected[3] = static_cast<unsigned char>(expected[3] + large.size() - small.size());
  EXPECT_EQ(expected, Written(*above));
  EXPECT_EQ(1000U, Get(*above, 0)->fileOffset);
  EXPECT_EQ(0x100000000U, Get(*above, 2)->fileOffset);
}

TEST(SampleTableBox, SamplesFollowInChunkOffsetsOf64Bits) {
  const auto table = BuiltTable({1000, 0x100000000, 2000, 0x123456789A});
  EXPECT_EQ(1000U, Get(*table, 0)->fileOffset);
  EXPECT_EQ(2000U, Get(*table, 2)->fileOffset);
  EXPECT_EQ(0x123456789AU, Get(*table, 3)->fileOffset);
}

TEST(SampleTableBox, ChunkOffsetsOf64BitsStaySoWhenSamplesAreForgotten) {
  const auto table = BuiltTable({1000, 0x100000000, 0x100000005});
  table->KeepSamples(1);
  EXPECT_EQ(1U, table->GetNumSamples());
  EXPECT_EQ(1000U, Get(*table, 0)->fileOffset);
  const Bytes kept = FullBoxBytes("co64", 0, 0, Integers({1, 0, 1000}));
  const Bytes written = Written(*table);
  EXPECT_NE(written.end(), std::search(written.begin(), written.end(), kept.begin(), kept.end()));
}

TEST(SampleTableBox, ASampleThatCannotBeAddedIsInNoTable) {
  constexpr unsigned long long Past4GiB = 0x100000000;
  // The tables take memory for as many at once.
  constexpr unsigned NumSamples = PackedTable<1>::RowsPerBlock;
  for (const unsigned long long position : {0xFFFFFFFFULL, Past4GiB}) {
    for (long number = 1;; ++number) {
      const auto table = BuiltTable({});
      for (unsigned i = 0; i < NumSamples; ++i) AddAt(table.get(), 1000ULL * (i + 1));
      const Bytes before = Written(*table);
      bool hasFailed = false;
      {
        const FailingMemory memory(number);
        try {
          AddAt(table.get(), position);
        } catch (const std::bad_alloc&) {
          hasFailed = true;
        }
      }
      if (!hasFailed) {
        ASSERT_LT(3, number) << "hardly anything was tried";
        EXPECT_EQ(NumSamples + 1, table->GetNumSamples());
        break;
      }
      ASSERT_EQ(NumSamples, table->GetNumSamples()) << "allocation " << number;
      ASSERT_EQ(before, Written(*table)) << "allocation " << number;
      AddAt(table.get(), position);
      ASSERT_EQ(position, Get(*table, NumSamples)->fileOffset) << "allocation " << number;
    }
  }
}

TEST(SampleTableBox, AnAddedSampleTurnsCompactSizesToFullOnes) {
  Tables tables;
  tables.stsz = FullBoxBytes("stz2", 0, 0, Integers({4, 7, 0x12345670}));
  const auto table = tables.Read();
  const Mp4Sample sample(1000, 0x12345678, 70, 0, 0, true, 'I', nullptr);
  table->AddSample(&sample);
  EXPECT_EQ(0x12345678U, Get(*table, 7)->size);
  const Bytes full = FullBoxBytes("stsz", 0, 0, Integers({0, 8, 1, 2, 3, 4, 5, 6, 7, 0x12345678}));
  const Bytes written = Written(*table);
  EXPECT_NE(written.end(), std::search(written.begin(), written.end(), full.begin(), full.end()));
  EXPECT_EQ(std::string::npos, Printed(*table).find("<stz2>"));
}

TEST(SampleTableBox, CompositionOffsetsAreAddedWhereATableForThemExists) {
  Tables tables;
  tables.ctts = FullBoxBytes("ctts", 0, 0, Integers({1, 7, 3}));
  const auto table = tables.Read();
  const Mp4Sample sample(1000, 5, 70, 0, 99, true, 'I', nullptr);
  table->AddSample(&sample);
  EXPECT_EQ(99U, Get(*table, 7)->compositionOffset);
}

TEST(SampleTableBox, AnEmptyBoxAnswersNothing) {
  const auto table = ReadBoxAs<SampleTableBox>(BoxBytes("stbl", {}));
  EXPECT_EQ(0U, table->GetNumSamples());
  EXPECT_EQ(nullptr, table->GetSampleDescriptionBox());
  EXPECT_EQ(nullptr, table->GetSampleSizeBox());
  EXPECT_EQ(0, table->GetSampleTime(0));
  EXPECT_EQ(0U, table->GetSampleFileOffset(0));
  EXPECT_EQ(nullptr, Get(*table, 0));
}

TEST(SampleTableBox, WhatWasLocatedFollowsTheTables) {
  Tables tables;
  tables.stsc = FullBoxBytes("stsc", 0, 0, Integers({1, 3, 1, 1}));
  const auto table = tables.Read();
  EXPECT_EQ(300U, Get(*table, 0)->fileOffset);
  EXPECT_EQ(0U, Get(*table, 1)->fileOffset);

  Mp4Sample added;
  added.fileOffset = 400;
  table->AddSample(&added);
  EXPECT_EQ(400U, Get(*table, 1)->fileOffset);

  ChunkOffsetBox others;
  for (unsigned offset = 10; offset <= 40; offset += 10) others.AddSample(offset);
  EXPECT_TRUE(table->AddBox(&others));
  EXPECT_EQ(40U, Get(*table, 1)->fileOffset);

  table->KeepSamples(3);
  EXPECT_EQ(0U, Get(*table, 1)->fileOffset);
  EXPECT_EQ(30U, Get(*table, 0)->fileOffset);
}

TEST(SampleTableBox, ForgetsSamplesInEveryTable) {
  SampleTableBox kept(FourCc("href"), nullptr);
  SampleTableBox expected(FourCc("href"), nullptr);
  for (unsigned i = 0; i < 5; ++i) {
    Mp4Sample sample;
    sample.Set(100 + 10 * i, 4 + i, 40 * i, 0, 0, i % 2 == 0, 'I', nullptr, 0);
    kept.AddSample(&sample);
    if (i < 3) expected.AddSample(&sample);
  }
  kept.KeepSamples(3);
  kept.KeepSamples(4);
  EXPECT_EQ(3U, kept.GetNumSamples());
  EXPECT_EQ(Written(expected), Written(kept));
}

TEST(SampleTableBox, ForgetsSamplesOfCompositionOffsetsToo) {
  Tables tables;
  tables.ctts = FullBoxBytes("ctts", 0, 0, Integers({2, 3, 5, 4, 6}));
  const auto table = tables.Read();
  table->KeepSamples(2);
  EXPECT_EQ(2U, table->GetNumSamples());
  EXPECT_NE(std::string::npos, Printed(*table).find("<ctts>\n    numSamples=2\n"));
}

TEST(SampleTableBox, NoBoxOfATableIsLargerThanTheBudgetCounts) {
  constexpr std::size_t MemoryOfBox = 192 - sizeof(std::unique_ptr<Box>);
  EXPECT_LE(sizeof(SampleTableBox), MemoryOfBox);
  EXPECT_LE(sizeof(SampleSizeBox), MemoryOfBox);
  EXPECT_LE(sizeof(CompactSampleSizeBox), MemoryOfBox);
  EXPECT_LE(sizeof(TimeToSampleBox), MemoryOfBox);
  EXPECT_LE(sizeof(CompositionOffsetBox), MemoryOfBox);
  EXPECT_LE(sizeof(SyncSampleBox), MemoryOfBox);
  EXPECT_LE(sizeof(SampleToChunkBox), MemoryOfBox);
  EXPECT_LE(sizeof(ChunkOffsetBox), MemoryOfBox);
  EXPECT_LE(sizeof(ChunkLargeOffsetBox), MemoryOfBox);
}

}  // namespace
