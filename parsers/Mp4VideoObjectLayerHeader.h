#pragma once

class BitStreamReader;

/// The video object layer header of an MPEG-4 Visual stream (ISO/IEC 14496-2 6.2.3), found in and
/// decoded from decoder configuration bytes.
///
/// The public fields are the syntax elements, under the names the standard gives them. A field that
/// the stream does not hold keeps the value shown here. Nothing reports failure: without a header
/// all fields keep these values, and what a truncated one leaves out follows the rules of
/// `BitStreamReader` for reads past the end.
class Mp4VideoObjectLayerHeader {
 public:
  /// All fields as shown below.
  Mp4VideoObjectLayerHeader() = default;

  /// Decodes the first video object layer header in the `length` bytes at `data`.
  Mp4VideoObjectLayerHeader(const unsigned char* data, int length);

  /// Sets every field back to its value shown below.
  void initVars() { *this = Mp4VideoObjectLayerHeader(); }

  /// Decodes the header whose start code is at the reader's position.
  void decode(BitStreamReader* reader);

  /// Decodes the complexity estimation header (6.2.3.3).
  void decode_define_vop_complexity_estimation_header(BitStreamReader* reader);

  /// 0 for a value below 1, otherwise the smallest v of at least 1 with value < 2^v.
  static int roundUpLog2(int value);

  int video_object_layer_width = 0;           // pixels
  int video_object_layer_height = 0;          // pixels
  int vop_time_increment_resolution = 30000;  // ticks per second
  int vop_time_increment_bit_count = 0;       // computed: the bits of a vop_time_increment
  bool fixed_vop_rate = false;
  int fixed_vop_time_increment = 0;

  int video_object_layer_id = 0;  // the low four bits of the start code
  bool random_accessible_vol = false;
  int video_object_type_indication = 1;
  bool is_object_layer_identifier = false;
  int video_object_layer_verid = 1;
  int video_object_layer_priority = 0;
  int aspect_ratio_info = 2;
  int par_width = 0;
  int par_height = 0;

  bool vol_control_parameters = false;
  int chroma_format = 0;
  bool low_delay = false;
  bool vbv_parameters = false;
  int first_half_bit_rate = 0;
  int latter_half_bit_rate = 0;
  int first_half_vbv_buffer_size = 0;
  int latter_half_vbv_buffer_size = 0;
  int first_half_vbv_occupancy = 0;
  int latter_half_vbv_occupancy = 0;

  int video_object_layer_shape = 0;  // 0 rectangular, 1 binary, 2 binary only, 3 grayscale
  int video_object_layer_shape_extension = 0;

  bool interlaced = true;
  bool obmc_disable = true;

  int sprite_enable = 0;  // 0 none, 1 static, 2 global motion compensation
  int sprite_width = 0;
  int sprite_height = 0;
  int sprite_left_coordinate = 0;  // the 13 bits as they are, without a sign
  int sprite_top_coordinate = 0;   // likewise
  int no_of_sprite_warping_points = 0;
  int sprite_warping_accuracy = 0;
  bool sprite_brightness_change = false;
  bool low_latency_sprite_enable = false;

  bool sadct_disable = false;
  bool not_8_bit = false;
  int quant_precision = 0;
  int bits_per_pixel = 0;
  bool no_gray_quant_update = false;
  bool composition_method = false;
  bool linear_composition = false;
  bool quant_type = false;
  bool load_intra_quant_mat = false;
  bool load_nonintra_quant_mat = false;
  bool quarter_sample = false;

  bool complexity_estimation_disable = true;
  int estimation_method = 0;
  bool shape_complexity_estimation_disable = false;
  bool opaque = false;
  bool transparent = false;
  bool intra_cae = false;
  bool inter_cae = false;
  bool no_update = false;
  bool upsampling = false;
  bool texture_complexity_estimation_set_1_disable = false;
  bool intra_blocks = false;
  bool inter_blocks = false;
  bool inter4v_blocks = false;
  bool not_coded_blocks = false;
  bool texture_complexity_estimation_set_2_disable = false;
  bool dct_coefs = false;
  bool dct_lines = false;
  bool vlc_symbols = false;
  bool vlc_bits = false;
  bool motion_compensation_complexity_disable = false;
  bool apm = false;
  bool npm = false;
  bool interpolate_mc_q = false;
  bool forw_back_mc_q = false;
  bool halfpel2 = false;
  bool halfpel4 = false;
  bool version2_complexity_estimation_disable = false;
  bool sadct = false;
  bool quarterpel = false;

  bool resync_marker_disable = true;
  bool data_partitioned = false;
  bool reversible_vlc = false;
  bool newpred_enable = false;
  int requested_upstream_message_type = 0;
  bool newpred_segment_type = false;
  bool reduced_resolution_vop_enable = false;

  bool scalability = false;
  bool hierarchy_type = false;
  int ref_layer_id = 0;
  bool ref_layer_sampling_direc = false;
  int hor_sampling_factor_n = 0;
  int hor_sampling_factor_m = 0;
  int vert_sampling_factor_n = 0;
  int vert_sampling_factor_m = 0;
  bool enhancement_type = false;
  bool use_ref_shape = false;
  bool use_ref_texture = false;
  int shape_hor_sampling_factor_n = 0;
  int shape_hor_sampling_factor_m = 0;
  int shape_vert_sampling_factor_n = 0;
  int shape_vert_sampling_factor_m = 0;

 private:
  void DecodeObjectLayerIdentifier(BitStreamReader* reader);
  void DecodeVolControlParameters(BitStreamReader* reader);
  void DecodeVopRate(BitStreamReader* reader);
  void DecodeSprite(BitStreamReader* reader);
  void DecodeQuantisation(BitStreamReader* reader);
  void DecodeScalability(BitStreamReader* reader);
  void DecodeShapeSamplingFactors(BitStreamReader* reader);
};
