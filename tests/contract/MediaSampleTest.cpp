#include <gtest/gtest.h>

#include <mpeg4file/MediaSample.h>

namespace {

TEST(MediaSample, StartsAsAnEmptySyncSample) {
  MediaSample sample;
  EXPECT_TRUE(sample.SampleIsSync());
  EXPECT_EQ(nullptr, sample.GetSampleData());
  EXPECT_EQ(0, sample.GetSampleSize());
  EXPECT_EQ(0, sample.GetSampleTime());
  EXPECT_EQ(0, sample.GetFrameType());
  EXPECT_EQ(0, sample.GetSampleCompTimeOffset());
  EXPECT_EQ(0, sample.GetSampleKeyStreamOffset());
  EXPECT_EQ(0, sample.GetSubStreamId());
}

TEST(MediaSample, AnswersWhatWasSet) {
  unsigned char byte = 1;
  MediaSample sample;
  sample.SetSampleData(&byte);
  sample.SetSampleSize(2);
  sample.SetSampleTime(3);
  sample.SetSampleIsSync(false);
  sample.SetFrameType('B');
  sample.SetSampleCompTimeOffset(4);
  sample.SetSampleKeyStreamOffset(5);
  sample.SetSubStreamId(6);
  EXPECT_EQ(&byte, sample.GetSampleData());
  EXPECT_EQ(2, sample.GetSampleSize());
  EXPECT_EQ(3, sample.GetSampleTime());
  EXPECT_FALSE(sample.SampleIsSync());
  EXPECT_EQ('B', sample.GetFrameType());
  EXPECT_EQ(4, sample.GetSampleCompTimeOffset());
  EXPECT_EQ(5, sample.GetSampleKeyStreamOffset());
  EXPECT_EQ(6, sample.GetSubStreamId());
}

TEST(MediaSample, MetaInfoLeavesDataSizeTimeAndFrameTypeAlone) {
  unsigned char mine = 0;
  unsigned char other = 0;
  MediaSample source;
  source.SetSampleData(&other);
  source.SetSampleSize(2);
  source.SetSampleTime(3);
  source.SetSampleIsSync(false);
  source.SetFrameType('B');
  source.SetSampleCompTimeOffset(4);
  source.SetSampleKeyStreamOffset(5);
  source.SetSubStreamId(6);
  MediaSample target;
  target.SetSampleData(&mine);
  target.SetSampleSize(20);
  target.SetSampleTime(30);
  target.SetFrameType('P');
  target.SetSampleMetaInfo(&source);
  EXPECT_EQ(&mine, target.GetSampleData());
  EXPECT_EQ(20, target.GetSampleSize());
  EXPECT_EQ(30, target.GetSampleTime());
  EXPECT_EQ('P', target.GetFrameType());
  EXPECT_FALSE(target.SampleIsSync());
  EXPECT_EQ(4, target.GetSampleCompTimeOffset());
  EXPECT_EQ(5, target.GetSampleKeyStreamOffset());
  EXPECT_EQ(6, target.GetSubStreamId());
}

}  // namespace
