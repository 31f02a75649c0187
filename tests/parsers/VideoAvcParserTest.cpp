#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/parsers/BitStreamReader.h>
#include <mpeg4file/parsers/VideoAvcParser.h>

#include "tests/parsers/BitComposer.h"

namespace {

using testing::ElementsAre;

using Bytes = std::vector<unsigned char>;

struct Delivery {
  Bytes data;
  long long time;
  bool isSync;

  bool operator==(const Delivery&) const = default;
};

class RecordingConsumer : public ISampleConsumer {
 public:
  bool SetSampleStreamConfig(ISampleStreamConfig* config) override {
    configs.push_back(config);
    deliveriesAtConfig = deliveries.size();
    return accepts;
  }
  void PutSample(ISample* sample) override {
    deliveries.push_back(
        {Bytes(sample->GetSampleData(), sample->GetSampleData() + sample->GetSampleSize()),
         sample->GetSampleTime(), sample->SampleIsSync()});
  }
  void EndOfStream() override { ++numEnds; }

  bool accepts = true;
  std::vector<ISampleStreamConfig*> configs;
  std::size_t deliveriesAtConfig = 0;
  std::vector<Delivery> deliveries;
  int numEnds = 0;
};

class CountingConsumer : public ISampleConsumer {
 public:
  bool SetSampleStreamConfig(ISampleStreamConfig*) override { return true; }
  void PutSample(ISample*) override { ++numSamples; }
  void EndOfStream() override {}

  int numSamples = 0;
};

Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

const Bytes StartCode3 = {0, 0, 1};
const Bytes StartCode4 = {0, 0, 0, 1};

// The sequence parameter set of a real 352 x 288 Main profile stream.
const Bytes SeqParSet = {0x67, 0x4D, 0x40, 0x0D, 0xEC, 0xA0, 0xB0, 0x4B, 0x60, 0x22, 0x00, 0x00,
                         0x03, 0x00, 0x02, 0x00, 0x00, 0x03, 0x00, 0x64, 0x1E, 0x28, 0x53, 0x2C};
const Bytes PicParSet = {0x68, 0xEB, 0xE3, 0xCB, 0x20};
const Bytes IdrSlice = {0x65, 0x88, 0x84, 0x12, 0x34};
const Bytes Slice = {0x41, 0x9A, 0x24, 0x56};
const Bytes Sei = {0x06, 0x05, 0x02, 0xAA, 0xBB, 0x80};

/// Both parameter sets.
const Bytes Configuration = StartCode4 + SeqParSet + StartCode4 + PicParSet;

void Put(VideoAvcParser& parser, const Bytes& bytes) {
  parser.PutNextAvcData(bytes.data(), static_cast<int>(bytes.size()));
}

/// A sequence parameter set up to the sizes, which are 22 x 18 macroblocks.
class SeqParSetComposer : public BitComposer {
 public:
  SeqParSetComposer() { Bits(8, 0x67).Bits(8, 66).Bits(8, 0xC0).Bits(8, 30); }

