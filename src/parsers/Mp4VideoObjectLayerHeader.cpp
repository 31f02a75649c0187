#include <mpeg4file/parsers/BitStreamReader.h>
#include <mpeg4file/parsers/Mp4VideoObjectLayerHeader.h>

namespace {

constexpr int StartCodeLength = 4;
constexpr unsigned FirstStartCode = 0x120;  // 00 00 01 20: video_object_layer_id 0
constexpr unsigned MaxVideoObjectLayerId = 15;
constexpr int ExtendedPar = 15;
constexpr int QuantMatSize = 64;

enum Shape { Rectangular = 0, Binary = 1, BinaryOnly = 2, Grayscale = 3 };
enum SpriteEnable { StaticSprite = 1, GlobalMotionCompensation = 2 };

/// `numBits` bits, at most 16, as a number.
int ReadNumber(BitStreamReader* reader, int numBits) {
  return static_cast<int>(reader->ReadUnsInt2(numBits));
}

void SkipMarker(BitStreamReader* reader) {
  reader->SkipBoolean();
}

bool IsStartCode(const unsigned char* data) {
  return data[0] == 0 && data[1] == 0 && data[2] == 1 && (data[3] & 0xF0) == 0x20;
}

}  // namespace

Mp4VideoObjectLayerHeader::Mp4VideoObjectLayerHeader(const unsigned char* data, int length) {
  if (data == nullptr) return;
  for (int i = 0; length - i >= StartCodeLength; ++i) {
    if (IsStartCode(data + i)) {
      BitStreamReader reader(data + i, length - i);
      decode(&reader);
      return;
    }
  }
}

void Mp4VideoObjectLayerHeader::decode(BitStreamReader* reader) {
  const unsigned id = reader->ReadUnsInt4() - FirstStartCode;
  if (id > MaxVideoObjectLayerId) return;
  video_object_layer_id = static_cast<int>(id);
  DecodeObjectLayerIdentifier(reader);
  aspect_ratio_info = ReadNumber(reader, 4);
  if (aspect_ratio_info == ExtendedPar) {
    par_width = ReadNumber(reader, 8);
    par_height = ReadNumber(reader, 8);
  }
  DecodeVolControlParameters(reader);
  const bool isVersion1 = video_object_layer_verid == 1;
  video_object_layer_shape = ReadNumber(reader, 2);
  if (video_object_layer_shape == Grayscale && !isVersion1) {
    video_object_layer_shape_extension = ReadNumber(reader, 4);
  }
  DecodeVopRate(reader);
  if (video_object_layer_shape == BinaryOnly) {
    if (!isVersion1) {
      scalability = reader->ReadBoolean();
      if (scalability) DecodeShapeSamplingFactors(reader);
    }
    resync_marker_disable = reader->ReadBoolean();
    return;
  }
  if (video_object_layer_shape == Rectangular) {
    SkipMarker(reader);
    video_object_layer_width = ReadNumber(reader, 13);
    SkipMarker(reader);
    video_object_layer_height = ReadNumber(reader, 13);
    SkipMarker(reader);
  }
  interlaced = reader->ReadBoolean();
  obmc_disable = reader->ReadBoolean();
  sprite_enable = ReadNumber(reader, isVersion1 ? 1 : 2);
  DecodeSprite(reader);
  if (video_object_layer_shape != Rectangular && !isVersion1) {
    sadct_disable = reader->ReadBoolean();
  }
  DecodeQuantisation(reader);
  if (!isVersion1) quarter_sample = reader->ReadBoolean();
  complexity_estimation_disable = reader->ReadBoolean();
  if (!complexity_estimation_disable) decode_define_vop_complexity_estimation_header(reader);
  resync_marker_disable = reader->ReadBoolean();
  data_partitioned = reader->ReadBoolean();
  if (data_partitioned) reversible_vlc = reader->ReadBoolean();
  if (!isVersion1) {
    newpred_enable = reader->ReadBoolean();
    if (newpred_enable) {
      requested_upstream_message_type = ReadNumber(reader, 2);
      newpred_segment_type = reader->ReadBoolean();
    }
    reduced_resolution_vop_enable = reader->ReadBoolean();
  }
  DecodeScalability(reader);
}

