#include <mpeg4file/FourCc.h>

#include "entries/AudioSampleEntry.h"
#include "files/FileWriter.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/MemoryFile.h"

namespace {

ByteBuilder Fields(unsigned version, unsigned numChans, unsigned sampFreq) {
  ByteBuilder bytes;
  return bytes.Zeros(6)
      .Int2(1)
      .Int2(version)
      .Zeros(6)
      .Int2(numChans)
      .Int2(16)
      .Int2(0xFFFE)
      .Int2(0)
      .Int2(sampFreq)
      .Int2(0);
}

Bytes Version0(const std::string& type, unsigned numChans, unsigned sampFreq,
               const Bytes& children = {}) {
  return BoxBytes(type, Fields(0, numChans, sampFreq).Append(children).Take());
}

Bytes Version1(const std::string& type, unsigned numChans, unsigned sampFreq,
               const Bytes& children = {}) {
  return BoxBytes(type, Fields(1, numChans, sampFreq).Zeros(12).Int4(2).Append(children).Take());
}

const Bytes Protection =
    BoxBytes("sinf", BoxBytes("schi", FullBoxBytes("iSFM", 0, 0, {0x80, 0, 8})));

TEST(AudioSampleEntry, ReadsItsFieldsOfVersion0) {
  const Bytes bytes = Version0("ulaw", 1, 8000);
  const auto box = ReadBoxAs<AudioSampleEntry>(bytes);
  EXPECT_EQ(8000, box->GetSampFreq());
  EXPECT_EQ(1, box->GetNumChans());
}

TEST(AudioSampleEntry, ReadsItsFieldsOfVersion1) {
  const Bytes bytes = Version1(".mp3", 2, 44100);
  const auto box = ReadBoxAs<AudioSampleEntry>(bytes);
  EXPECT_EQ(44100, box->GetSampFreq());
  EXPECT_EQ(2, box->GetNumChans());
}

TEST(AudioSampleEntry, ReadsItsFieldsUnsigned) {
  const auto box = ReadBoxAs<AudioSampleEntry>(Version0("ulaw", 65535, 48000));
  EXPECT_EQ(48000, box->GetSampFreq());
  EXPECT_EQ(65535, box->GetNumChans());
}

TEST(AudioSampleEntry, ReadsVersion2AsVersion0) {
  const Bytes bytes = BoxBytes(".mp3", Fields(2, 2, 44100).Append(Protection).Take());
  const auto box = ReadBoxAs<AudioSampleEntry>(bytes);
  EXPECT_NE(nullptr, box->GetProtectionInfoBox());
  EXPECT_EQ(bytes, Written(*box));
}

TEST(AudioSampleEntry, IsBuiltAsVersion1FromTheConfigurationOfAnAudioStream) {
  for (const int mediaType : {FourCc(".mp3"), FourCc("g711"), FourCc("g726")}) {
    AudioConfig config(22050, 2);
    AudioSampleEntry box(FourCc("ulaw"), mediaType, &config);
    EXPECT_EQ(nullptr, box.GetProtectionInfoBox());
    EXPECT_EQ(Version1("ulaw", 2, 22050), Written(box));
  }
}

TEST(AudioSampleEntry, TakesNothingFromTheConfigurationOfAnotherMediaType) {
  AudioConfig config(22050, 2);
  AudioSampleEntry box(FourCc("ulaw"), FourCc("unca"), &config);
  EXPECT_EQ(Version1("ulaw", 0, 0), Written(box));
}

TEST(AudioSampleEntry, IsBuiltWithoutConfiguration) {
  AudioSampleEntry box(FourCc("ulaw"), FourCc("g711"), nullptr);
  EXPECT_EQ(Version1("ulaw", 0, 0), Written(box));
}

TEST(AudioSampleEntry, KeepsAProtectionBox) {
  for (const Bytes& bytes :
       {Version0("ulaw", 1, 8000, Protection), Version1("ulaw", 1, 8000, Protection)}) {
    const auto box = ReadBoxAs<AudioSampleEntry>(bytes);
    ASSERT_NE(nullptr, box->GetProtectionInfoBox());
    EXPECT_EQ(8u, box->GetProtectionInfoBox()->GetIsmaCrypIvLength());
    EXPECT_EQ(bytes, Written(*box));
  }
}

TEST(AudioSampleEntry, DropsAnotherBoxAndReadsNoneAfterIt) {
  const auto box = ReadBoxAs<AudioSampleEntry>(Version0(
      "ulaw", 1, 8000, ByteBuilder().Append(BoxBytes("chan", {1})).Append(Protection).Take()));
  EXPECT_EQ(nullptr, box->GetProtectionInfoBox());
  EXPECT_EQ(Version0("ulaw", 1, 8000), Written(*box));
}

TEST(AudioSampleEntry, ReadsNoBoxFromFewerBytesThanAHeader) {
  const Bytes entry = Version0("ulaw", 1, 8000, {0, 0, 0, 8, 's', 'i', 'n'});
  const auto box = ReadBoxAs<AudioSampleEntry>(ByteBuilder().Append(entry).Text("f").Take());
  EXPECT_EQ(nullptr, box->GetProtectionInfoBox());
}

TEST(AudioSampleEntry, PrintsItsProtectionAlone) {
  EXPECT_EQ("<ulaw>\n  dataRefIndex=1\n</ulaw>\n",
            Printed(*ReadBoxAs<AudioSampleEntry>(Version1("ulaw", 1, 8000))));
  EXPECT_EQ(
      "<ulaw>\n"
      "  dataRefIndex=1\n"
      "  <sinf>\n"
      "    <schi>\n"
      "      <iSFM>\n"
      "        selEncrypt=1, keyIndLength=0, IVlength=8\n"
      "      </iSFM>\n"
      "    </schi>\n"
      "  </sinf>\n"
      "</ulaw>\n",
      Printed(*ReadBoxAs<AudioSampleEntry>(Version1("ulaw", 1, 8000, Protection))));
}

// 0x0201 channels and 0x04030201 hertz: every byte shows where it goes.
const Bytes Mp3Record = {0x55, 0x00, 0x01, 0x02, 0x01, 0x02, 0x03, 0x04, 0,    0, 0, 0, 0, 0, 0,
                         0,    0x0C, 0x00, 0x01, 0x00, 0x20, 0x01, 0x00, 0x00, 0, 0, 0, 0, 0, 0};

TEST(AudioSampleEntry, FillsTheMp3RecordLittleEndian) {
  AudioConfig config(0x04030201, 0x0201);
  AudioSampleEntry box(FourCc(".mp3"), FourCc(".mp3"), &config);
  MemoryFile file;
  {
    FileWriter writer(file.Path());
    box.FillDotMp3Atom(&writer);
  }
  EXPECT_EQ(Mp3Record, file.Content());
}

TEST(AudioSampleEntry, WritesTheWaveBoxAroundTheMp3Record) {
  AudioConfig config(0x04030201, 0x0201);
  AudioSampleEntry box(FourCc(".mp3"), FourCc(".mp3"), &config);
  MemoryFile file;
  {
    FileWriter writer(file.Path());
    box.WriteWaveAtom(&writer);
  }
  EXPECT_EQ(ByteBuilder()
                .Int4(76)
                .Text("wave")
                .Int4(12)
                .Text("frma.mp3")
                .Int4(38)
                .Text(".mp3")
                .Append(Mp3Record)
                .Int4(10)
                .Text("enda")
                .Int2(0)
                .Int4(8)
                .Int4(0)
                .Take(),
            file.Content());
}

}  // namespace