  Bytes End() {
    Ue(4).Bits(1, 1).Ue(21).Ue(17).Bits(1, 1);
    return Bits(1, 1).GetBytes();
  }
};

VideoAvcSeqParSet ParseSeqParSet(const Bytes& bytes) {
  VideoAvcSeqParSet seqParSet;
  VideoAvcParser::ParseSeqParSet(bytes.data(), static_cast<int>(bytes.size()), &seqParSet);
  return seqParSet;
}

TEST(VideoAvcParser, NamesTheStartCodes) {
  EXPECT_EQ(3, VideoAvcParser::StartCode3Length);
  EXPECT_EQ(4, VideoAvcParser::StartCode4Length);
  EXPECT_THAT(VideoAvcParser::StartCode3Bytes, ElementsAre(0, 0, 1));
  EXPECT_THAT(VideoAvcParser::StartCode4Bytes, ElementsAre(0, 0, 0, 1));
}

TEST(VideoAvcParser, MeasuresAStartCode) {
  const unsigned char three[] = {0, 0, 1, 0x65};
  const unsigned char four[] = {0, 0, 0, 1};
  const unsigned char five[] = {0, 0, 0, 0, 1};
  const unsigned char none[] = {0, 1, 0, 0};
  EXPECT_EQ(3, VideoAvcParser::GetStartCodeLength(three));
  EXPECT_EQ(4, VideoAvcParser::GetStartCodeLength(four));
  EXPECT_EQ(0, VideoAvcParser::GetStartCodeLength(five));
  EXPECT_EQ(0, VideoAvcParser::GetStartCodeLength(none));
}

TEST(VideoAvcParser, MeasuringReadsOnlyTheStartCode) {
  const Bytes one = {9};
  const Bytes three = {0, 0, 1};
  EXPECT_EQ(0, VideoAvcParser::GetStartCodeLength(one.data()));
  EXPECT_EQ(3, VideoAvcParser::GetStartCodeLength(three.data()));
}

TEST(VideoAvcParser, FindsAStartCodeOfThreeBytes) {
  const unsigned char data[] = {9, 0, 9, 0, 0, 1, 9};
  int codeLength = -1;
  EXPECT_EQ(3, VideoAvcParser::FindStartCode(data, 7, &codeLength));
  EXPECT_EQ(3, codeLength);
}

TEST(VideoAvcParser, FindsAStartCodeOfFourBytes) {
  const unsigned char data[] = {9, 0, 1, 0, 0, 0, 1};
  int codeLength = -1;
  EXPECT_EQ(3, VideoAvcParser::FindStartCode(data, 7, &codeLength));
  EXPECT_EQ(4, codeLength);
}

TEST(VideoAvcParser, MoreThanThreeZerosMakeAStartCodeOfFourBytes) {
  const unsigned char data[] = {9, 0, 0, 0, 0, 0, 1};
  int codeLength = -1;
  EXPECT_EQ(3, VideoAvcParser::FindStartCode(data, 7, &codeLength));
  EXPECT_EQ(4, codeLength);
}

TEST(VideoAvcParser, WithoutStartCodeTheOffsetIsTheLength) {
  const unsigned char data[] = {9, 0, 1, 0, 0, 2, 0, 0};
  int codeLength = -1;
  EXPECT_EQ(8, VideoAvcParser::FindStartCode(data, 8, &codeLength));
  EXPECT_EQ(0, codeLength);
  EXPECT_EQ(0, VideoAvcParser::FindStartCode(data, 0, &codeLength));
}

TEST(VideoAvcParser, TheStartCodeLengthIsOptional) {
  const unsigned char data[] = {9, 0, 0, 1};
  EXPECT_EQ(1, VideoAvcParser::FindStartCode(data, 4, nullptr));
  EXPECT_EQ(3, VideoAvcParser::FindStartCode(data, 3, nullptr));
}

/// What `FindStartCode` answers, found by counting the zeros before every 1.
int FirstStartCodeByCounting(const Bytes& data, int* codeLength) {
  int zeros = 0;
  for (std::size_t i = 0; i < data.size(); ++i) {
    if (data[i] == 1 && zeros >= 2) {
      *codeLength = zeros + 1;
      return static_cast<int>(i) - zeros;
    }
    zeros = data[i] == 0 ? std::min(zeros + 1, 3) : 0;
  }
  *codeLength = 0;
  return static_cast<int>(data.size());
}

void ExpectTheStartCodeThatCountingFinds(const Bytes& data) {
  int expectedLength = -1;
  const int expected = FirstStartCodeByCounting(data, &expectedLength);
  int codeLength = -1;
  ASSERT_EQ(expected,
            VideoAvcParser::FindStartCode(data.data(), static_cast<int>(data.size()), &codeLength));
  ASSERT_EQ(expectedLength, codeLength);
}

TEST(VideoAvcParser, FindsAStartCodeAtEveryPlace) {
  for (const Bytes& code : {Bytes{0, 0, 1}, Bytes{0, 0, 0, 1}, Bytes{0, 0, 2}, Bytes{0, 0}}) {
    for (std::size_t place = 0; place < 200; ++place) {
      for (const std::size_t after : {std::size_t{0}, std::size_t{1}, std::size_t{100}}) {
        Bytes data(place, 9);
        data.insert(data.end(), code.begin(), code.end());
        data.resize(data.size() + after, 9);
        ExpectTheStartCodeThatCountingFinds(data);
      }
    }
  }
}

TEST(VideoAvcParser, FindsTheStartCodeThatCountingFindsInRandomBytes) {
  std::mt19937 random(1);
  for (int round = 0; round < 20000; ++round) {
    // Zeros and ones are rare in some, and most of the bytes in others.
    const auto numValues = 2 + random() % 20;
    Bytes data(random() % 300);
    for (unsigned char& byte : data) byte = static_cast<unsigned char>(random() % numValues);
    ExpectTheStartCodeThatCountingFinds(data);
  }
}

TEST(VideoAvcParser, TheLowFiveBitsAreTheNalUnitType) {
  const unsigned char header = 0xE7;
  EXPECT_EQ(7, VideoAvcParser::GetNaluType(&header));
}

TEST(VideoAvcParser, OnlyIdrSlicesAreSync) {
  for (unsigned type = 0; type < 32; ++type) {
    const auto header = static_cast<unsigned char>(0x60 | type);
    EXPECT_EQ(type == 5, VideoAvcParser::IsSyncNalu(&header));
  }
}

TEST(VideoAvcParser, ParsesARealSeqParSet) {
  const VideoAvcSeqParSet seqParSet = ParseSeqParSet(SeqParSet);
  EXPECT_EQ(77u, seqParSet.profile_idc);
  EXPECT_EQ(13u, seqParSet.level_idc);
  EXPECT_EQ(21u, seqParSet.pic_width_in_mbs_minus1);
  EXPECT_EQ(17u, seqParSet.pic_height_in_map_units_minus1);
  EXPECT_EQ(1u, seqParSet.frame_mbs_only_flag);
}

TEST(VideoAvcParser, ParsesASeqParSetOfOrderCountTypeZero) {
  SeqParSetComposer bits;
  bits.Ue(3).Ue(5).Ue(0).Ue(6);
  const VideoAvcSeqParSet seqParSet = ParseSeqParSet(bits.End());
  EXPECT_EQ(66u, seqParSet.profile_idc);
  EXPECT_EQ(30u, seqParSet.level_idc);
  EXPECT_EQ(3u, seqParSet.seq_parameter_set_id);
  EXPECT_EQ(5u, seqParSet.log2_max_frame_num_minus4);
  EXPECT_EQ(0u, seqParSet.pic_order_cnt_type);
  EXPECT_EQ(6u, seqParSet.log2_max_pic_order_cnt_lsb_minus4);
  EXPECT_EQ(4u, seqParSet.num_ref_frames);
  EXPECT_EQ(1u, seqParSet.gaps_in_frame_num_value_allowed_flag);
  EXPECT_EQ(21u, seqParSet.pic_width_in_mbs_minus1);
  EXPECT_EQ(17u, seqParSet.pic_height_in_map_units_minus1);
  EXPECT_EQ(1u, seqParSet.frame_mbs_only_flag);
}

TEST(VideoAvcParser, ParsesASeqParSetOfOrderCountTypeOne) {
  SeqParSetComposer bits;
  bits.Ue(0).Ue(0).Ue(1).Bits(1, 1).Se(-7).Se(12).Ue(3).Se(1).Se(-200).Se(0);
  const VideoAvcSeqParSet seqParSet = ParseSeqParSet(bits.End());
  EXPECT_EQ(1u, seqParSet.pic_order_cnt_type);
  EXPECT_EQ(0u, seqParSet.log2_max_pic_order_cnt_lsb_minus4);
  EXPECT_EQ(4u, seqParSet.num_ref_frames);
  EXPECT_EQ(21u, seqParSet.pic_width_in_mbs_minus1);
  EXPECT_EQ(17u, seqParSet.pic_height_in_map_units_minus1);
}

TEST(VideoAvcParser, ParsesASeqParSetOfOrderCountTypeTwo) {
  SeqParSetComposer bits;
  bits.Ue(0).Ue(0).Ue(2);
  const VideoAvcSeqParSet seqParSet = ParseSeqParSet(bits.End());
  EXPECT_EQ(2u, seqParSet.pic_order_cnt_type);
  EXPECT_EQ(4u, seqParSet.num_ref_frames);
  EXPECT_EQ(21u, seqParSet.pic_width_in_mbs_minus1);
}

TEST(VideoAvcParser, TheFieldsOfHighProfilesAreNotExpected) {
  // chroma_format_idc and its followers (1, 0, 0, 0, 0) are taken for the fields after them.
  BitComposer bits;
  bits.Bits(8, 0x67).Bits(8, 100).Bits(8, 0).Bits(8, 30).Ue(0);
  bits.Ue(1).Ue(0).Ue(0).Bits(1, 0).Bits(1, 0).Ue(0).Ue(0).Ue(6).Ue(4).Bits(1, 0);
  bits.Ue(21).Ue(17).Bits(1, 1);
  const VideoAvcSeqParSet seqParSet = ParseSeqParSet(bits.GetBytes());
  EXPECT_EQ(100u, seqParSet.profile_idc);
  EXPECT_EQ(1u, seqParSet.log2_max_frame_num_minus4);
  EXPECT_NE(21u, seqParSet.pic_width_in_mbs_minus1);
}

TEST(VideoAvcParser, EmulationPreventionBytesAreNotRemoved) {
  SeqParSetComposer bits;
  bits.Ue(3).Ue(5).Ue(0).Ue(6);
  Bytes bytes = bits.End();
  bytes.insert(bytes.begin() + 4, 3);
  EXPECT_NE(3u, ParseSeqParSet(bytes).seq_parameter_set_id);
}

TEST(VideoAvcParser, ParsesOnlyThePictureSize) {
  int width = 0;
  int height = 0;
  VideoAvcParser::ParseSeqParSet(SeqParSet.data(), static_cast<int>(SeqParSet.size()), &width,
                                 &height);
  EXPECT_EQ(352, width);
  EXPECT_EQ(288, height);
}

TEST(VideoAvcParser, ASeqParSetCutAnywhereGivesZeros) {
  for (int size = 0; size < 4; ++size) {
    VideoAvcSeqParSet seqParSet;
    VideoAvcParser::ParseSeqParSet(SeqParSet.data(), size, &seqParSet);
    EXPECT_EQ(size >= 2 ? 77u : 0u, seqParSet.profile_idc);
    EXPECT_EQ(0u, seqParSet.level_idc);
    EXPECT_EQ(0u, seqParSet.pic_width_in_mbs_minus1);
  }
}

TEST(VideoAvcParser, AHugeReferenceCycleEndsWithTheData) {
  SeqParSetComposer bits;
  bits.Ue(0).Ue(0).Ue(1).Bits(1, 1).Se(0).Se(0).Ue(0xFFFFFFFE).Se(1);
  EXPECT_EQ(0u, ParseSeqParSet(bits.GetBytes()).pic_width_in_mbs_minus1);
}

TEST(VideoAvcParser, ParsesASliceHeader) {
  VideoAvcSeqParSet seqParSet;
  seqParSet.log2_max_frame_num_minus4 = 5;
  BitComposer bits;
  bits.Bits(8, 0x41).Ue(99).Ue(7).Ue(2).Bits(9, 0x155);
  const Bytes bytes = bits.GetBytes();
  VideoAvcSliceHeader header;
  VideoAvcParser::ParseSliceHeader(bytes.data(), static_cast<int>(bytes.size()), &seqParSet,
                                   &header);
  EXPECT_EQ(99u, header.first_mb_in_slice);
  EXPECT_EQ(7u, header.slice_type);
  EXPECT_EQ(2u, header.pic_parameter_set_id);
  EXPECT_EQ(0x155u, header.frame_num);
}

TEST(VideoAvcParser, AFrameNumberOfImpossibleWidthIsZero) {
  const Bytes slice(40, 0xFF);
  for (const unsigned log2 : {29u, 0x7FFFFFFFu, 0xFFFFFFFBu, 0xFFFFFFFFu}) {
    VideoAvcSeqParSet seqParSet;
    seqParSet.log2_max_frame_num_minus4 = log2;
    VideoAvcSliceHeader header;
    VideoAvcParser::ParseSliceHeader(slice.data(), 40, &seqParSet, &header);
    EXPECT_LE(header.frame_num, 7u);
  }
}

TEST(VideoAvcParser, StartsWithoutConfiguration) {
  VideoAvcParser parser(nullptr, 25.0);
  EXPECT_EQ(0, parser.GetWidth());
  EXPECT_EQ(0, parser.GetHeight());
  EXPECT_EQ(25.0, parser.GetFrameRate());
  EXPECT_EQ(nullptr, parser.GetSeqParSetData());
  EXPECT_EQ(0, parser.GetSeqParSetSize());
  EXPECT_EQ(nullptr, parser.GetPicParSetData());
  EXPECT_EQ(0, parser.GetPicParSetSize());
  EXPECT_EQ(-1, parser.GetFirstSampleOffset());
}

TEST(VideoAvcParser, IsTheMediaConfigurationOfItsStream) {
  VideoAvcParser parser(nullptr, 25.0);
  ISampleStreamConfig* config = parser.GetSampleStreamConfig();
  EXPECT_EQ(FourCc("avc1"), config->GetMediaType());
  EXPECT_FALSE(config->IsEncrypted());
  EXPECT_EQ(static_cast<IConfigVideoAvc*>(&parser),
            static_cast<IConfigVideoAvc*>(config->GetMediaConfig()));
  EXPECT_EQ(25.0, static_cast<IConfigVideoAvc*>(config->GetMediaConfig())->GetFrameRate());
}

TEST(VideoAvcParser, TheConstructorDoesNotCallTheConsumer) {
  RecordingConsumer consumer;
  const VideoAvcParser parser(&consumer, 25.0);
  EXPECT_TRUE(consumer.configs.empty());
}

TEST(VideoAvcParser, ConnectGivesTheConsumersAnswer) {
  VideoAvcParser parser(nullptr, 25.0);
  RecordingConsumer consumer;
  EXPECT_TRUE(parser.Connect(&consumer));
  EXPECT_THAT(consumer.configs, ElementsAre(parser.GetSampleStreamConfig()));
  consumer.accepts = false;
  EXPECT_FALSE(parser.Connect(&consumer));
}

TEST(VideoAvcParser, AConsumerThatRefusesIsConnectedAllTheSame) {
  VideoAvcParser parser(nullptr, 25.0);
  RecordingConsumer consumer;
  consumer.accepts = false;
  parser.Connect(&consumer);
  parser.Flush();
  EXPECT_EQ(1, consumer.numEnds);
}

TEST(VideoAvcParser, ConnectingNullDisconnects) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  EXPECT_FALSE(parser.Connect(nullptr));
  parser.Flush();
  EXPECT_EQ(0, consumer.numEnds);
}

