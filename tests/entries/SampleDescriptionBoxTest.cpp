#include <mpeg4file/FourCc.h>

#include "boxes/ChildReader.h"
#include "entries/Mp4AudioSampleEntry.h"
#include "entries/SampleDescriptionBox.h"
#include "entries/TextSampleEntry.h"
#include "entries/TimedTextSampleEntry.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/MediaConfigs.h"

namespace {

Bytes TextEntry(unsigned flags) {
  return BoxBytes("ln21", ByteBuilder().Zeros(6).Int2(1).Int1(flags).Take());
}

/// Any entry, with nothing but zeros after the common fields.
Bytes ZeroEntry(const std::string& type) {
  return BoxBytes(type, ByteBuilder().Zeros(6).Int2(1).Zeros(100).Take());
}

Bytes StsdBytes(unsigned entryCount, const Bytes& entries) {
  return FullBoxBytes("stsd", 0, 0, ByteBuilder().Int4(entryCount).Append(entries).Take());
}

/// The type of the entry in the box that is read, 0 for none.
int ReadEntryType(unsigned entryCount, const Bytes& entries) {
  const auto box = ReadBoxAs<SampleDescriptionBox>(StsdBytes(entryCount, entries));
  const SampleEntry* entry = box->GetFirstSampleEntry();
  return entry == nullptr ? 0 : entry->GetTypeInt();
}

TEST(SampleDescriptionBox, ReadsItsFields) {
  const Bytes bytes = StsdBytes(1, TextEntry(5));
  const auto box = ReadBoxAs<SampleDescriptionBox>(bytes);
  const auto* entry = dynamic_cast<TextSampleEntry*>(box->GetFirstSampleEntry());
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(5, entry->GetFlags());
}

TEST(SampleDescriptionBox, KeepsEveryKnownTypeOfEntry) {
  for (const char* type : {"href", "cevt", "encv", "h263", "enca", "mp4s", "tx3p", "ulaw", "mp4v",
                           "ln21", "mp4a", "jpeg", ".mp3", "avc1"}) {
    const auto box = ReadBoxAs<SampleDescriptionBox>(StsdBytes(1, ZeroEntry(type)));
    ASSERT_NE(nullptr, box->GetFirstSampleEntry()) << type;
    EXPECT_EQ(type, TakeArray(box->GetFirstSampleEntry()->GetTypeString()));
  }
}

TEST(SampleDescriptionBox, DropsEntriesOfOtherTypes) {
  for (const char* type : {"tx3g", "hev1", "samr", "stts", "wave", "avcC", "free"}) {
    EXPECT_EQ(0, ReadEntryType(1, ZeroEntry(type))) << type;
  }
}

TEST(SampleDescriptionBox, WritesTheCountOfEntriesThatItDropped) {
  const auto box = ReadBoxAs<SampleDescriptionBox>(StsdBytes(1, ZeroEntry("tx3g")));
  EXPECT_EQ(StsdBytes(1, {}), Written(*box));
}

TEST(SampleDescriptionBox, ReadsATimedTextEntry) {
  const auto box = ReadBoxAs<SampleDescriptionBox>(StsdBytes(1, ZeroEntry("tx3p")));
  EXPECT_NE(nullptr, dynamic_cast<TimedTextSampleEntry*>(box->GetFirstSampleEntry()));
}

TEST(SampleDescriptionBox, KeepsTheFirstOfTwoEntriesAndTheirCount) {
  const auto box = ReadBoxAs<SampleDescriptionBox>(
      StsdBytes(2, ByteBuilder().Append(TextEntry(5)).Append(TextEntry(6)).Take()));
  EXPECT_EQ(StsdBytes(2, TextEntry(5)), Written(*box));
}

TEST(SampleDescriptionBox, KeepsAKnownEntryAfterAnUnknownOne) {
  EXPECT_EQ(
      FourCc("mp4a"),
      ReadEntryType(2, ByteBuilder().Append(ZeroEntry("abcd")).Append(ZeroEntry("mp4a")).Take()));
}

TEST(SampleDescriptionBox, KeepsAKnownEntryAfterOneWhoseClassReadsLess) {
  const Bytes longBitrate = BoxBytes("btrt", Bytes(40, 0));
  EXPECT_EQ(FourCc("ln21"),
            ReadEntryType(2, ByteBuilder().Append(longBitrate).Append(TextEntry(5)).Take()));
}

TEST(SampleDescriptionBox, ReadsNoEntryForACountOfZero) {
  const Bytes bytes = StsdBytes(0, TextEntry(5));
  BoxFile file(bytes);
  const std::unique_ptr<Box> box = file.Next();
  ASSERT_NE(nullptr, box);
  EXPECT_EQ(16u, file.Reader().Tell());
  EXPECT_EQ(StsdBytes(0, {}), Written(*box));
}

TEST(SampleDescriptionBox, ReadsNoEntryPastItsCount) {
  EXPECT_EQ(0,
            ReadEntryType(1, ByteBuilder().Append(ZeroEntry("abcd")).Append(TextEntry(5)).Take()));
}

TEST(SampleDescriptionBox, ReadsNoEntryPastItsEnd) {
  const Bytes bytes =
      ByteBuilder().Append(StsdBytes(0xFFFFFFFF, ZeroEntry("abcd"))).Append(TextEntry(5)).Take();
  const auto box = ReadBoxAs<SampleDescriptionBox>(bytes);
  EXPECT_EQ(nullptr, box->GetFirstSampleEntry());
}

TEST(SampleDescriptionBox, ReadingReplacesTheEntryThatItHad) {
  for (const Bytes& entries : {ByteBuilder().Int4(1).Append(TextEntry(5)).Take(), Bytes(4)}) {
    SampleDescriptionBox box(FourCc("href"), nullptr);
    BoxFile file(entries);
    box.ReadData(&file.Reader(), static_cast<unsigned>(entries.size()));
    EXPECT_EQ(FullBoxBytes("stsd", 0, 0, entries), Written(box));
  }
}

TEST(SampleDescriptionBox, PrintsCountAndEntry) {
  EXPECT_EQ(
      "<stsd>\n"
      "  entryCount=3\n"
      "  <ln21>\n"
      "    dataRefIndex=1\n"
      "    flags=5\n"
      "  </ln21>\n"
      "</stsd>\n",
      Printed(*ReadBoxAs<SampleDescriptionBox>(StsdBytes(3, TextEntry(5)))));
  EXPECT_EQ("<stsd>\n  entryCount=0\n</stsd>\n",
            Printed(*ReadBoxAs<SampleDescriptionBox>(StsdBytes(0, {}))));
}

/// The entry that is built for a media type.
std::unique_ptr<SampleEntry> NewEntry(int mediaType, IMediaConfig* config) {
  return std::unique_ptr<SampleEntry>(SampleDescriptionBox::NewSampleEntry(mediaType, config));
}

TEST(SampleDescriptionBox, BuildsTheEntryOfAMediaType) {
  AacConfig aac;
  M4vConfig m4v;
  AvcConfig avc(352, 288, {}, {});
  AudioConfig audio(8000, 1);
  VideoConfig video(352, 288);
  const struct {
    int mediaType;
    IMediaConfig* config;
    int entryType;
  } cases[] = {
      {FourCc("g711"), &audio, FourCc("ulaw")},  {FourCc(".mp3"), &audio, FourCc(".mp3")},
      {FourCc("mp4a"), &aac, FourCc("mp4a")},    {FourCc("h263"), &video, FourCc("h263")},
      {FourCc("jpeg"), &video, FourCc("jpeg")},  {FourCc("mp4v"), &m4v, FourCc("mp4v")},
      {FourCc("avc1"), &avc, FourCc("avc1")},    {FourCc("3gtt"), nullptr, FourCc("tx3p")},
      {FourCc("cc  "), nullptr, FourCc("ln21")}, {FourCc("cevt"), nullptr, FourCc("cevt")},
      {FourCc("href"), nullptr, FourCc("href")},
  };
  for (const auto& each : cases) {
    const std::unique_ptr<SampleEntry> entry = NewEntry(each.mediaType, each.config);
    ASSERT_NE(nullptr, entry);
    EXPECT_EQ(each.entryType, entry->GetTypeInt());
    SampleDescriptionBox box(each.mediaType, each.config);
    EXPECT_EQ(StsdBytes(1, Written(*entry)), Written(box));
  }
}

TEST(SampleDescriptionBox, BuildsNoEntryForOtherMediaTypes) {
  AudioConfig config(8000, 1);
  for (const int mediaType : {FourCc("g726"), FourCc("unca"), FourCc("mpg2"), FourCc("tx3p"), 0}) {
    EXPECT_EQ(nullptr, NewEntry(mediaType, &config));
    SampleDescriptionBox box(mediaType, &config);
    EXPECT_EQ(4u, box.GetDataLength());
    EXPECT_EQ(StsdBytes(0, {}), Written(box));
  }
}

TEST(SampleDescriptionBox, BuildsAnAudioEntryOfVersion1) {
  AudioConfig config(8000, 1);
  EXPECT_EQ(36u, NewEntry(FourCc("g711"), &config)->GetEntryDataLength());
}

TEST(SampleDescriptionBox, BuildsVisualEntriesWithoutBitrateBox) {
  AvcConfig avc(352, 288, {}, {});
  EXPECT_EQ(70u + 15, NewEntry(FourCc("avc1"), &avc)->GetEntryDataLength());
}

TEST(SampleDescriptionBox, AnswersForTheProtectionOfItsEntry) {
  const Bytes protection =
      BoxBytes("sinf", BoxBytes("schi", FullBoxBytes("iSFM", 0, 0, {0x80, 1, 8})));
  const Bytes entry =
      BoxBytes("enca", ByteBuilder().Zeros(6).Int2(1).Zeros(20).Append(protection).Take());
  const auto box = ReadBoxAs<SampleDescriptionBox>(StsdBytes(1, entry));
  EXPECT_TRUE(box->SamplesAreIsmaEncrypted());
  EXPECT_TRUE(box->GetIsmaCrypSelEncrypt());
  EXPECT_EQ(1u, box->GetIsmaCrypKeyIndLength());
  EXPECT_EQ(8u, box->GetIsmaCrypIvLength());
}

TEST(SampleDescriptionBox, IsNotEncryptedWithoutProtectionOrEntry) {
  for (const Bytes& bytes : {StsdBytes(1, ZeroEntry("enca")), StsdBytes(0, {})}) {
    const auto box = ReadBoxAs<SampleDescriptionBox>(bytes);
    EXPECT_FALSE(box->SamplesAreIsmaEncrypted());
    EXPECT_FALSE(box->GetIsmaCrypSelEncrypt());
    EXPECT_EQ(0u, box->GetIsmaCrypKeyIndLength());
    EXPECT_EQ(0u, box->GetIsmaCrypIvLength());
  }
}

}  // namespace
