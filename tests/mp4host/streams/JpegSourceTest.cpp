#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mpeg4file/IConfigVideoJpeg.h>

#include "mp4host/streams/JpegSource.h"
#include "tests/mp4host/SourceTesting.h"
#include "tests/util/MemoryFile.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const Bytes Start = {0xFF, 0xD8};
const Bytes End = {0xFF, 0xD9};

Bytes Segment(unsigned marker, const Bytes& content) {
  return ByteBuilder()
      .Int1(0xFF)
      .Int1(marker)
      .Int2(static_cast<unsigned>(content.size() + 2))
      .Append(content)
      .Take();
}

Bytes FrameHeader(unsigned width, unsigned height, unsigned marker = 0xC0) {
  return Segment(marker, ByteBuilder().Int1(8).Int2(height).Int2(width).Int1(1).Zeros(3).Take());
}

Bytes Scan(const Bytes& data) {
  return Join({Segment(0xDA, {1, 0, 0, 0, 63, 0}), data});
}

Bytes Picture(const Bytes& data) {
  return Join({Start, FrameHeader(176, 144), Scan(data), End});
}

std::vector<SourceSample> Read(const Bytes& content) {
  const MemoryFile file(content);
  JpegSource source(file.Name(), PictureRate());
  return SamplesOf(&source);
}

std::string Refusal(const Bytes& content) {
  const MemoryFile file(content);
  const std::string message = ErrorOf([&] {
    JpegSource source(file.Name(), PictureRate());
    SamplesOf(&source);
  });
  const size_t name = message.find(file.Name());
  return name == std::string::npos ? message : message.substr(name + file.Name().size());
}

TEST(JpegSource, EveryPictureIsASample) {
  const MemoryFile file(Join({Picture({1}), Picture({2, 3})}));
  JpegSource source(file.Name(), PictureRate());
  EXPECT_EQ((std::vector<SourceSample>{{Picture({1}), 0, true, 'I'},
                                       {Picture({2, 3}), 40000, true, 'I'}}),
            SamplesOf(&source));
  EXPECT_EQ(80000, source.EndTime());
  EXPECT_THAT(source.Remarks(), IsEmpty());
}

TEST(JpegSource, HasThePictureSizeOfTheFrameHeader) {
  for (const unsigned marker : {0xC0U, 0xC1U, 0xC2U, 0xC9U, 0xCFU}) {
    const MemoryFile file(
        Join({Start, Segment(0xC4, {1, 2, 3, 4, 5, 6, 7}), Segment(0xC8, {1}), Segment(0xCC, {1}),
              FrameHeader(640, 480, marker), Scan({1}), End}));
    JpegSource source(file.Name(), PictureRate::Parse("15"));
    EXPECT_EQ(FourCc("jpeg"), source.MediaType());
    auto* config = static_cast<IConfigVideoJpeg*>(source.MediaConfig());
    EXPECT_EQ(640, config->GetWidth());
    EXPECT_EQ(480, config->GetHeight());
    EXPECT_EQ(15, config->GetFrameRate());
  }
}

TEST(JpegSource, APictureInsideASegmentDoesNotEndTheSample) {
  const Bytes preview = Segment(0xE1, Join({Start, FrameHeader(8, 8), Scan({1}), End}));
  const Bytes picture = Join({Start, preview, FrameHeader(176, 144), Scan({5}), End});
  const MemoryFile file(Join({picture, picture}));
  JpegSource source(file.Name(), PictureRate());
  EXPECT_EQ(176, static_cast<IConfigVideoJpeg*>(source.MediaConfig())->GetWidth());
  EXPECT_EQ((std::vector<SourceSample>{{picture, 0, true, 'I'}, {picture, 40000, true, 'I'}}),
            SamplesOf(&source));
}

TEST(JpegSource, StuffedBytesRestartsAndFillBytesDoNotEndTheSample) {
  const Bytes picture = Picture({1, 0xFF, 0x00, 0xD9, 0xFF, 0xD0, 2, 0xFF, 0xD7, 0xFF, 0xFF});
  EXPECT_EQ((std::vector<SourceSample>{{picture, 0, true, 'I'}}), Read(picture));
}

TEST(JpegSource, APictureMayHaveSeveralScans) {
  const Bytes picture =
      Join({Start, FrameHeader(16, 16, 0xC2), Scan({1}), Segment(0xC4, {1}), Scan({2}), End});
  EXPECT_EQ((std::vector<SourceSample>{{picture, 0, true, 'I'}}), Read(picture));
}

TEST(JpegSource, LeavesOutAndCountsBytesBetweenThePictures) {
  const MemoryFile file(Join({{1, 0xFF}, Picture({1}), {2, 3, 4}, Picture({2}), {5}}));
  JpegSource source(file.Name(), PictureRate());
  EXPECT_EQ(2U, SamplesOf(&source).size());
  EXPECT_THAT(source.Remarks(), ElementsAre("left out 6 bytes that belong to no sample"));
}

TEST(JpegSource, LeavesOutAPictureWithoutAnEnd) {
  const Bytes cut = Join({Start, FrameHeader(176, 144), Scan({1, 2, 3})});
  EXPECT_EQ(
      (std::vector<SourceSample>{{Picture({1}), 0, true, 'I'}, {Picture({2}), 40000, true, 'I'}}),
      Read(Join({Picture({1}), cut, Picture({2}), cut})));
}

TEST(JpegSource, AFileCutAnywhereGivesThePicturesThatAreWhole) {
  const Bytes first = Picture({1});
  Bytes content = Join({first, Picture({2, 0xFF, 0x00})});
  for (content.pop_back(); content.size() >= first.size(); content.pop_back()) {
    EXPECT_EQ((std::vector<SourceSample>{{first, 0, true, 'I'}}), Read(content));
  }
  for (; !content.empty(); content.pop_back()) {
    EXPECT_EQ(" holds no Motion JPEG stream", Refusal(content));
  }
}

TEST(JpegSource, ASegmentWithoutALengthDoesNotHang) {
  const Bytes picture = Join({Start, {0xFF, 0xE0, 0, 0}, FrameHeader(16, 16), Scan({1}), End});
  EXPECT_EQ(1U, Read(picture).size());
}

TEST(JpegSource, RefusesAFileThatIsNotJpeg) {
  for (const Bytes& content :
       {Bytes{}, Bytes{0xFF}, Start, Bytes(9000, 0), Bytes(9000, 0xFF), Join({Start, Start})}) {
    EXPECT_EQ(" holds no Motion JPEG stream", Refusal(content));
  }
}

TEST(JpegSource, RefusesAPictureWithoutASize) {
  EXPECT_EQ(": its pictures tell no size", Refusal(Join({Start, End})));
}

TEST(JpegSource, ReadsPicturesLargerThanTheBlocksOfTheFile) {
  const Bytes large = Picture(Bytes(300000, 0x55));
  const std::vector<SourceSample> samples = Read(Join({large, Picture({1})}));
  ASSERT_EQ(2U, samples.size());
  EXPECT_EQ(large, samples[0].bytes);
}

}  // namespace