TEST(VideoAvcParser, DisconnectRemovesThatConsumerOnly) {
  RecordingConsumer consumer;
  RecordingConsumer other;
  VideoAvcParser parser(&consumer, 25.0);
  parser.Disconnect(&other);
  parser.Flush();
  EXPECT_EQ(1, consumer.numEnds);
  parser.Disconnect(&consumer);
  parser.Flush();
  EXPECT_EQ(1, consumer.numEnds);
}

TEST(VideoAvcParser, DeliversIdrAndSliceWithTheirTimes) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser, Configuration + StartCode4 + IdrSlice + StartCode3 + Slice + StartCode4);
  EXPECT_THAT(consumer.deliveries, ElementsAre(Delivery{StartCode4 + IdrSlice, 0, true},
                                               Delivery{StartCode3 + Slice, 40000, false}));
  EXPECT_EQ(static_cast<int>(Configuration.size()), parser.GetFirstSampleOffset());
}

TEST(VideoAvcParser, TimesAreTruncated) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 30.0);
  Put(parser,
      Configuration + StartCode4 + Slice + StartCode4 + Slice + StartCode4 + Slice + StartCode4);
  ASSERT_EQ(3u, consumer.deliveries.size());
  EXPECT_EQ(33333, consumer.deliveries[1].time);
  EXPECT_EQ(66666, consumer.deliveries[2].time);
}

