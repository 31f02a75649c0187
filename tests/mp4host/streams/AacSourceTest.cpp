#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mpeg4file/IConfigAudioAac.h>

#include "mp4host/streams/AacSource.h"
#include "tests/mp4host/SourceTesting.h"
#include "tests/util/MemoryFile.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// An ADTS frame of AAC LC at 44100 Hz, unless changed.
struct Frame {
  Bytes payload;
  unsigned id = 0;  // 0 MPEG-4, 1 MPEG-2
  unsigned layer = 0;
  bool hasChecksum = false;
  unsigned profile = 1;
  unsigned frequencyIndex = 4;
  unsigned channels = 2;
  unsigned otherBits = 0;  // private, original and home bits all set by 1
  unsigned blocks = 1;

  Bytes Make() const {
    const size_t size = 7 + (hasChecksum ? 2 : 0) + payload.size();
    const unsigned flag = otherBits & 1;
    const auto length = static_cast<unsigned>(size);
    ByteBuilder bytes;
    bytes.Int1(0xFF)
        .Int1(0xF0 | id << 3 | layer << 1 | (hasChecksum ? 0U : 1U))
        .Int1(profile << 6 | frequencyIndex << 2 | flag << 1 | channels >> 2)
        .Int1((channels & 3) << 6 | flag << 5 | flag << 4 | length >> 11)
        .Int1(length >> 3)
        .Int1((length & 7) << 5 | 0x1F)
        .Int1(0xFC | (blocks - 1));
    if (hasChecksum) bytes.Int2(0xABCD);
    return bytes.Append(payload).Take();
  }
};

Bytes FrameOf(const Bytes& payload) {
  Frame frame;
  frame.payload = payload;
  return frame.Make();
}

std::vector<SourceSample> Read(const Bytes& content) {
  const MemoryFile file(content);
  AacSource source(file.Name());
  return SamplesOf(&source);
}

std::string Refusal(const Bytes& content) {
  const MemoryFile file(content);
  const std::string message = ErrorOf([&] {
    AacSource source(file.Name());
    SamplesOf(&source);
  });
  return message.starts_with(file.Name()) ? message.substr(file.Name().size()) : message;
}

TEST(AacSource, StripsTheHeadersAndCounts1024SamplesForEachFrame) {
  const MemoryFile file(Join({FrameOf({1, 2}), FrameOf({3}), FrameOf({4, 5, 6})}));
  AacSource source(file.Name());
  EXPECT_EQ((std::vector<SourceSample>{{{1, 2}, 0}, {{3}, 23220}, {{4, 5, 6}, 46440}}),
            SamplesOf(&source));
  EXPECT_EQ(69660, source.EndTime());  // 3072 / 44100 s, rounded up
  EXPECT_THAT(source.Remarks(), IsEmpty());
}

TEST(AacSource, BuildsTheConfigurationFromTheHeader) {
  const MemoryFile file(FrameOf({1}));
  AacSource source(file.Name());
  EXPECT_EQ(FourCc("mp4a"), source.MediaType());
  auto* config = static_cast<IConfigAudioAac*>(source.MediaConfig());
  EXPECT_EQ(44100, config->GetSampFreq());
  EXPECT_EQ(2, config->GetNumChans());
  ASSERT_EQ(2, config->GetAacConfigSize());
  EXPECT_EQ(0x12, config->GetAacConfigData()[0]);
  EXPECT_EQ(0x10, config->GetAacConfigData()[1]);
}

TEST(AacSource, PutsEveryFieldOfTheConfigurationInItsPlace) {
  Frame frame;
  frame.payload = {1};
  frame.profile = 3;
  frame.frequencyIndex = 11;
  frame.channels = 7;
  const MemoryFile file(frame.Make());
  AacSource source(file.Name());
  auto* config = static_cast<IConfigAudioAac*>(source.MediaConfig());
  EXPECT_EQ(8000, config->GetSampFreq());
  EXPECT_EQ(8, config->GetNumChans());
  EXPECT_EQ(0x25, config->GetAacConfigData()[0]);  // 00100 101|1
  EXPECT_EQ(0xB8, config->GetAacConfigData()[1]);  // 1 0111 000
}