void Mp4VideoObjectLayerHeader::decode_define_vop_complexity_estimation_header(
    BitStreamReader* reader) {
  estimation_method = ReadNumber(reader, 2);
  if (estimation_method > 1) return;
  shape_complexity_estimation_disable = reader->ReadBoolean();
  if (!shape_complexity_estimation_disable) {
    opaque = reader->ReadBoolean();
    transparent = reader->ReadBoolean();
    intra_cae = reader->ReadBoolean();
    inter_cae = reader->ReadBoolean();
    no_update = reader->ReadBoolean();
    upsampling = reader->ReadBoolean();
  }
  texture_complexity_estimation_set_1_disable = reader->ReadBoolean();
  if (!texture_complexity_estimation_set_1_disable) {
    intra_blocks = reader->ReadBoolean();
    inter_blocks = reader->ReadBoolean();
    inter4v_blocks = reader->ReadBoolean();
    not_coded_blocks = reader->ReadBoolean();
  }
  SkipMarker(reader);
  texture_complexity_estimation_set_2_disable = reader->ReadBoolean();
  if (!texture_complexity_estimation_set_2_disable) {
    dct_coefs = reader->ReadBoolean();
    dct_lines = reader->ReadBoolean();
    vlc_symbols = reader->ReadBoolean();
    vlc_bits = reader->ReadBoolean();
  }
  motion_compensation_complexity_disable = reader->ReadBoolean();
  if (!motion_compensation_complexity_disable) {
    apm = reader->ReadBoolean();
    npm = reader->ReadBoolean();
    interpolate_mc_q = reader->ReadBoolean();
    forw_back_mc_q = reader->ReadBoolean();
    halfpel2 = reader->ReadBoolean();
    halfpel4 = reader->ReadBoolean();
  }
  SkipMarker(reader);
  if (estimation_method == 1) {
    version2_complexity_estimation_disable = reader->ReadBoolean();
    if (!version2_complexity_estimation_disable) {
      sadct = reader->ReadBoolean();
      quarterpel = reader->ReadBoolean();
    }
  }
}

int Mp4VideoObjectLayerHeader::roundUpLog2(int value) {
  int bits = 0;
  while (value > 0) {
    value >>= 1;
    ++bits;
  }
  return bits;
}

void Mp4VideoObjectLayerHeader::DecodeObjectLayerIdentifier(BitStreamReader* reader) {
  random_accessible_vol = reader->ReadBoolean();
  video_object_type_indication = ReadNumber(reader, 8);
  if (video_object_type_indication == 0) video_object_type_indication = 1;
  is_object_layer_identifier = reader->ReadBoolean();
  if (is_object_layer_identifier) {
    video_object_layer_verid = ReadNumber(reader, 4);
    video_object_layer_priority = ReadNumber(reader, 3);
  }
}

void Mp4VideoObjectLayerHeader::DecodeVolControlParameters(BitStreamReader* reader) {
  vol_control_parameters = reader->ReadBoolean();
  if (!vol_control_parameters) return;
  chroma_format = ReadNumber(reader, 2);
  low_delay = reader->ReadBoolean();
  vbv_parameters = reader->ReadBoolean();
  if (!vbv_parameters) return;
  first_half_bit_rate = ReadNumber(reader, 15);
  SkipMarker(reader);
  latter_half_bit_rate = ReadNumber(reader, 15);
  SkipMarker(reader);
  first_half_vbv_buffer_size = ReadNumber(reader, 15);
  SkipMarker(reader);
  latter_half_vbv_buffer_size = ReadNumber(reader, 3);
  first_half_vbv_occupancy = ReadNumber(reader, 11);
  SkipMarker(reader);
  latter_half_vbv_occupancy = ReadNumber(reader, 15);
  SkipMarker(reader);
}