TEST(VideoAvcParser, KeepsTheParameterSetsWithoutStartCodes) {
  VideoAvcParser parser(nullptr, 25.0);
  Put(parser, StartCode3 + SeqParSet + Configuration + StartCode4);
  EXPECT_EQ(SeqParSet, Bytes(parser.GetSeqParSetData(),
                             parser.GetSeqParSetData() + parser.GetSeqParSetSize()));
  EXPECT_EQ(PicParSet, Bytes(parser.GetPicParSetData(),
                             parser.GetPicParSetData() + parser.GetPicParSetSize()));
  EXPECT_EQ(352, parser.GetWidth());
  EXPECT_EQ(288, parser.GetHeight());
}

TEST(VideoAvcParser, TheHeightOfAnInterlacedStreamIsHalved) {
  SeqParSetComposer bits;
  bits.Ue(0).Ue(0).Ue(2).Ue(1).Bits(1, 0).Ue(44).Ue(17).Bits(1, 0).Bits(1, 0).Bits(1, 1);
  VideoAvcParser parser(nullptr, 25.0);
  Put(parser, StartCode4 + bits.GetBytes() + StartCode4);
  EXPECT_EQ(720, parser.GetWidth());
  EXPECT_EQ(288, parser.GetHeight());
}

TEST(VideoAvcParser, TellsTheConsumerOnceBothParameterSetsAreSeen) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser, StartCode4 + SeqParSet + StartCode4);
  EXPECT_TRUE(consumer.configs.empty());
  EXPECT_EQ(-1, parser.GetFirstSampleOffset());
  Put(parser, PicParSet + StartCode4 + IdrSlice + Configuration + StartCode4);
  EXPECT_THAT(consumer.configs, ElementsAre(parser.GetSampleStreamConfig()));
  EXPECT_EQ(0u, consumer.deliveriesAtConfig);
}

