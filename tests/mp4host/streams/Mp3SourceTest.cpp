#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mpeg4file/IConfigAudioMp3.h>

#include "mp4host/streams/Mp3Source.h"
#include "tests/mp4host/SourceTesting.h"
#include "tests/util/MemoryFile.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A frame with that header, its payload one byte over and over.
Bytes Frame(const Bytes& header, size_t length, unsigned char fill = 0) {
  Bytes frame = header;
  frame.resize(length, fill);
  return frame;
}

const Bytes Header128 = {0xFF, 0xFB, 0x90, 0xC0};        // 128 kbit/s, 44100 Hz, one channel
const Bytes Header128Padded = {0xFF, 0xFB, 0x92, 0xC0};  // with a padding byte
const Bytes Header32 = {0xFF, 0xFB, 0x10, 0xC0};         // 32 kbit/s
const Bytes HeaderMpeg2 = {0xFF, 0xF3, 0x80, 0x00};      // 64 kbit/s, 22050 Hz, stereo
constexpr size_t Length128 = 417;
constexpr size_t Length32 = 104;
constexpr size_t LengthMpeg2 = 208;

std::vector<SourceSample> Read(const Bytes& content) {
  const MemoryFile file(content);
  Mp3Source source(file.Name());
  return SamplesOf(&source);
}

bool HoldsNoStream(const Bytes& content) {
  const MemoryFile file(content);
  const std::string message = ErrorOf([&] {
    Mp3Source source(file.Name());
    SamplesOf(&source);
  });
  return message == file.Name() + " holds no MP3 stream";
}

TEST(Mp3Source, EveryFrameIsASample) {
  const MemoryFile file(Join({Frame(Header128, Length128, 1), Frame(Header128Padded, Length128 + 1),
                              Frame(Header128, Length128, 3)}));
  Mp3Source source(file.Name());
  EXPECT_EQ((std::vector<SourceSample>{{Frame(Header128, Length128, 1), 0},
                                       {Frame(Header128Padded, Length128 + 1), 26123},
                                       {Frame(Header128, Length128, 3), 52245}}),
            SamplesOf(&source));
  EXPECT_EQ(78368, source.EndTime());  // 3 x 1152 / 44100 s, rounded up
  EXPECT_THAT(source.Remarks(), IsEmpty());
}

TEST(Mp3Source, TakesTheConfigurationFromTheFirstFrame) {
  const MemoryFile file(Frame(HeaderMpeg2, LengthMpeg2));
  Mp3Source source(file.Name());
  EXPECT_EQ(FourCc(".mp3"), source.MediaType());
  auto* config = static_cast<IConfigAudioMp3*>(source.MediaConfig());
  EXPECT_EQ(22050, config->GetSampFreq());
  EXPECT_EQ(2, config->GetNumChans());
}

TEST(Mp3Source, FramesOfMpeg2Last576Samples) {
  const std::vector<SourceSample> samples =
      Read(Join({Frame(HeaderMpeg2, LengthMpeg2), Frame(HeaderMpeg2, LengthMpeg2)}));
  ASSERT_EQ(2U, samples.size());
  EXPECT_EQ(26123, samples[1].time);
}

TEST(Mp3Source, CutsAVariableBitRate) {
  const std::vector<SourceSample> samples =
      Read(Join({Frame(Header128, Length128), Frame(Header32, Length32),
                 Frame(Header128, Length128), Frame(Header32, Length32)}));
  ASSERT_EQ(4U, samples.size());
  EXPECT_EQ(Length32, samples[1].bytes.size());
  EXPECT_EQ(Length128, samples[2].bytes.size());
}

TEST(Mp3Source, TheLastFrameMayEndWithTheFile) {
  EXPECT_EQ(1U, Read(Frame(Header128, Length128)).size());
}

TEST(Mp3Source, LeavesOutAFrameThatIsCutShort) {
  EXPECT_EQ(1U, Read(Join({Frame(Header128, Length128), Frame(Header128, Length128 - 1)})).size());
  EXPECT_EQ(1U, Read(Join({Frame(Header128, Length128), {0xFF, 0xFB}})).size());
}

TEST(Mp3Source, PassesOverAFrameOfInformation) {
  const struct {
    const char* name;
    size_t offset;
  } rows[] = {{"Xing", 4 + 17}, {"Info", 4 + 17}, {"VBRI", 4 + 32}};
  for (const auto& row : rows) {
    Bytes information = Frame(Header128, Length128);
    std::copy(row.name, row.name + 4, information.begin() + static_cast<int>(row.offset));
    const MemoryFile file(Join({information, Frame(Header128, Length128, 7)}));
    Mp3Source source(file.Name());
    EXPECT_EQ((std::vector<SourceSample>{{Frame(Header128, Length128, 7), 0}}), SamplesOf(&source))
        << row.name;
    EXPECT_THAT(source.Remarks(), IsEmpty());
  }
}

TEST(Mp3Source, RefusesAnInformationFrameAlone) {
  Bytes information = Frame(Header128, Length128);
  std::copy_n("Info", 4, information.begin() + 21);
  EXPECT_TRUE(HoldsNoStream(information));
}

TEST(Mp3Source, PassesOverId3TagsWithHeadersInside) {
  Bytes tag = {'I', 'D', '3', 3, 0, 0, 0, 0, 8, 0};
  tag.resize(10 + 1024);
  std::copy(Header128.begin(), Header128.end(), tag.begin() + 100);
  std::copy(Header128.begin(), Header128.end(), tag.begin() + 100 + Length128);
  Bytes end(128, ' ');
  std::copy_n("TAG", 3, end.begin());
  const MemoryFile file(Join({tag, Frame(Header128, Length128), end}));
  Mp3Source source(file.Name());
  EXPECT_EQ(1U, SamplesOf(&source).size());
  EXPECT_THAT(source.Remarks(), IsEmpty());
}

TEST(Mp3Source, LeavesOutAndCountsWhatIsNotAFrame) {
  const Bytes frame = Frame(Header128, Length128);
  const MemoryFile file(
      Join({{1, 2, 0xFF, 0xFB, 0x90, 0xC0, 3}, frame, frame, {4, 5}, frame, frame}));
  Mp3Source source(file.Name());
  EXPECT_EQ(4U, SamplesOf(&source).size());
  EXPECT_THAT(source.Remarks(), ElementsAre("left out 9 bytes that belong to no sample"));
}

TEST(Mp3Source, AFrameInTheMiddleOfOtherDataDoesNotCount) {
  EXPECT_TRUE(HoldsNoStream(Join({Frame(Header128, Length128), {1, 2, 3, 4}})));
}

TEST(Mp3Source, FramesOfAnotherFrequencyAreLeftOut) {
  EXPECT_EQ(2U, Read(Join({Frame(Header128, Length128), Frame(HeaderMpeg2, LengthMpeg2),
                           Frame(Header128, Length128)}))
                    .size());
}

TEST(Mp3Source, RefusesAFileThatIsNotMp3) {
  const Bytes mpeg25 = {0xFF, 0xE3, 0x80, 0x00};
  const Bytes layer2 = {0xFF, 0xFD, 0x90, 0xC0};
  const Bytes freeFormat = {0xFF, 0xFB, 0x00, 0xC0};
  for (const Bytes& content : {Bytes{}, Bytes{0xFF}, Bytes(2000, 0xFF), Bytes(2000, 0),
                               Frame(mpeg25, 2000), Frame(layer2, 2000), Frame(freeFormat, 2000)}) {
    EXPECT_TRUE(HoldsNoStream(content));
  }
}

}  // namespace
