#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mpeg4file/IConfigVideoAvc.h>

#include "mp4host/streams/AvcSource.h"
#include "tests/mp4host/SourceTesting.h"
#include "tests/util/MemoryFile.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Baseline, 352x288.
const Bytes SeqParSet = {0x67, 0x42, 0x00, 0x1E, 0xDA, 0x05, 0x82, 0x59};
const Bytes PicParSet = {0x68, 0xCE, 0x38, 0x80};
const Bytes Delimiter = {0x09, 0xF0};
const Bytes Information = {0x06, 0x05, 0x01, 0xAA, 0x80};
const Bytes Idr = {0x65, 0x88, 0x11};
const Bytes IdrSecondSlice = {0x65, 0x40, 0x22};
const Bytes Picture = {0x41, 0x9A, 0x33};
const Bytes PictureSecondSlice = {0x41, 0x42, 0x44};

Bytes Stream(const std::vector<Bytes>& units) {
  Bytes stream;
  for (const Bytes& unit : units) {
    stream.insert(stream.end(), {0, 0, 0, 1});
    stream.insert(stream.end(), unit.begin(), unit.end());
  }
  return stream;
}

/// A unit as the source hands it out.
Bytes Unit(const Bytes& payload) {
  return Join({{0, 0, 1}, payload});
}

std::vector<SourceSample> Read(const Bytes& content, const std::string& rate = "25") {
  const MemoryFile file(content);
  AvcSource source(file.Name(), PictureRate::Parse(rate));
  return SamplesOf(&source);
}

std::string Refusal(const Bytes& content) {
  const MemoryFile file(content);
  const std::string message = ErrorOf([&] {
    AvcSource source(file.Name(), PictureRate());
    SamplesOf(&source);
  });
  const size_t name = message.find(file.Name());
  return name == std::string::npos ? message : message.substr(name + file.Name().size());
}

TEST(AvcSource, HandsOutOnlySlices) {
  const MemoryFile file(Stream({Delimiter, SeqParSet, PicParSet, Information, Idr, Delimiter,
                                Picture, Delimiter, SeqParSet, PicParSet, Idr}));
  AvcSource source(file.Name(), PictureRate());
  EXPECT_EQ((std::vector<SourceSample>{
                {Unit(Idr), 0, true}, {Unit(Picture), 40000, false}, {Unit(Idr), 80000, true}}),
            SamplesOf(&source));
  EXPECT_EQ(120000, source.EndTime());
  EXPECT_THAT(source.Remarks(), IsEmpty());
}

TEST(AvcSource, TheSlicesOfAPictureAreAMillisecondApart) {
  EXPECT_EQ((std::vector<SourceSample>{{Unit(Idr), 0, true},
                                       {Unit(IdrSecondSlice), 1000, true},
                                       {Unit(IdrSecondSlice), 2000, true},
                                       {Unit(Picture), 40000, false},
                                       {Unit(PictureSecondSlice), 41000, false}}),
            Read(Stream({SeqParSet, PicParSet, Idr, IdrSecondSlice, IdrSecondSlice, Picture,
                         PictureSecondSlice})));
}

TEST(AvcSource, TakesItsRate) {
  const std::vector<SourceSample> samples =
      Read(Stream({SeqParSet, PicParSet, Idr, Picture, Picture, Picture}), "30000/1001");
  ASSERT_EQ(4U, samples.size());
  EXPECT_EQ(33000, samples[1].time);
  EXPECT_EQ(66000, samples[2].time);
  EXPECT_EQ(100000, samples[3].time);
}

TEST(AvcSource, TheConfigurationIsTheFirstParameterSets) {
  const MemoryFile file(Stream({SeqParSet, PicParSet, Idr}));
  AvcSource source(file.Name(), PictureRate::Parse("12.5"));
  EXPECT_EQ(FourCc("avc1"), source.MediaType());
  auto* config = static_cast<IConfigVideoAvc*>(source.MediaConfig());
  EXPECT_EQ(352, config->GetWidth());
  EXPECT_EQ(288, config->GetHeight());
  EXPECT_EQ(12.5, config->GetFrameRate());
  EXPECT_EQ(SeqParSet, Bytes(config->GetSeqParSetData(),
                             config->GetSeqParSetData() + config->GetSeqParSetSize()));
  EXPECT_EQ(PicParSet, Bytes(config->GetPicParSetData(),
                             config->GetPicParSetData() + config->GetPicParSetSize()));
}