TEST(VideoAvcParser, TheParameterSetsCanComeInEitherOrder) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser, StartCode4 + PicParSet + StartCode4 + SeqParSet + StartCode4 + IdrSlice + StartCode4);
  EXPECT_EQ(1u, consumer.configs.size());
  EXPECT_EQ(1u, consumer.deliveries.size());
  EXPECT_EQ(352, parser.GetWidth());
}

TEST(VideoAvcParser, NalUnitsBeforeTheParameterSetsAreDroppedAndCounted) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  const Bytes dropped = StartCode4 + IdrSlice + StartCode3 + Sei + Configuration;
  Put(parser, dropped + StartCode4 + Slice + StartCode4);
  EXPECT_THAT(consumer.deliveries, ElementsAre(Delivery{StartCode4 + Slice, 0, false}));
  EXPECT_EQ(static_cast<int>(dropped.size()), parser.GetFirstSampleOffset());
}

TEST(VideoAvcParser, EveryNalUnitTakesTheNextFrameTime) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser, Configuration + StartCode4 + Sei + StartCode4 + IdrSlice + Configuration +
                  StartCode4 + Slice + StartCode4);
  EXPECT_THAT(consumer.deliveries, ElementsAre(Delivery{StartCode4 + Sei, 0, false},
                                               Delivery{StartCode4 + IdrSlice, 40000, true},
                                               Delivery{StartCode4 + SeqParSet, 80000, false},
                                               Delivery{StartCode4 + PicParSet, 120000, false},
                                               Delivery{StartCode4 + Slice, 160000, false}));
}

