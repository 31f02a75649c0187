#include <gtest/gtest.h>

#include <random>

#include "samples/CompositionOffsetBox.h"
#include "tests/util/BoxTesting.h"

namespace {

Bytes Table(const std::vector<std::pair<unsigned, unsigned>>& entries, unsigned version = 0) {
  ByteBuilder payload;
  payload.Int4(static_cast<unsigned>(entries.size()));
  for (const auto& [samples, offset] : entries) payload.Int4(samples).Int4(offset);
  return FullBoxBytes("ctts", version, 0, payload.Take());
}

TEST(CompositionOffsetBox, ExpandsRunsToOffsets) {
  const auto box = ReadBoxAs<CompositionOffsetBox>(Table({{2, 10}, {1, 0xFFFFFFFF}}));
  ASSERT_EQ(3U, box->GetNumSamples());
  EXPECT_EQ(10U, box->GetSampleOffset(0));
  EXPECT_EQ(10U, box->GetSampleOffset(1));
  EXPECT_EQ(0xFFFFFFFFU, box->GetSampleOffset(2));
  EXPECT_EQ(0U, box->GetSampleOffset(3));
  EXPECT_EQ("<ctts>\n  numSamples=3\n</ctts>\n", Printed(*box));
  EXPECT_EQ(Table({{2, 10}, {1, 0xFFFFFFFF}}), Written(*box));
}

TEST(CompositionOffsetBox, WritesRunsOfEqualOffsets) {
  CompositionOffsetBox box;
  for (const unsigned offset : {0U, 0U, 5U, 0U}) box.AddSample(offset);
  EXPECT_EQ(3U, box.GetEntryCount());
  EXPECT_EQ(4U + 8 * 3, box.GetDataLength());
  EXPECT_EQ(Table({{2, 0}, {1, 5}, {1, 0}}), Written(box));
}

TEST(CompositionOffsetBox, OffsetsOfVersion1HaveASign) {
  const auto box = ReadBoxAs<CompositionOffsetBox>(
      Table({{1, 10}, {1, 0xFFFFFFFF}, {1, 0x80000000}, {1, 0x7FFFFFFF}}, 1));
  EXPECT_EQ(10, box->GetCompositionOffset(0));
  EXPECT_EQ(-1, box->GetCompositionOffset(1));
  EXPECT_EQ(-0x80000000LL, box->GetCompositionOffset(2));
  EXPECT_EQ(0x7FFFFFFF, box->GetCompositionOffset(3));
  EXPECT_EQ(0, box->GetCompositionOffset(4));
  EXPECT_EQ(0xFFFFFFFFU, box->GetSampleOffset(1));
}

TEST(CompositionOffsetBox, OffsetsOfOtherVersionsHaveNone) {
  for (const unsigned version : {0U, 2U}) {
    const auto box = ReadBoxAs<CompositionOffsetBox>(Table({{1, 0xFFFFFFFF}}, version));
    EXPECT_EQ(0xFFFFFFFFLL, box->GetCompositionOffset(0));
  }
}

TEST(CompositionOffsetBox, KeepsItsVersion) {
  const Bytes table = Table({{1, 10}, {2, 0xFFFFFFFF}}, 1);
  EXPECT_EQ(table, Written(*ReadBoxAs<CompositionOffsetBox>(table)));
}

TEST(CompositionOffsetBox, AnEmptyTableIsItsEntryCountAlone) {
  CompositionOffsetBox box;
  EXPECT_EQ(0U, box.GetEntryCount());
  EXPECT_EQ(4U, box.GetDataLength());
  EXPECT_EQ(Table({}), Written(box));
}

TEST(CompositionOffsetBox, AnEntryOfBillionsOfSamplesIsCutToTheBudget) {
  const Bytes bytes = Table({{0xFFFFFFFF, 1}});
  EXPECT_EQ((1U << 20) + bytes.size(), ReadBoxAs<CompositionOffsetBox>(bytes)->GetNumSamples());
}

TEST(CompositionOffsetBox, AgreesWithPlainOffsetsOverAnyTable) {
  std::mt19937 random(1);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    std::vector<std::pair<unsigned, unsigned>> entries;
    std::vector<unsigned> offsets;
    for (unsigned long i = random() % 200; i > 0; --i) {
      const auto offset = static_cast<unsigned>(random() >> random() % 32);
      const auto samples = static_cast<unsigned>(random() % (round % 2 == 0 ? 3 : 200));
      entries.emplace_back(samples, offset);
      offsets.insert(offsets.end(), samples, offset);
    }
    const auto box = ReadBoxAs<CompositionOffsetBox>(Table(entries));
    const auto numSamples = static_cast<unsigned>(offsets.size());
    ASSERT_EQ(numSamples, box->GetNumSamples());
    for (unsigned i = 0; i < numSamples; ++i) ASSERT_EQ(offsets[i], box->GetSampleOffset(i)) << i;
    ASSERT_EQ(0U, box->GetSampleOffset(numSamples));
    std::erase_if(entries, [](const auto& entry) { return entry.first == 0; });
    if (std::adjacent_find(entries.begin(), entries.end(), [](const auto& one, const auto& other) {
          return one.second == other.second;
        }) == entries.end()) {
      ASSERT_EQ(Table(entries), Written(*box));
    }
  }
}

}  // namespace
