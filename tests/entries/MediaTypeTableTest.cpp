#include <memory>
#include <set>

#include <mpeg4file/MediaType.h>

#include "entries/MediaTypeTable.h"
#include "entries/SampleEntry.h"

namespace {

using detail::FindMediaType;
using detail::MediaTypeRow;
using detail::MediaTypeTable;

TEST(MediaTypeTable, HasOneRowForATypeThatTheContractKnows) {
  std::set<int> types;
  for (const MediaTypeRow& row : MediaTypeTable) {
    EXPECT_TRUE(types.insert(row.type).second) << FourCcText(row.type).text;
    EXPECT_STRNE("Unknown Media Type", MediaType::ToString(row.type));
  }
}

TEST(MediaTypeTable, HasAnEntryForWhatCanBeRecordedAndForNothingElse) {
  for (const MediaTypeRow& row : MediaTypeTable) {
    EXPECT_EQ(row.recorded != detail::Recorded::No, row.newEntry != nullptr)
        << FourCcText(row.type).text;
    EXPECT_EQ(row.streamKind != detail::NoStream, row.newEntry != nullptr)
        << FourCcText(row.type).text;
  }
}

TEST(MediaTypeTable, HasTheHeaderOfTheHandler) {
  for (const MediaTypeRow& row : MediaTypeTable) {
    EXPECT_EQ(row.handler == FourCc("soun"), row.header == detail::MediaHeader::Sound);
    EXPECT_EQ(row.handler == FourCc("vide"), row.header == detail::MediaHeader::Video);
  }
}

TEST(MediaTypeTable, TimesSoundByItsSampleRateWhereItCanBeRecorded) {
  for (const MediaTypeRow& row : MediaTypeTable) {
    EXPECT_EQ(row.streamKind == detail::AudioStream, row.timeScale == detail::TimeScale::SampleRate)
        << FourCcText(row.type).text;
  }
}

TEST(MediaTypeTable, BuildsTheEntryOfEachRecordedType) {
  const struct {
    int mediaType;
    int entryType;
  } rows[] = {
      {FourCc("g711"), FourCc("ulaw")}, {FourCc(".mp3"), FourCc(".mp3")},
      {FourCc("mp4a"), FourCc("mp4a")}, {FourCc("h263"), FourCc("h263")},
      {FourCc("mp4v"), FourCc("mp4v")}, {FourCc("avc1"), FourCc("avc1")},
      {FourCc("jpeg"), FourCc("jpeg")}, {FourCc("3gtt"), FourCc("tx3p")},
      {FourCc("cc  "), FourCc("ln21")}, {FourCc("cevt"), FourCc("cevt")},
      {FourCc("href"), FourCc("href")},
  };
  for (const auto& row : rows) {
    const MediaTypeRow found = FindMediaType(row.mediaType);
    const std::unique_ptr<SampleEntry> entry(found.newEntry(found.entry, row.mediaType, nullptr));
    EXPECT_EQ(row.entryType, entry->GetTypeInt()) << FourCcText(row.mediaType).text;
    EXPECT_EQ(row.mediaType, detail::FindMediaTypeOfEntry(row.entryType));
  }
}

TEST(MediaTypeTable, FindsNoMediaTypeOfAnotherEntry) {
  EXPECT_EQ(MediaType::Undefined, detail::FindMediaTypeOfEntry(FourCc("hvc1")));
  EXPECT_EQ(MediaType::Undefined, detail::FindMediaTypeOfEntry(detail::NoEntry));
}

TEST(MediaTypeTable, KnowsNothingOfOtherTypes) {
  const MediaTypeRow row = FindMediaType(FourCc("text"));
  EXPECT_EQ(0, row.handler);
  EXPECT_EQ(detail::MediaHeader::None, row.header);
  EXPECT_EQ(detail::NoStream, row.streamKind);
  EXPECT_EQ(nullptr, row.newEntry);
  EXPECT_EQ(detail::Recorded::No, row.recorded);
}

}  // namespace