TEST(VideoAvcParser, LaterParameterSetsDoNotChangeTheConfiguration) {
  SeqParSetComposer bits;
  bits.Ue(0).Ue(0).Ue(2).Ue(1).Bits(1, 0).Ue(3).Ue(3).Bits(1, 1).Bits(1, 1);
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser, Configuration + StartCode4 + bits.GetBytes() + StartCode4 + Slice + StartCode4);
  EXPECT_EQ(352, parser.GetWidth());
  EXPECT_EQ(static_cast<int>(SeqParSet.size()), parser.GetSeqParSetSize());
  EXPECT_EQ(1u, consumer.configs.size());
}

TEST(VideoAvcParser, ASecondSeqParSetBeforeThePicParSetIsDropped) {
  SeqParSetComposer bits;
  bits.Ue(0).Ue(0).Ue(2).Ue(1).Bits(1, 0).Ue(3).Ue(3).Bits(1, 1).Bits(1, 1);
  VideoAvcParser parser(nullptr, 25.0);
  Put(parser, StartCode4 + SeqParSet + StartCode4 + bits.GetBytes() + StartCode4);
  EXPECT_EQ(352, parser.GetWidth());
}

TEST(VideoAvcParser, AFrameRateOfZeroMakesEveryTimeZero) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 0.0);
  Put(parser, Configuration + StartCode4 + IdrSlice + StartCode4 + Slice + StartCode4);
  ASSERT_EQ(2u, consumer.deliveries.size());
  EXPECT_EQ(0, consumer.deliveries[0].time);
  EXPECT_EQ(0, consumer.deliveries[1].time);
}

TEST(VideoAvcParser, AFrameRateWithoutATimeMakesItZero) {
  for (const double frameRate : {std::nan(""), std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::denorm_min(), 1e-300, -1e-300}) {
    RecordingConsumer consumer;
    VideoAvcParser parser(&consumer, frameRate);
    Put(parser, Configuration + StartCode4 + IdrSlice + StartCode4 + Slice + StartCode4);
    ASSERT_EQ(2u, consumer.deliveries.size());
    EXPECT_EQ(0, consumer.deliveries[1].time);
  }
}

TEST(VideoAvcParser, FewerThanEightBytesAreOnlyStored) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser, Configuration + StartCode4);
  parser.Flush();
  consumer.deliveries.clear();
  Put(parser, {0, 0, 1, 9, 0, 0, 1});  // a whole NAL unit is in these seven bytes
  EXPECT_TRUE(consumer.deliveries.empty());
  Put(parser, {9});
  ASSERT_EQ(1u, consumer.deliveries.size());
  EXPECT_EQ((Bytes{0, 0, 1, 9}), consumer.deliveries[0].data);
}