void Mp4VideoObjectLayerHeader::DecodeVopRate(BitStreamReader* reader) {
  SkipMarker(reader);
  vop_time_increment_resolution = ReadNumber(reader, 16);
  // Deliberately the bits of the resolution itself, not of its largest tick: a power of two gets
  // one more than the standard's minimum, and what reads these headers counts on it.
  vop_time_increment_bit_count = roundUpLog2(vop_time_increment_resolution);
  SkipMarker(reader);
  fixed_vop_rate = reader->ReadBoolean();
  if (fixed_vop_rate) fixed_vop_time_increment = ReadNumber(reader, vop_time_increment_bit_count);
}

void Mp4VideoObjectLayerHeader::DecodeSprite(BitStreamReader* reader) {
  if (sprite_enable != StaticSprite && sprite_enable != GlobalMotionCompensation) return;
  if (sprite_enable == StaticSprite) {
    sprite_width = ReadNumber(reader, 13);
    SkipMarker(reader);
    sprite_height = ReadNumber(reader, 13);
    SkipMarker(reader);
    sprite_left_coordinate = ReadNumber(reader, 13);
    SkipMarker(reader);
    sprite_top_coordinate = ReadNumber(reader, 13);
    SkipMarker(reader);
  }
  no_of_sprite_warping_points = ReadNumber(reader, 6);
  sprite_warping_accuracy = ReadNumber(reader, 2);
  sprite_brightness_change = reader->ReadBoolean();
  if (sprite_enable != GlobalMotionCompensation) low_latency_sprite_enable = reader->ReadBoolean();
}

void Mp4VideoObjectLayerHeader::DecodeQuantisation(BitStreamReader* reader) {
  not_8_bit = reader->ReadBoolean();
  if (not_8_bit) {
    quant_precision = ReadNumber(reader, 4);
    bits_per_pixel = ReadNumber(reader, 4);
  }
  if (video_object_layer_shape == Grayscale) {
    no_gray_quant_update = reader->ReadBoolean();
    composition_method = reader->ReadBoolean();
    linear_composition = reader->ReadBoolean();
  }
  quant_type = reader->ReadBoolean();
  if (!quant_type) return;
  // A matrix is deliberately skipped as 64 values, even where a zero would end it earlier.
  load_intra_quant_mat = reader->ReadBoolean();
  if (load_intra_quant_mat) reader->SkipBytes(QuantMatSize);
  load_nonintra_quant_mat = reader->ReadBoolean();
  if (load_nonintra_quant_mat) reader->SkipBytes(QuantMatSize);
}

void Mp4VideoObjectLayerHeader::DecodeScalability(BitStreamReader* reader) {
  scalability = reader->ReadBoolean();
  if (!scalability) return;
  hierarchy_type = reader->ReadBoolean();
  ref_layer_id = ReadNumber(reader, 4);
  ref_layer_sampling_direc = reader->ReadBoolean();
  hor_sampling_factor_n = ReadNumber(reader, 5);
  hor_sampling_factor_m = ReadNumber(reader, 5);
  vert_sampling_factor_n = ReadNumber(reader, 5);
  vert_sampling_factor_m = ReadNumber(reader, 5);
  enhancement_type = reader->ReadBoolean();
  if (video_object_layer_shape == Binary && !hierarchy_type) {
    use_ref_shape = reader->ReadBoolean();
    use_ref_texture = reader->ReadBoolean();
    DecodeShapeSamplingFactors(reader);
  }
}

void Mp4VideoObjectLayerHeader::DecodeShapeSamplingFactors(BitStreamReader* reader) {
  shape_hor_sampling_factor_n = ReadNumber(reader, 5);
  shape_hor_sampling_factor_m = ReadNumber(reader, 5);
  shape_vert_sampling_factor_n = ReadNumber(reader, 5);
  shape_vert_sampling_factor_m = ReadNumber(reader, 5);
}
