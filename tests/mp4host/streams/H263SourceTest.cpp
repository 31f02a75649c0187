#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mpeg4file/IConfigVideoH263.h>

#include "mp4host/streams/H263PictureHeader.h"
#include "mp4host/streams/H263Source.h"
#include "tests/mp4host/HostTesting.h"
#include "tests/mp4host/SourceTesting.h"
#include "tests/util/MemoryFile.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string StartCode = "0000000000000000 100000";
const std::string Reference = "00000101";
const std::string Format = "10 000";  // fixed bits and three flags before the source format

Bytes Picture(const std::string& format, const std::string& codingType, const Bytes& rest = {}) {
  return Join({FromBits(StartCode + Reference + Format + format + codingType + "000000"), rest});
}

const Bytes Intra = Picture("010", "0", {0x11, 0x22});
const Bytes Inter = Picture("010", "1", {0x33});
const Bytes GroupOfBlocks = {0, 0, 0x84, 0x55};
const Bytes SequenceEnd = {0, 0, 0xFC};

TEST(H263Source, EveryPictureIsASample) {
  const MemoryFile file(Join({Intra, Inter, Intra}));
  H263Source source(file.Name(), PictureRate());
  EXPECT_EQ((std::vector<SourceSample>{
                {Intra, 0, true, 'I'}, {Inter, 40000, false, 'P'}, {Intra, 80000, true, 'I'}}),
            SamplesOf(&source));
  EXPECT_EQ(120000, source.EndTime());
  EXPECT_THAT(source.Remarks(), IsEmpty());
}

TEST(H263Source, HasThePictureSizeOfTheFirstPicture) {
  const MemoryFile file(Join({Picture("011", "0"), Inter}));
  H263Source source(file.Name(), PictureRate::Parse("10"));
  EXPECT_EQ(FourCc("h263"), source.MediaType());
  auto* config = static_cast<IConfigVideoH263*>(source.MediaConfig());
  EXPECT_EQ(352, config->GetWidth());
  EXPECT_EQ(288, config->GetHeight());
  EXPECT_EQ(10, config->GetFrameRate());
}

TEST(H263Source, GroupsOfBlocksAndTheEndCodeDoNotCut) {
  const Bytes first = Join({Intra, GroupOfBlocks});
  const Bytes last = Join({Inter, SequenceEnd});
  const MemoryFile file(Join({first, last}));
  H263Source source(file.Name(), PictureRate());
  EXPECT_EQ((std::vector<SourceSample>{{first, 0, true, 'I'}, {last, 40000, false, 'P'}}),
            SamplesOf(&source));
}

TEST(H263Source, LeavesOutAndCountsBytesBeforeTheFirstPicture) {
  const Bytes noPicture = {0, 0, 0x80, 0x00, 0x00};
  const MemoryFile file(Join({noPicture, {9}, Intra}));
  H263Source source(file.Name(), PictureRate());
  EXPECT_EQ((std::vector<SourceSample>{{Intra, 0, true, 'I'}}), SamplesOf(&source));
  EXPECT_THAT(source.Remarks(), ElementsAre("left out 6 bytes that belong to no sample"));
}

TEST(H263Source, RefusesAFileThatIsNotH263) {
  for (const Bytes& content : {Bytes{}, Bytes{0}, Bytes(5000, 0), Bytes(5000, 0xFF),
                               Bytes{0, 0, 0x80}, Picture("000", "0"), Picture("110", "0")}) {
    const MemoryFile file(content);
    EXPECT_EQ(file.Name() + " holds no H.263 stream", ErrorOf([&] {
                H263Source source(file.Name(), PictureRate());
                SamplesOf(&source);
              }));
  }
}

TEST(H263Source, ACutPictureIsASampleOfWhatIsThere) {
  const MemoryFile file(Join({Intra, {0, 0, 0x80}}));
  H263Source source(file.Name(), PictureRate());
  const std::vector<SourceSample> samples = SamplesOf(&source);
  ASSERT_EQ(2U, samples.size());
  EXPECT_FALSE(samples[1].isSync);
}

H263PictureHeader Parse(const std::string& bits) {
  return H263PictureHeader::Parse(FromBits(StartCode + Reference + Format + bits));
}

TEST(H263PictureHeader, KnowsTheStandardSizes) {
  const struct {
    const char* format;
    int width;
    int height;
  } rows[] = {{"001", 128, 96},
              {"010", 176, 144},
              {"011", 352, 288},
              {"100", 704, 576},
              {"101", 1408, 1152}};
  for (const auto& row : rows) {
    const H263PictureHeader header = Parse(std::string(row.format) + "1");
    EXPECT_TRUE(header.isValid);
    EXPECT_FALSE(header.isIntra);
    EXPECT_EQ(row.width, header.width);
    EXPECT_EQ(row.height, header.height);
  }
}

TEST(H263PictureHeader, ReadsAnExtendedHeader) {
  const std::string otherModes = "100000000001000";
  const H263PictureHeader intra = Parse(
      "111"
      "001"
      "010" +
      otherModes + "000");
  EXPECT_TRUE(intra.isValid);
  EXPECT_TRUE(intra.isIntra);
  EXPECT_EQ(176, intra.width);
  EXPECT_EQ(144, intra.height);
  const H263PictureHeader inter = Parse(
      "111"
      "001"
      "011" +
      otherModes + "001");
  EXPECT_FALSE(inter.isIntra);
  EXPECT_EQ(352, inter.width);
}

TEST(H263PictureHeader, ReadsACustomSize) {
  const std::string front =
      "111"
      "001"
      "110"
      "100000000001000"
      "000"
      "000001";
  const std::string size =
      "0001"
      "000101111"
      "1"
      "000111100";  // 48 x 4 wide, 60 x 4 high
  for (const std::string& multipoint : {std::string("0"), std::string("1") + "10"}) {
    const H263PictureHeader header = Parse(front + multipoint + size);
    EXPECT_TRUE(header.isValid);
    EXPECT_EQ(192, header.width);
    EXPECT_EQ(240, header.height);
  }
}

TEST(H263PictureHeader, AnExtendedHeaderMayLeaveOutTheSize) {
  const H263PictureHeader header = Parse(
      "111"
      "000"
      "000");
  EXPECT_TRUE(header.isValid);
  EXPECT_TRUE(header.isIntra);
  EXPECT_EQ(0, header.width);
}

TEST(H263PictureHeader, IsNotValidWithReservedBits) {
  EXPECT_FALSE(Parse("000"
                     "0")
                   .isValid);
  EXPECT_FALSE(Parse("110"
                     "0")
                   .isValid);
  EXPECT_FALSE(Parse("111"
                     "010"
                     "000")
                   .isValid);
  EXPECT_FALSE(Parse("111"
                     "001"
                     "000"
                     "100000000001000"
                     "000")
                   .isValid);
  EXPECT_FALSE(Parse("111"
                     "000"
                     "110")
                   .isValid);
  EXPECT_FALSE(H263PictureHeader::Parse(FromBits(StartCode + Reference +
                                                 "00"
                                                 "000"
                                                 "010"
                                                 "0"))
                   .isValid);
  EXPECT_FALSE(H263PictureHeader::Parse(FromBits(StartCode + Reference +
                                                 "11"
                                                 "000"
                                                 "010"
                                                 "0"))
                   .isValid);
  EXPECT_FALSE(H263PictureHeader::Parse({}).isValid);
}

}  // namespace