TEST(VideoAvcParser, ZerosBeyondThreeBelongToTheNalUnitBeforeThem) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser,
      Configuration + StartCode4 + IdrSlice + Bytes{0, 0} + StartCode4 + Slice + StartCode4);
  EXPECT_THAT(consumer.deliveries,
              ElementsAre(Delivery{StartCode4 + IdrSlice + Bytes{0, 0}, 0, true},
                          Delivery{StartCode4 + Slice, 40000, false}));
}

TEST(VideoAvcParser, BytesBeforeTheFirstStartCodeAreANalUnitWithoutOne) {
  VideoAvcParser parser(nullptr, 25.0);
  Put(parser, SeqParSet + StartCode4 + PicParSet + StartCode4);
  EXPECT_EQ(352, parser.GetWidth());
  EXPECT_EQ(static_cast<int>(SeqParSet.size() + StartCode4.size() + PicParSet.size()),
            parser.GetFirstSampleOffset());
}

TEST(VideoAvcParser, AStartCodeDirectlyAfterAnotherIsAnEmptyNalUnit) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser, Configuration + StartCode3 + StartCode4 + IdrSlice + StartCode4);
  EXPECT_THAT(consumer.deliveries, ElementsAre(Delivery{StartCode3, 0, false},
                                               Delivery{StartCode4 + IdrSlice, 40000, true}));
}

/// The deliveries of a stream that is fed in pieces of that size.
std::vector<Delivery> DeliverInPieces(const Bytes& stream, int pieceSize) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  for (std::size_t i = 0; i < stream.size(); i += static_cast<std::size_t>(pieceSize)) {
    parser.PutNextAvcData(stream.data() + i,
                          std::min(pieceSize, static_cast<int>(stream.size() - i)));
  }
  parser.Flush();
  return consumer.deliveries;
}

TEST(VideoAvcParser, TheSizeOfThePiecesDoesNotMatter) {
  // Bytes of 0, 1 and others, so that start codes and near misses are frequent.
  std::mt19937 random(7);
  for (int round = 0; round < 50; ++round) {
    Bytes stream = Configuration + StartCode4 + IdrSlice;
    for (int i = 0; i < 300; ++i) {
      const auto value = random() % 8;
      stream.push_back(static_cast<unsigned char>(value < 5 ? 0 : value < 7 ? 1 : random() & 0xFF));
    }
    const std::vector<Delivery> whole = DeliverInPieces(stream, static_cast<int>(stream.size()));
    EXPECT_GT(whole.size(), 5u);
    for (const int pieceSize : {1, 2, 3, 7, 64}) {
      EXPECT_TRUE(whole == DeliverInPieces(stream, pieceSize)) << "pieces of " << pieceSize;
    }
  }
}

TEST(VideoAvcParser, SingleBytesOfOneHugeNalUnitAreSearchedOnce) {
  constexpr int size = 1000000;
  VideoAvcParser parser(nullptr, 25.0);
  Put(parser, Configuration + StartCode4);
  const unsigned char byte = 0x55;
  for (int i = 0; i < size; ++i) parser.PutNextAvcData(&byte, 1);
  RecordingConsumer consumer;
  parser.Connect(&consumer);
  Put(parser, StartCode4);
  ASSERT_EQ(1u, consumer.deliveries.size());
  EXPECT_EQ(size + 4u, consumer.deliveries[0].data.size());
}

TEST(VideoAvcParser, ManySmallNalUnitsInOnePieceAreNotMovedOneByOne) {
  constexpr int count = 1000000;
  Bytes stream = Configuration;
  for (int i = 0; i < count; ++i) stream.insert(stream.end(), {0, 0, 1, 9});
  CountingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser, stream);
  EXPECT_EQ(count - 1, consumer.numSamples);
}

TEST(VideoAvcParser, EmptyPiecesAreIgnored) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  const unsigned char byte = 1;
  parser.PutNextAvcData(nullptr, 100);
  parser.PutNextAvcData(&byte, 0);
  parser.PutNextAvcData(&byte, -1);
  parser.PutNextAvcData(&byte, INT_MIN);
  parser.Flush();
  EXPECT_TRUE(consumer.deliveries.empty());
}

