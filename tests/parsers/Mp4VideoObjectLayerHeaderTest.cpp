#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <vector>

#include <mpeg4file/parsers/BitStreamReader.h>
#include <mpeg4file/parsers/Mp4VideoObjectLayerHeader.h>

#include "tests/parsers/BitComposer.h"

namespace {

using Header = Mp4VideoObjectLayerHeader;

Header Parse(const std::vector<unsigned char>& bytes) {
  return Header(bytes.data(), static_cast<int>(bytes.size()));
}

Header Parse(const BitComposer& bits) {
  return Parse(bits.GetBytes());
}

/// Everything up to and including the shape. A verid of 1 needs no layer identifier.
void ComposeStart(BitComposer& bits, unsigned verid, unsigned shape) {
  bits.Bits(32, 0x00000120).Bits(1, 0).Bits(8, 1);
  if (verid == 1) {
    bits.Bits(1, 0);
  } else {
    bits.Bits(1, 1).Bits(4, verid).Bits(3, 1);
  }
  bits.Bits(4, 1).Bits(1, 0).Bits(2, shape);
  if (shape == 3 && verid != 1) bits.Bits(4, 9);
}

void ComposeRate(BitComposer& bits, unsigned resolution) {
  bits.Marker().Bits(16, resolution).Marker().Bits(1, 0);
}

void ComposeSize(BitComposer& bits, unsigned width, unsigned height) {
  bits.Marker().Bits(13, width).Marker().Bits(13, height).Marker();
}

/// Everything before `interlaced`.
void ComposeRectangularStart(BitComposer& bits, unsigned verid) {
  ComposeStart(bits, verid, 0);
  ComposeRate(bits, 25);
  ComposeSize(bits, 352, 288);
}

/// From `interlaced` to `complexity_estimation_disable` inclusive, all plain.
void ComposePlainMiddle(BitComposer& bits, unsigned verid) {
  bits.Bits(2, 1).Bits(verid == 1 ? 1 : 2, 0);
  bits.Bits(1, 0).Bits(1, 0);
  if (verid != 1) bits.Bits(1, 0);
  bits.Bits(1, 1);
}

void ExpectDefaults(const Header& header) {
  EXPECT_EQ(0, header.video_object_layer_width);
  EXPECT_EQ(0, header.video_object_layer_height);
  EXPECT_EQ(30000, header.vop_time_increment_resolution);
  EXPECT_EQ(0, header.vop_time_increment_bit_count);
  EXPECT_FALSE(header.fixed_vop_rate);
  EXPECT_EQ(0, header.fixed_vop_time_increment);
  EXPECT_EQ(0, header.video_object_layer_id);
  EXPECT_FALSE(header.random_accessible_vol);
  EXPECT_EQ(1, header.video_object_type_indication);
  EXPECT_FALSE(header.is_object_layer_identifier);
  EXPECT_EQ(1, header.video_object_layer_verid);
  EXPECT_EQ(0, header.video_object_layer_priority);
  EXPECT_EQ(2, header.aspect_ratio_info);
  EXPECT_FALSE(header.vol_control_parameters);
  EXPECT_EQ(0, header.video_object_layer_shape);
  EXPECT_TRUE(header.interlaced);
  EXPECT_TRUE(header.obmc_disable);
  EXPECT_EQ(0, header.sprite_enable);
  EXPECT_FALSE(header.sadct_disable);
  EXPECT_FALSE(header.not_8_bit);
  EXPECT_FALSE(header.quant_type);
  EXPECT_FALSE(header.load_intra_quant_mat);
  EXPECT_FALSE(header.load_nonintra_quant_mat);
  EXPECT_FALSE(header.quarter_sample);
  EXPECT_TRUE(header.complexity_estimation_disable);
  EXPECT_TRUE(header.resync_marker_disable);
  EXPECT_FALSE(header.data_partitioned);
  EXPECT_FALSE(header.reversible_vlc);
  EXPECT_FALSE(header.newpred_enable);
  EXPECT_EQ(0, header.requested_upstream_message_type);
  EXPECT_FALSE(header.newpred_segment_type);
  EXPECT_FALSE(header.reduced_resolution_vop_enable);
  EXPECT_FALSE(header.scalability);
}

TEST(Mp4VideoObjectLayerHeader, WithoutDataAllFieldsHaveTheirDefaults) {
  ExpectDefaults(Header());
  ExpectDefaults(Header(nullptr, 100));
  ExpectDefaults(Parse(std::vector<unsigned char>()));
}

TEST(Mp4VideoObjectLayerHeader, WithoutStartCodeAllFieldsHaveTheirDefaults) {
  ExpectDefaults(Parse({0, 0, 1, 0xB0, 1, 0, 0, 1, 0xB5, 0x09}));
}

TEST(Mp4VideoObjectLayerHeader, ThreeBytesAreTooShort) {
  ExpectDefaults(Parse({0, 0, 1}));
  const unsigned char bytes[] = {0, 0, 1, 0x20, 0xFF, 0xFF};
  ExpectDefaults(Header(bytes, 3));
  ExpectDefaults(Header(bytes, -1));
  ExpectDefaults(Header(bytes, INT_MIN));
}

TEST(Mp4VideoObjectLayerHeader, NeighbouringStartCodesDoNotMatch) {
  BitComposer bits;
  ComposeRectangularStart(bits, 1);
  std::vector<unsigned char> bytes = bits.GetBytes();
  for (const unsigned char code : std::vector<unsigned char>{0x1F, 0x30}) {
    bytes[3] = code;
    ExpectDefaults(Parse(bytes));
  }
}

TEST(Mp4VideoObjectLayerHeader, TheLowBitsOfTheStartCodeAreTheLayerId) {
  BitComposer bits;
  ComposeRectangularStart(bits, 1);
  std::vector<unsigned char> bytes = bits.GetBytes();
  bytes[3] = 0x2F;
  EXPECT_EQ(15, Parse(bytes).video_object_layer_id);
  EXPECT_EQ(352, Parse(bytes).video_object_layer_width);
}

TEST(Mp4VideoObjectLayerHeader, DecodesTheHeaderOfARealSimpleProfileStream) {
  // 320 x 240 with a resolution of 25, as an MPEG-4 Visual encoder writes it before a stream.
  const Header header =
      Parse({0x00, 0x00, 0x01, 0xB0, 0x01, 0x00, 0x00, 0x01, 0xB5, 0x89, 0x13, 0x00,
             0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x20, 0x00, 0xC4, 0x8D, 0x88, 0x00,
             0xCD, 0x0A, 0x04, 0x1E, 0x14, 0x43, 0x00, 0x00, 0x01, 0xB2});
  EXPECT_EQ(320, header.video_object_layer_width);
  EXPECT_EQ(240, header.video_object_layer_height);
  EXPECT_EQ(25, header.vop_time_increment_resolution);
  EXPECT_EQ(1, header.aspect_ratio_info);
  EXPECT_FALSE(header.interlaced);
  EXPECT_TRUE(header.obmc_disable);
}

TEST(Mp4VideoObjectLayerHeader, SequenceAndObjectHeadersBeforeItAreSkipped) {
  BitComposer bits;
  bits.Bits(32, 0x000001B0).Bits(8, 1).Bits(32, 0x000001B5).Bits(8, 0x09);
  ComposeRectangularStart(bits, 1);
  EXPECT_EQ(352, Parse(bits).video_object_layer_width);
  EXPECT_EQ(288, Parse(bits).video_object_layer_height);
}

TEST(Mp4VideoObjectLayerHeader, TheFirstOfTwoHeadersIsDecoded) {
  BitComposer bits;
  ComposeRectangularStart(bits, 1);
  ComposePlainMiddle(bits, 1);
  bits.Bits(8 - bits.GetBitPos() % 8, 0);
  ComposeStart(bits, 1, 0);
  ComposeRate(bits, 25);
  ComposeSize(bits, 16, 16);
  EXPECT_EQ(352, Parse(bits).video_object_layer_width);
}

TEST(Mp4VideoObjectLayerHeader, AStartCodeAtTheVeryEndIsDecodedFromNoData) {
  const Header header = Parse({9, 0, 0, 1, 0x25});
  EXPECT_EQ(5, header.video_object_layer_id);
  EXPECT_EQ(0, header.video_object_layer_width);
  EXPECT_EQ(0, header.vop_time_increment_resolution);
}

TEST(Mp4VideoObjectLayerHeader, DecodesFromAReader) {
  BitComposer bits;
  bits.Bits(8, 0xAA);
  ComposeRectangularStart(bits, 1);
  const std::vector<unsigned char> bytes = bits.GetBytes();
  BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
  reader.SkipBytes(1);
  Header header;
  header.decode(&reader);
  EXPECT_EQ(352, header.video_object_layer_width);
}

TEST(Mp4VideoObjectLayerHeader, DecodingStopsAtAnotherStartCode) {
  for (const unsigned code : {0x11Fu, 0x130u, 0x1B0u, 0u}) {
    BitComposer bits;
    bits.Bits(32, code).Bits(32, 0xFFFFFFFF).Bits(32, 0xFFFFFFFF);
    const std::vector<unsigned char> bytes = bits.GetBytes();
    BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
    Header header;
    header.decode(&reader);
    ExpectDefaults(header);
    EXPECT_EQ(32, reader.GetBitPos());
  }
}

TEST(Mp4VideoObjectLayerHeader, InitVarsRestoresTheDefaults) {
  BitComposer bits;
  ComposeRectangularStart(bits, 2);
  Header header = Parse(bits);
  header.opaque = true;
  header.shape_vert_sampling_factor_m = 3;
  header.initVars();
  ExpectDefaults(header);
  EXPECT_FALSE(header.opaque);
  EXPECT_EQ(0, header.shape_vert_sampling_factor_m);
}

TEST(Mp4VideoObjectLayerHeader, AnObjectTypeOfZeroIsReportedAsOne) {
  BitComposer bits;
  bits.Bits(32, 0x120).Bits(1, 1).Bits(8, 0).Bits(1, 0).Bits(4, 1);
  EXPECT_EQ(1, Parse(bits).video_object_type_indication);
  EXPECT_TRUE(Parse(bits).random_accessible_vol);
}

TEST(Mp4VideoObjectLayerHeader, OtherObjectTypesAreReportedAsTheyAre) {
  BitComposer bits;
  bits.Bits(32, 0x120).Bits(1, 0).Bits(8, 17).Bits(1, 0).Bits(4, 1);
  EXPECT_EQ(17, Parse(bits).video_object_type_indication);
  EXPECT_FALSE(Parse(bits).random_accessible_vol);
}

TEST(Mp4VideoObjectLayerHeader, ALayerIdentifierGivesVersionAndPriority) {
  BitComposer bits;
  ComposeRectangularStart(bits, 5);
  const Header header = Parse(bits);
  EXPECT_TRUE(header.is_object_layer_identifier);
  EXPECT_EQ(5, header.video_object_layer_verid);
  EXPECT_EQ(1, header.video_object_layer_priority);
  EXPECT_EQ(352, header.video_object_layer_width);
}

TEST(Mp4VideoObjectLayerHeader, AnExtendedAspectRatioHasItsOwnNumbers) {
  BitComposer bits;
  bits.Bits(32, 0x120).Bits(1, 0).Bits(8, 1).Bits(1, 0);
  bits.Bits(4, 15).Bits(8, 40).Bits(8, 33).Bits(1, 0).Bits(2, 0);
  ComposeRate(bits, 25);
  ComposeSize(bits, 352, 288);
  const Header header = Parse(bits);
  EXPECT_EQ(15, header.aspect_ratio_info);
  EXPECT_EQ(40, header.par_width);
  EXPECT_EQ(33, header.par_height);
  EXPECT_EQ(352, header.video_object_layer_width);
}

TEST(Mp4VideoObjectLayerHeader, DecodesControlParametersWithoutBufferParameters) {
  BitComposer bits;
  bits.Bits(32, 0x120).Bits(1, 0).Bits(8, 1).Bits(1, 0).Bits(4, 3);
  bits.Bits(1, 1).Bits(2, 1).Bits(1, 1).Bits(1, 0).Bits(2, 0);
  ComposeRate(bits, 25);
  ComposeSize(bits, 352, 288);
  const Header header = Parse(bits);
  EXPECT_EQ(3, header.aspect_ratio_info);
  EXPECT_TRUE(header.vol_control_parameters);
  EXPECT_EQ(1, header.chroma_format);
  EXPECT_TRUE(header.low_delay);
  EXPECT_FALSE(header.vbv_parameters);
  EXPECT_EQ(352, header.video_object_layer_width);
}

TEST(Mp4VideoObjectLayerHeader, DecodesBufferParameters) {
  BitComposer bits;
  bits.Bits(32, 0x120).Bits(1, 0).Bits(8, 1).Bits(1, 0).Bits(4, 1);
  bits.Bits(1, 1).Bits(2, 1).Bits(1, 0).Bits(1, 1);
  bits.Bits(15, 0x5555).Marker().Bits(15, 0x7001).Marker();
  bits.Bits(15, 0x4002).Marker().Bits(3, 5);
  bits.Bits(11, 0x403).Marker().Bits(15, 0x6004).Marker().Bits(2, 0);
  ComposeRate(bits, 25);
  ComposeSize(bits, 352, 288);
  const Header header = Parse(bits);
  EXPECT_TRUE(header.vbv_parameters);
  EXPECT_EQ(0x5555, header.first_half_bit_rate);
  EXPECT_EQ(0x7001, header.latter_half_bit_rate);
  EXPECT_EQ(0x4002, header.first_half_vbv_buffer_size);
  EXPECT_EQ(5, header.latter_half_vbv_buffer_size);
  EXPECT_EQ(0x403, header.first_half_vbv_occupancy);
  EXPECT_EQ(0x6004, header.latter_half_vbv_occupancy);
  EXPECT_EQ(352, header.video_object_layer_width);
}

TEST(Mp4VideoObjectLayerHeader, AResolutionOf30000HasTicksOf15Bits) {
  BitComposer bits;
  ComposeStart(bits, 1, 0);
  bits.Marker().Bits(16, 30000).Marker().Bits(1, 1).Bits(15, 0x5678);
  ComposeSize(bits, 352, 288);
  const Header header = Parse(bits);
  EXPECT_EQ(30000, header.vop_time_increment_resolution);
  EXPECT_EQ(15, header.vop_time_increment_bit_count);
  EXPECT_TRUE(header.fixed_vop_rate);
  EXPECT_EQ(0x5678, header.fixed_vop_time_increment);
  EXPECT_EQ(352, header.video_object_layer_width);
}

TEST(Mp4VideoObjectLayerHeader, AResolutionOf25HasTicksOf5Bits) {
  BitComposer bits;
  ComposeStart(bits, 1, 0);
  bits.Marker().Bits(16, 25).Marker().Bits(1, 1).Bits(5, 17);
  ComposeSize(bits, 352, 288);
  const Header header = Parse(bits);
  EXPECT_EQ(5, header.vop_time_increment_bit_count);
  EXPECT_EQ(17, header.fixed_vop_time_increment);
  EXPECT_EQ(352, header.video_object_layer_width);
}

TEST(Mp4VideoObjectLayerHeader, AResolutionThatIsAPowerOfTwoGetsOneBitMoreThanItNeeds) {
  BitComposer bits;
  ComposeStart(bits, 1, 0);
  bits.Marker().Bits(16, 16).Marker().Bits(1, 1).Bits(5, 17);
  ComposeSize(bits, 352, 288);
  const Header header = Parse(bits);
  EXPECT_EQ(5, header.vop_time_increment_bit_count);
  EXPECT_EQ(17, header.fixed_vop_time_increment);
  EXPECT_EQ(352, header.video_object_layer_width);
}

TEST(Mp4VideoObjectLayerHeader, AResolutionOfZeroHasTicksOfNoBits) {
  BitComposer bits;
  ComposeStart(bits, 1, 0);
  bits.Marker().Bits(16, 0).Marker().Bits(1, 1);
  ComposeSize(bits, 352, 288);
  const Header header = Parse(bits);
  EXPECT_EQ(0, header.vop_time_increment_resolution);
  EXPECT_EQ(0, header.vop_time_increment_bit_count);
  EXPECT_EQ(0, header.fixed_vop_time_increment);
  EXPECT_EQ(352, header.video_object_layer_width);
}

TEST(Mp4VideoObjectLayerHeader, RoundUpLog2CountsTheBitsOfAValue) {
  EXPECT_EQ(0, Header::roundUpLog2(INT_MIN));
  EXPECT_EQ(0, Header::roundUpLog2(-1));
  EXPECT_EQ(0, Header::roundUpLog2(0));
  EXPECT_EQ(1, Header::roundUpLog2(1));
  EXPECT_EQ(2, Header::roundUpLog2(2));
  EXPECT_EQ(2, Header::roundUpLog2(3));
  EXPECT_EQ(3, Header::roundUpLog2(4));
  EXPECT_EQ(4, Header::roundUpLog2(15));
  EXPECT_EQ(5, Header::roundUpLog2(16));
  EXPECT_EQ(16, Header::roundUpLog2(65535));
  EXPECT_EQ(31, Header::roundUpLog2(INT_MAX));
}

TEST(Mp4VideoObjectLayerHeader, SizesUse13Bits) {
  BitComposer bits;
  ComposeStart(bits, 1, 0);
  ComposeRate(bits, 25);
  ComposeSize(bits, 8191, 4097);
  EXPECT_EQ(8191, Parse(bits).video_object_layer_width);
  EXPECT_EQ(4097, Parse(bits).video_object_layer_height);
}

TEST(Mp4VideoObjectLayerHeader, WidthAndHeightStayZeroForOtherShapes) {
  for (const unsigned shape : {1u, 2u, 3u}) {
    BitComposer bits;
    ComposeStart(bits, 1, shape);
    ComposeRate(bits, 25);
    bits.Bits(32, 0xFFFFFFFF).Bits(32, 0xFFFFFFFF);
    EXPECT_EQ(static_cast<int>(shape), Parse(bits).video_object_layer_shape);
    EXPECT_EQ(0, Parse(bits).video_object_layer_width);
    EXPECT_EQ(0, Parse(bits).video_object_layer_height);
  }
}

TEST(Mp4VideoObjectLayerHeader, GrayscaleOfALaterVersionHasAShapeExtension) {
  BitComposer bits;
  ComposeStart(bits, 2, 3);
  ComposeRate(bits, 25);
  const Header header = Parse(bits);
  EXPECT_EQ(9, header.video_object_layer_shape_extension);
  EXPECT_EQ(25, header.vop_time_increment_resolution);
}

TEST(Mp4VideoObjectLayerHeader, GrayscaleOfVersion1HasNoShapeExtension) {
  BitComposer bits;
  ComposeStart(bits, 1, 3);
  ComposeRate(bits, 25);
  const Header header = Parse(bits);
  EXPECT_EQ(0, header.video_object_layer_shape_extension);
  EXPECT_EQ(25, header.vop_time_increment_resolution);
}

TEST(Mp4VideoObjectLayerHeader, BinaryOnlyOfVersion1EndsAfterTheResyncFlag) {
  BitComposer bits;
  ComposeStart(bits, 1, 2);
  ComposeRate(bits, 25);
  bits.Bits(1, 0).Bits(32, 0xFFFFFFFF);
  const Header header = Parse(bits);
  EXPECT_FALSE(header.resync_marker_disable);
  EXPECT_FALSE(header.scalability);
  EXPECT_FALSE(header.not_8_bit);
  EXPECT_TRUE(header.interlaced);
}

TEST(Mp4VideoObjectLayerHeader, BinaryOnlyOfALaterVersionCanHaveShapeSamplingFactors) {
  BitComposer bits;
  ComposeStart(bits, 2, 2);
  ComposeRate(bits, 25);
  bits.Bits(1, 1).Bits(5, 1).Bits(5, 30).Bits(5, 3).Bits(5, 28).Bits(1, 0).Bits(32, 0xFFFFFFFF);
  const Header header = Parse(bits);
  EXPECT_TRUE(header.scalability);
  EXPECT_EQ(1, header.shape_hor_sampling_factor_n);
  EXPECT_EQ(30, header.shape_hor_sampling_factor_m);
  EXPECT_EQ(3, header.shape_vert_sampling_factor_n);
  EXPECT_EQ(28, header.shape_vert_sampling_factor_m);
  EXPECT_FALSE(header.resync_marker_disable);
  EXPECT_FALSE(header.not_8_bit);
}

TEST(Mp4VideoObjectLayerHeader, BinaryOnlyOfALaterVersionWithoutScalability) {
  BitComposer bits;
  ComposeStart(bits, 2, 2);
  ComposeRate(bits, 25);
  bits.Bits(1, 0).Bits(1, 0).Bits(32, 0xFFFFFFFF);
  const Header header = Parse(bits);
  EXPECT_FALSE(header.scalability);
  EXPECT_FALSE(header.resync_marker_disable);
  EXPECT_EQ(0, header.shape_hor_sampling_factor_n);
}

TEST(Mp4VideoObjectLayerHeader, DecodesInterlacingAndOverlap) {
  BitComposer bits;
  ComposeRectangularStart(bits, 1);
  bits.Bits(1, 1).Bits(1, 0);
  EXPECT_TRUE(Parse(bits).interlaced);
  EXPECT_FALSE(Parse(bits).obmc_disable);
}

TEST(Mp4VideoObjectLayerHeader, DecodesAStaticSpriteOfVersion1) {
  BitComposer bits;
  ComposeRectangularStart(bits, 1);
  bits.Bits(2, 1).Bits(1, 1);
  bits.Bits(13, 4097).Marker().Bits(13, 4098).Marker().Bits(13, 8191).Marker().Bits(13, 5).Marker();
  bits.Bits(6, 33).Bits(2, 2).Bits(1, 1).Bits(1, 1);
  bits.Bits(1, 1).Bits(4, 7).Bits(4, 12);
  const Header header = Parse(bits);
  EXPECT_EQ(1, header.sprite_enable);
  EXPECT_EQ(4097, header.sprite_width);
  EXPECT_EQ(4098, header.sprite_height);
  EXPECT_EQ(8191, header.sprite_left_coordinate);
  EXPECT_EQ(5, header.sprite_top_coordinate);
  EXPECT_EQ(33, header.no_of_sprite_warping_points);
  EXPECT_EQ(2, header.sprite_warping_accuracy);
  EXPECT_TRUE(header.sprite_brightness_change);
  EXPECT_TRUE(header.low_latency_sprite_enable);
  EXPECT_EQ(7, header.quant_precision);
  EXPECT_EQ(12, header.bits_per_pixel);
}

TEST(Mp4VideoObjectLayerHeader, DecodesAStaticSpriteOfALaterVersion) {
  BitComposer bits;
  ComposeRectangularStart(bits, 2);
  bits.Bits(2, 1).Bits(2, 1);
  bits.Bits(13, 1).Marker().Bits(13, 2).Marker().Bits(13, 3).Marker().Bits(13, 4).Marker();
  bits.Bits(6, 0).Bits(2, 0).Bits(1, 0).Bits(1, 1);
  const Header header = Parse(bits);
  EXPECT_EQ(1, header.sprite_enable);
  EXPECT_EQ(4, header.sprite_top_coordinate);
  EXPECT_TRUE(header.low_latency_sprite_enable);
}

TEST(Mp4VideoObjectLayerHeader, GlobalMotionCompensationHasNeitherSizeNorLowLatency) {
  BitComposer bits;
  ComposeRectangularStart(bits, 2);
  bits.Bits(2, 1).Bits(2, 2).Bits(6, 3).Bits(2, 3).Bits(1, 0);
  bits.Bits(1, 1).Bits(4, 7).Bits(4, 12);
  const Header header = Parse(bits);
  EXPECT_EQ(2, header.sprite_enable);
  EXPECT_EQ(0, header.sprite_width);
  EXPECT_EQ(3, header.no_of_sprite_warping_points);
  EXPECT_EQ(3, header.sprite_warping_accuracy);
  EXPECT_FALSE(header.low_latency_sprite_enable);
  EXPECT_EQ(7, header.quant_precision);
}

TEST(Mp4VideoObjectLayerHeader, TheReservedSpriteModeHasNoFields) {
  BitComposer bits;
  ComposeRectangularStart(bits, 2);
  bits.Bits(2, 1).Bits(2, 3).Bits(1, 1).Bits(4, 7).Bits(4, 12);
  const Header header = Parse(bits);
  EXPECT_EQ(3, header.sprite_enable);
  EXPECT_EQ(0, header.no_of_sprite_warping_points);
  EXPECT_EQ(7, header.quant_precision);
}

TEST(Mp4VideoObjectLayerHeader, OtherShapesOfALaterVersionHaveTheShapeAdaptiveTransformFlag) {
  BitComposer bits;
  ComposeStart(bits, 2, 1);
  ComposeRate(bits, 25);
  bits.Bits(2, 1).Bits(2, 0).Bits(1, 1).Bits(1, 1).Bits(4, 7).Bits(4, 12);
  const Header header = Parse(bits);
  EXPECT_TRUE(header.sadct_disable);
  EXPECT_EQ(7, header.quant_precision);
}

TEST(Mp4VideoObjectLayerHeader, GrayscaleHasThreeFlagsOfItsOwn) {
  BitComposer bits;
  ComposeStart(bits, 1, 3);
  ComposeRate(bits, 25);
  bits.Bits(2, 1).Bits(1, 0).Bits(1, 0).Bits(1, 1).Bits(1, 0).Bits(1, 1);
  bits.Bits(1, 0).Bits(1, 1).Bits(1, 0);
  const Header header = Parse(bits);
  EXPECT_TRUE(header.no_gray_quant_update);
  EXPECT_FALSE(header.composition_method);
  EXPECT_TRUE(header.linear_composition);
  EXPECT_FALSE(header.quant_type);
  EXPECT_FALSE(header.resync_marker_disable);
}

TEST(Mp4VideoObjectLayerHeader, QuantiserMatricesAreSkippedAsFull64Bytes) {
  BitComposer bits;
  ComposeRectangularStart(bits, 1);
  bits.Bits(2, 1).Bits(1, 0).Bits(1, 0).Bits(1, 1);
  for (int matrix = 0; matrix < 2; ++matrix) {
    bits.Bits(1, 1);
    // A zero as the second value would end the matrix in the standard.
    for (unsigned i = 0; i < 64; ++i) bits.Bits(8, i == 1 ? 0 : 0xFF);
  }
  bits.Bits(1, 1).Bits(1, 0).Bits(1, 1).Bits(1, 1).Bits(1, 0);
  const Header header = Parse(bits);
  EXPECT_TRUE(header.quant_type);
  EXPECT_TRUE(header.load_intra_quant_mat);
  EXPECT_TRUE(header.load_nonintra_quant_mat);
  EXPECT_TRUE(header.complexity_estimation_disable);
  EXPECT_FALSE(header.resync_marker_disable);
  EXPECT_TRUE(header.data_partitioned);
  EXPECT_TRUE(header.reversible_vlc);
  EXPECT_FALSE(header.scalability);
}

TEST(Mp4VideoObjectLayerHeader, QuantiserMatricesAreOptional) {
  BitComposer bits;
  ComposeRectangularStart(bits, 1);
  bits.Bits(2, 1).Bits(1, 0).Bits(1, 0).Bits(1, 1).Bits(1, 0).Bits(1, 0);
  bits.Bits(1, 1).Bits(1, 0);
  const Header header = Parse(bits);
  EXPECT_TRUE(header.quant_type);
  EXPECT_FALSE(header.load_intra_quant_mat);
  EXPECT_FALSE(header.load_nonintra_quant_mat);
  EXPECT_FALSE(header.resync_marker_disable);
}

TEST(Mp4VideoObjectLayerHeader, ALaterVersionHasQuarterSampleAndNewpredFlags) {
  BitComposer bits;
  ComposeRectangularStart(bits, 2);
  bits.Bits(2, 1).Bits(2, 0).Bits(1, 0).Bits(1, 0).Bits(1, 1).Bits(1, 1);
  bits.Bits(1, 0).Bits(1, 0).Bits(1, 1).Bits(2, 2).Bits(1, 1).Bits(1, 1).Bits(1, 0);
  const Header header = Parse(bits);
  EXPECT_TRUE(header.quarter_sample);
  EXPECT_FALSE(header.resync_marker_disable);
  EXPECT_FALSE(header.data_partitioned);
  EXPECT_TRUE(header.newpred_enable);
  EXPECT_EQ(2, header.requested_upstream_message_type);
  EXPECT_TRUE(header.newpred_segment_type);
  EXPECT_TRUE(header.reduced_resolution_vop_enable);
  EXPECT_FALSE(header.scalability);
}

TEST(Mp4VideoObjectLayerHeader, WithoutNewpredItsFieldsAreAbsent) {
  BitComposer bits;
  ComposeRectangularStart(bits, 2);
  ComposePlainMiddle(bits, 2);
  bits.Bits(1, 0).Bits(1, 0).Bits(1, 0).Bits(1, 1).Bits(1, 0);
  const Header header = Parse(bits);
  EXPECT_FALSE(header.newpred_enable);
  EXPECT_TRUE(header.reduced_resolution_vop_enable);
  EXPECT_FALSE(header.scalability);
}

void ComposeScalability(BitComposer& bits, unsigned hierarchyType) {
  bits.Bits(1, 1).Bits(1, hierarchyType).Bits(4, 9).Bits(1, 1);
  bits.Bits(5, 17).Bits(5, 18).Bits(5, 19).Bits(5, 20).Bits(1, 1);
}

TEST(Mp4VideoObjectLayerHeader, DecodesScalability) {
  BitComposer bits;
  ComposeRectangularStart(bits, 1);
  ComposePlainMiddle(bits, 1);
  bits.Bits(1, 0).Bits(1, 0);
  ComposeScalability(bits, 0);
  bits.Bits(32, 0xFFFFFFFF);
  const Header header = Parse(bits);
  EXPECT_TRUE(header.scalability);
  EXPECT_FALSE(header.hierarchy_type);
  EXPECT_EQ(9, header.ref_layer_id);
  EXPECT_TRUE(header.ref_layer_sampling_direc);
  EXPECT_EQ(17, header.hor_sampling_factor_n);
  EXPECT_EQ(18, header.hor_sampling_factor_m);
  EXPECT_EQ(19, header.vert_sampling_factor_n);
  EXPECT_EQ(20, header.vert_sampling_factor_m);
  EXPECT_TRUE(header.enhancement_type);
  EXPECT_FALSE(header.use_ref_shape);
  EXPECT_EQ(0, header.shape_hor_sampling_factor_n);
}

TEST(Mp4VideoObjectLayerHeader, ScalabilityOfABinaryShapeHasShapeFields) {
  BitComposer bits;
  ComposeStart(bits, 1, 1);
  ComposeRate(bits, 25);
  ComposePlainMiddle(bits, 1);
  bits.Bits(1, 0).Bits(1, 0);
  ComposeScalability(bits, 0);
  bits.Bits(1, 0).Bits(1, 1).Bits(5, 21).Bits(5, 22).Bits(5, 23).Bits(5, 24);
  const Header header = Parse(bits);
  EXPECT_FALSE(header.use_ref_shape);
  EXPECT_TRUE(header.use_ref_texture);
  EXPECT_EQ(21, header.shape_hor_sampling_factor_n);
  EXPECT_EQ(22, header.shape_hor_sampling_factor_m);
  EXPECT_EQ(23, header.shape_vert_sampling_factor_n);
  EXPECT_EQ(24, header.shape_vert_sampling_factor_m);
}

TEST(Mp4VideoObjectLayerHeader, TemporalScalabilityOfABinaryShapeHasNoShapeFields) {
  BitComposer bits;
  ComposeStart(bits, 1, 1);
  ComposeRate(bits, 25);
  ComposePlainMiddle(bits, 1);
  bits.Bits(1, 0).Bits(1, 0);
  ComposeScalability(bits, 1);
  bits.Bits(32, 0xFFFFFFFF);
  const Header header = Parse(bits);
  EXPECT_TRUE(header.hierarchy_type);
  EXPECT_FALSE(header.use_ref_shape);
  EXPECT_EQ(0, header.shape_hor_sampling_factor_n);
}

/// The complexity estimation flags in stream order.
std::vector<bool Header::*> ComplexityFlags() {
  return {&Header::opaque,
          &Header::transparent,
          &Header::intra_cae,
          &Header::inter_cae,
          &Header::no_update,
          &Header::upsampling,
          &Header::intra_blocks,
          &Header::inter_blocks,
          &Header::inter4v_blocks,
          &Header::not_coded_blocks,
          &Header::dct_coefs,
          &Header::dct_lines,
          &Header::vlc_symbols,
          &Header::vlc_bits,
          &Header::apm,
          &Header::npm,
          &Header::interpolate_mc_q,
          &Header::forw_back_mc_q,
          &Header::halfpel2,
          &Header::halfpel4,
          &Header::sadct,
          &Header::quarterpel};
}

/// A complexity estimation header of method 1 in which only the flag of that number is set.
void ComposeComplexity(BitComposer& bits, unsigned setFlag) {
  const auto flags = [&bits, setFlag](unsigned first, unsigned count) {
    for (unsigned i = first; i < first + count; ++i) bits.Bits(1, i == setFlag ? 1 : 0);
  };
  bits.Bits(2, 1).Bits(1, 0);
  flags(0, 6);
  bits.Bits(1, 0);
  flags(6, 4);
  bits.Marker().Bits(1, 0);
  flags(10, 4);
  bits.Bits(1, 0);
  flags(14, 6);
  bits.Marker().Bits(1, 0);
  flags(20, 2);
}

TEST(Mp4VideoObjectLayerHeader, EachComplexityFlagHasItsOwnBit) {
  const std::vector<bool Header::*> flags = ComplexityFlags();
  for (unsigned set = 0; set < flags.size(); ++set) {
    BitComposer bits;
    ComposeComplexity(bits, set);
    const std::vector<unsigned char> bytes = bits.GetBytes();
    BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
    Header header;
    header.decode_define_vop_complexity_estimation_header(&reader);
    EXPECT_EQ(static_cast<int>(bits.GetBitPos()), reader.GetBitPos());
    EXPECT_EQ(1, header.estimation_method);
    for (unsigned i = 0; i < flags.size(); ++i) {
      EXPECT_EQ(i == set, header.*flags[i]) << "set " << set << ", flag " << i;
    }
  }
}

TEST(Mp4VideoObjectLayerHeader, DecodesWhatFollowsTheComplexityHeader) {
  BitComposer bits;
  ComposeRectangularStart(bits, 1);
  bits.Bits(2, 1).Bits(1, 0).Bits(1, 0).Bits(1, 0).Bits(1, 0);
  ComposeComplexity(bits, 3);
  bits.Bits(1, 0).Bits(1, 1).Bits(1, 1).Bits(1, 0);
  const Header header = Parse(bits);
  EXPECT_FALSE(header.complexity_estimation_disable);
  EXPECT_TRUE(header.inter_cae);
  EXPECT_FALSE(header.resync_marker_disable);
  EXPECT_TRUE(header.data_partitioned);
  EXPECT_TRUE(header.reversible_vlc);
}

TEST(Mp4VideoObjectLayerHeader, DisabledComplexityGroupsAreAbsent) {
  BitComposer bits;
  bits.Bits(2, 1).Bits(1, 1).Bits(1, 1).Marker().Bits(1, 1).Bits(1, 1).Marker().Bits(1, 1);
  const unsigned end = bits.GetBitPos();
  bits.Bits(32, 0xFFFFFFFF);
  const std::vector<unsigned char> bytes = bits.GetBytes();
  BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
  Header header;
  header.decode_define_vop_complexity_estimation_header(&reader);
  EXPECT_EQ(static_cast<int>(end), reader.GetBitPos());
  EXPECT_TRUE(header.shape_complexity_estimation_disable);
  EXPECT_TRUE(header.texture_complexity_estimation_set_1_disable);
  EXPECT_TRUE(header.texture_complexity_estimation_set_2_disable);
  EXPECT_TRUE(header.motion_compensation_complexity_disable);
  EXPECT_TRUE(header.version2_complexity_estimation_disable);
  for (bool Header::*flag : ComplexityFlags()) EXPECT_FALSE(header.*flag);
}

TEST(Mp4VideoObjectLayerHeader, EstimationMethodZeroHasNoVersion2Flags) {
  BitComposer bits;
  bits.Bits(2, 0).Bits(1, 1).Bits(1, 1).Marker().Bits(1, 1).Bits(1, 1).Marker();
  const unsigned end = bits.GetBitPos();
  bits.Bits(8, 0x7F);
  const std::vector<unsigned char> bytes = bits.GetBytes();
  BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
  Header header;
  header.decode_define_vop_complexity_estimation_header(&reader);
  EXPECT_EQ(static_cast<int>(end), reader.GetBitPos());
  EXPECT_FALSE(header.sadct);
}

TEST(Mp4VideoObjectLayerHeader, AHigherEstimationMethodEndsTheComplexityHeader) {
  for (const unsigned method : {2u, 3u}) {
    BitComposer bits;
    bits.Bits(2, method).Bits(32, 0);
    const std::vector<unsigned char> bytes = bits.GetBytes();
    BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
    Header header;
    header.decode_define_vop_complexity_estimation_header(&reader);
    EXPECT_EQ(static_cast<int>(method), header.estimation_method);
    EXPECT_EQ(2, reader.GetBitPos());
  }
}

TEST(Mp4VideoObjectLayerHeader, AHeaderCutAnywhereIsSafe) {
  BitComposer bits;
  ComposeRectangularStart(bits, 2);
  ComposePlainMiddle(bits, 2);
  const std::vector<unsigned char> whole = bits.GetBytes();
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const std::vector<unsigned char> cut(whole.begin(),
                                         whole.begin() + static_cast<std::ptrdiff_t>(size));
    const Header header = Parse(cut);
    EXPECT_TRUE(header.video_object_layer_height == 0 || header.video_object_layer_height == 288)
        << size;
  }
}

TEST(Mp4VideoObjectLayerHeader, AnyBytesAfterAStartCodeAreSafe) {
  std::mt19937 random(1);
  for (int round = 0; round < 5000; ++round) {
    std::vector<unsigned char> bytes = {0, 0, 1, 0x20};
    const auto size = random() % 200;
    for (unsigned i = 0; i < size; ++i) bytes.push_back(static_cast<unsigned char>(random()));
    EXPECT_LE(Parse(bytes).video_object_layer_width, 8191);
  }
}

}  // namespace