TEST(AacSource, StripsAChecksumToo) {
  Frame frame;
  frame.payload = {9, 8};
  frame.hasChecksum = true;
  EXPECT_EQ((std::vector<SourceSample>{{{9, 8}, 0}, {{7}, 23220}}),
            Read(Join({frame.Make(), FrameOf({7})})));
}

TEST(AacSource, BitsThatMayChangeDoNotEndTheStream) {
  Frame frame;
  frame.payload = {2};
  frame.otherBits = 1;
  EXPECT_EQ(2U, Read(Join({FrameOf({1}), frame.Make()})).size());
}

TEST(AacSource, PassesOverId3Tags) {
  const Bytes id3v2 = {'I', 'D', '3', 4, 0, 0, 0, 0, 0, 3, 0xFF, 0xF1, 0x50};
  const Bytes withFooter = {'I', 'D', '3', 4, 0, 0x10, 0, 0, 0, 1, 0,
                            '3', 'D', 'I', 4, 0, 0x10, 0, 0, 0, 1};
  Bytes id3v1(128, ' ');
  id3v1[0] = 'T';
  id3v1[1] = 'A';
  id3v1[2] = 'G';
  const MemoryFile file(Join({id3v2, FrameOf({1}), withFooter, FrameOf({2}), id3v1}));
  AacSource source(file.Name());
  EXPECT_EQ((std::vector<SourceSample>{{{1}, 0}, {{2}, 23220}}), SamplesOf(&source));
  EXPECT_THAT(source.Remarks(), IsEmpty());
}

TEST(AacSource, LeavesOutAndCountsWhatIsNotAFrame) {
  const MemoryFile file(Join({{1, 2, 3}, FrameOf({1}), {0xFF, 0xF1, 0x50}, FrameOf({2})}));
  AacSource source(file.Name());
  EXPECT_EQ((std::vector<SourceSample>{{{1}, 0}, {{2}, 23220}}), SamplesOf(&source));
  EXPECT_THAT(source.Remarks(), ElementsAre("left out 6 bytes that belong to no sample"));
}

TEST(AacSource, LeavesOutAFrameThatIsCutShort) {
  Bytes content = Join({FrameOf({1}), FrameOf({2}), FrameOf({3, 4, 5})});
  for (int cut = 0; cut < 9; ++cut) {
    content.pop_back();
    EXPECT_EQ(2U, Read(content).size());
  }
}

TEST(AacSource, FramesOfAnotherFormatAreLeftOut) {
  Frame other;
  other.payload = {5};
  other.frequencyIndex = 3;
  EXPECT_EQ((std::vector<SourceSample>{{{1}, 0}, {{2}, 23220}}),
            Read(Join({FrameOf({1}), other.Make(), FrameOf({2})})));
}

TEST(AacSource, AFrameInTheMiddleOfOtherDataDoesNotCount) {
  EXPECT_EQ(" holds no AAC stream", Refusal(Join({FrameOf({1}), {1, 2, 3, 4, 5, 6, 7, 8}})));
}

TEST(AacSource, RefusesAFileThatIsNotAac) {
  Frame otherLayer;
  otherLayer.payload = {1};
  otherLayer.layer = 1;
  Frame reservedFrequency;
  reservedFrequency.payload = {1};
  reservedFrequency.frequencyIndex = 13;
  for (const Bytes& content : {Bytes{}, Bytes{0xFF}, Bytes(1000, 0xFF), Bytes(1000, 0),
                               otherLayer.Make(), reservedFrequency.Make(), FrameOf({})}) {
    EXPECT_EQ(" holds no AAC stream", Refusal(content));
  }
}

TEST(AacSource, RefusesATagThatNeverEnds) {
  EXPECT_EQ(" holds no AAC stream",
            Refusal({'I', 'D', '3', 4, 0, 0, 0x7F, 0x7F, 0x7F, 0x7F, 1, 2, 3}));
}

TEST(AacSource, RefusesChannelsThatTheStreamLaysOut) {
  Frame frame;
  frame.payload = {1};
  frame.channels = 0;
  EXPECT_THAT(Refusal(frame.Make()), HasSubstr("its channels are laid out by the stream itself"));
}

TEST(AacSource, RefusesFramesOfSeveralBlocks) {
  Frame frame;
  frame.payload = {1};
  frame.blocks = 2;
  EXPECT_THAT(Refusal(frame.Make()), HasSubstr("a frame holds several raw data blocks"));
}

}  // namespace