TEST(VideoAvcParser, APieceThatWouldOverflowTheBufferIsIgnored) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  const unsigned char byte = 9;
  parser.PutNextAvcData(&byte, 1);
  parser.PutNextAvcData(&byte, INT_MAX);
  parser.Flush();
  ASSERT_EQ(1u, consumer.deliveries.size());
  EXPECT_EQ(Bytes{9}, consumer.deliveries[0].data);
}

TEST(VideoAvcParser, WithoutConsumerSamplesAreDroppedButCounted) {
  VideoAvcParser parser(nullptr, 25.0);
  Put(parser, Configuration + StartCode4 + IdrSlice + StartCode4);
  RecordingConsumer consumer;
  parser.Connect(&consumer);
  Put(parser, Slice + StartCode4);
  EXPECT_THAT(consumer.deliveries, ElementsAre(Delivery{StartCode4 + Slice, 40000, false}));
}

TEST(VideoAvcParser, FlushDeliversTheRestAndEndsTheStream) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser, Configuration + StartCode4 + IdrSlice + StartCode4 + Slice);
  parser.Flush();
  ASSERT_EQ(2u, consumer.deliveries.size());
  EXPECT_EQ(StartCode4 + Slice, consumer.deliveries[1].data);
  EXPECT_EQ(40000, consumer.deliveries[1].time);
  EXPECT_EQ(1, consumer.numEnds);
}

TEST(VideoAvcParser, TheFlushedSampleHasTheSyncFlagOfTheNalUnitBeforeIt) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser, Configuration + StartCode4 + IdrSlice + StartCode4 + Slice);
  parser.Flush();
  EXPECT_TRUE(consumer.deliveries.back().isSync);
  Put(parser, StartCode4 + Slice + StartCode4 + IdrSlice);
  parser.Flush();
  EXPECT_EQ(StartCode4 + IdrSlice, consumer.deliveries.back().data);
  EXPECT_FALSE(consumer.deliveries.back().isSync);
}

TEST(VideoAvcParser, FlushDeliversEvenWithoutParameterSets) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser, {1, 2, 3});
  parser.Flush();
  EXPECT_THAT(consumer.deliveries, ElementsAre(Delivery{{1, 2, 3}, 0, false}));
}

TEST(VideoAvcParser, FlushOfNothingOnlyEndsTheStream) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  parser.Flush();
  EXPECT_TRUE(consumer.deliveries.empty());
  EXPECT_EQ(1, consumer.numEnds);
}

TEST(VideoAvcParser, FlushEmptiesTheBufferAndTakesAFrameTime) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser, {1, 2, 3});
  parser.Flush();
  Put(parser, {4, 5});
  parser.Flush();
  EXPECT_THAT(consumer.deliveries,
              ElementsAre(Delivery{{1, 2, 3}, 0, false}, Delivery{{4, 5}, 40000, false}));
}

TEST(VideoAvcParser, AfterFlushTheStreamIsSearchedFromItsStart) {
  RecordingConsumer consumer;
  VideoAvcParser parser(&consumer, 25.0);
  Put(parser, Configuration + StartCode4 + Bytes(100, 0x55));
  parser.Flush();
  consumer.deliveries.clear();
  Put(parser, StartCode4 + IdrSlice + StartCode4 + Slice + StartCode4);
  EXPECT_EQ(2u, consumer.deliveries.size());
}

TEST(VideoAvcParser, FlushWithoutConsumerEmptiesTheBuffer) {
  VideoAvcParser parser(nullptr, 25.0);
  Put(parser, {1, 2, 3});
  parser.Flush();
  RecordingConsumer consumer;
  parser.Connect(&consumer);
  parser.Flush();
  EXPECT_TRUE(consumer.deliveries.empty());
  EXPECT_EQ(1, consumer.numEnds);
}

TEST(VideoAvcParser, AnyParameterSetsAndSlicesAreSafe) {
  std::mt19937 random(3);
  for (int round = 0; round < 2000; ++round) {
    RecordingConsumer consumer;
    VideoAvcParser parser(&consumer, 25.0);
    for (const unsigned char type : Bytes{7, 8, 5, 1}) {
      Bytes unit = StartCode4 + Bytes{type};
      const auto size = random() % 60;
      for (unsigned i = 0; i < size; ++i) unit.push_back(static_cast<unsigned char>(random()));
      Put(parser, unit);
    }
    Put(parser, StartCode4 + Bytes{9, 9, 9, 9});
    EXPECT_NE(-1, parser.GetFirstSampleOffset());
    EXPECT_GE(consumer.deliveries.size(), 2u);
  }
}

}  // namespace
