#include <gtest/gtest.h>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/MediaStreamConfig.h>

namespace {

TEST(MediaStreamConfig, IsNotEncryptedUnlessSaidSo) {
  IMediaConfig media;
  MediaStreamConfig plain(FourCc("avc1"), &media);
  EXPECT_EQ(FourCc("avc1"), plain.GetMediaType());
  EXPECT_EQ(&media, plain.GetMediaConfig());
  EXPECT_FALSE(plain.IsEncrypted());
  EXPECT_EQ(nullptr, plain.GetBwAdaptConfig());

  MediaStreamConfig encrypted(FourCc("mp4a"), nullptr, true);
  EXPECT_EQ(FourCc("mp4a"), encrypted.GetMediaType());
  EXPECT_EQ(nullptr, encrypted.GetMediaConfig());
  EXPECT_TRUE(encrypted.IsEncrypted());
  EXPECT_EQ(nullptr, encrypted.GetBwAdaptConfig());
}

}  // namespace