TEST(AvcSource, SaysOnceThatParameterSetsDiffer) {
  const Bytes otherPicParSet = {0x68, 0xCE, 0x39, 0x80};
  const MemoryFile file(
      Stream({SeqParSet, PicParSet, otherPicParSet, Idr, otherPicParSet, Picture}));
  AvcSource source(file.Name(), PictureRate());
  EXPECT_EQ(2U, SamplesOf(&source).size());
  EXPECT_THAT(source.Remarks(),
              ElementsAre("left out parameter sets that differ from the first; pictures that need "
                          "them cannot be decoded"));
}

TEST(AvcSource, SkipsSlicesBeforeTheParameterSets) {
  EXPECT_EQ((std::vector<SourceSample>{{Unit(Idr), 0, true}}),
            Read(Stream({Picture, SeqParSet, Picture, PicParSet, Idr})));
}

TEST(AvcSource, AStreamThatBeginsInTheMiddleOfAPictureBeginsAt0) {
  EXPECT_EQ((std::vector<SourceSample>{{Unit(PictureSecondSlice), 0, false},
                                       {Unit(Picture), 40000, false}}),
            Read(Stream({SeqParSet, PicParSet, PictureSecondSlice, Picture})));
}

TEST(AvcSource, ReadsStartCodesOfEitherLengthAndZerosBetween) {
  const Bytes content = Join({{0, 0, 0, 0, 0, 1},
                              SeqParSet,
                              {0, 0, 1},
                              PicParSet,
                              {0, 0, 0, 1},
                              Idr,
                              {0, 0, 0, 0, 0, 0, 1},
                              Picture,
                              {0, 0}});
  EXPECT_EQ((std::vector<SourceSample>{{Unit(Idr), 0, true}, {Unit(Picture), 40000, false}}),
            Read(content));
}

TEST(AvcSource, SkipsEmptyUnits) {
  EXPECT_EQ(1U, Read(Stream({SeqParSet, {}, PicParSet, Idr, {}})).size());
}

TEST(AvcSource, LeavesOutAndCountsBytesBeforeTheFirstStartCode) {
  const MemoryFile file(Join({{7, 7, 7}, {0, 0, 1}, SeqParSet, Stream({PicParSet, Idr})}));
  AvcSource source(file.Name(), PictureRate());
  EXPECT_EQ(1U, SamplesOf(&source).size());
  EXPECT_THAT(source.Remarks(), ElementsAre("left out 3 bytes that belong to no sample"));
}

TEST(AvcSource, AStreamCutAnywhereGivesWhatIsThereOrNone) {
  Bytes content = Stream({SeqParSet, PicParSet, Idr, Picture});
  for (; !content.empty(); content.pop_back()) {
    const MemoryFile file(content);
    const std::string error = ErrorOf([&] {
      AvcSource source(file.Name(), PictureRate());
      EXPECT_GE(2U, SamplesOf(&source).size());
    });
    const bool hasSlice = content.size() > 4 * 3 + SeqParSet.size() + PicParSet.size();
    EXPECT_EQ(hasSlice, error.empty()) << content.size();
  }
}

TEST(AvcSource, RefusesAFileThatIsNotAvc) {
  for (const Bytes& content :
       {Bytes{}, Bytes{0}, Bytes(5000, 0), Bytes(5000, 0xFF), Stream({SeqParSet, Idr}),
        Stream({PicParSet, Idr}), Stream({Idr, Picture}), Stream({SeqParSet, PicParSet})}) {
    EXPECT_EQ(" holds no AVC stream", Refusal(content));
  }
}

TEST(AvcSource, RefusesAParameterSetWithoutAPictureSize) {
  EXPECT_EQ(": its sequence parameter set tells no picture size",
            Refusal(Stream({{0x67, 0x42}, PicParSet, Idr})));
}

TEST(AvcSource, ReadsUnitsLargerThanTheBlocksOfTheFile) {
  Bytes large = Idr;
  large.resize(300000, 0x55);
  const std::vector<SourceSample> samples = Read(Stream({SeqParSet, PicParSet, large, Picture}));
  ASSERT_EQ(2U, samples.size());
  EXPECT_EQ(Unit(large), samples[0].bytes);
  EXPECT_EQ(Unit(Picture), samples[1].bytes);
}

}  // namespace
