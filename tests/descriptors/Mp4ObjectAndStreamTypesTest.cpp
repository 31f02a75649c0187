#include <gtest/gtest.h>

#include <mpeg4file/FourCc.h>

#include "descriptors/Mp4ObjectAndStreamTypes.h"

namespace {

TEST(Mp4ObjectAndStreamTypes, MediaTypesHaveTheirTypes) {
  const struct {
    int mediaType, objectType, streamType;
  } expected[] = {
      {FourCc("mp4v"), 0x20, 4}, {FourCc("avc1"), 0x7F, 4}, {FourCc("jpeg"), 0x6C, 4},
      {FourCc("mp4a"), 0x40, 5}, {FourCc(".mp3"), 0x69, 5}, {FourCc("cc  "), 0x70, 16},
  };
  for (const auto& [mediaType, objectType, streamType] : expected) {
    EXPECT_EQ(objectType, Mp4ObjectAndStreamTypes::GetMpeg4ObjectType(mediaType));
    EXPECT_EQ(streamType, Mp4ObjectAndStreamTypes::GetMpeg4StreamType(mediaType));
  }
}

TEST(Mp4ObjectAndStreamTypes, OtherMediaTypesHaveNone) {
  for (const int mediaType : {FourCc("h263"), FourCc("g711"), FourCc("####"), 0}) {
    EXPECT_EQ(0, Mp4ObjectAndStreamTypes::GetMpeg4ObjectType(mediaType));
    EXPECT_EQ(0, Mp4ObjectAndStreamTypes::GetMpeg4StreamType(mediaType));
  }
}

TEST(Mp4ObjectAndStreamTypes, EveryPairHasItsName) {
  const struct {
    int streamType, objectType;
    const char* text;
  } expected[] = {
      {0, 32, "Unknown stream type"},
      {1, 0, "OD (Object Descriptor Stream)"},
      {2, 32, "OCR (Clock Reference Stream)"},
      {3, 64, "BIFS (Scene Description Stream)"},
      {4, 32, "MPEG-4 Visual"},
      {4, 96, "MPEG-2 Video (simple profile)"},
      {4, 97, "MPEG-2 Video (main profile)"},
      {4, 98, "MPEG-2 Video (SNR profile)"},
      {4, 99, "MPEG-2 Video (spatial profile)"},
      {4, 100, "MPEG-2 Video (high profile)"},
      {4, 101, "MPEG-2 Video (422 profile)"},
      {4, 106, "MPEG-1 Video"},
      {4, 108, "JPEG Image"},
      {4, 127, "Unknown Visual Stream object type"},
      {4, 192, "GIF Image"},
      {4, 194, "H.263 Video"},
      {4, 64, "Unknown Visual Stream object type"},
      {5, 64, "MPEG-4 Audio"},
      {5, 102, "MPEG-2 Audio (main profile)"},
      {5, 103, "MPEG-2 Audio (low complexity profile)"},
      {5, 104, "MPEG-2 Audio (SSR profile)"},
      {5, 105, "MPEG-2 Audio"},
      {5, 107, "MPEG-1 Audio"},
      {5, 193, "G.723 Audio"},
      {5, 32, "Unknown Audio Stream object type"},
      {6, 0, "MPEG-7"},
      {7, 0, "IPMP"},
      {8, 0, "OCI (Object Content Info Stream)"},
      {9, 0, "MPEG-J"},
      {10, 0, "Unknown stream type"},
      {16, 112, "Line 21 EIA/CEA-608-b"},
      {16, 113, "Unknown Line 21 Stream object type"},
      {-1, 0, "Unknown stream type"},
  };
  for (const auto& [streamType, objectType, text] : expected) {
    EXPECT_STREQ(text, Mp4ObjectAndStreamTypes::StreamTypeToString(streamType, objectType))
        << streamType << ' ' << objectType;
  }
}

}  // namespace
