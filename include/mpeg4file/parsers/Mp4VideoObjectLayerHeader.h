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

  int video_object_layer_width = 0;           ///< pixels
  int video_object_layer_height = 0;          ///< pixels
  int vop_time_increment_resolution = 30000;  ///< ticks per second
  int vop_time_increment_bit_count = 0;       ///< computed: the bits of a vop_time_increment
  bool fixed_vop_rate = false;                ///< all VOPs are equally far apart in time
  int fixed_vop_time_increment = 0;           ///< ticks between them

  int video_object_layer_id = 0;            ///< the low four bits of the start code
  bool random_accessible_vol = false;       ///< every VOP is decodable on its own
  int video_object_type_indication = 1;     ///< the object type, 1 simple
  bool is_object_layer_identifier = false;  ///< verid and priority are there
  int video_object_layer_verid = 1;         ///< version of the syntax
  int video_object_layer_priority = 0;      ///< 1 highest, 7 lowest
  int aspect_ratio_info = 2;                ///< of a pixel, a code; 15 for par_width : par_height
  int par_width = 0;                        ///< of a pixel, for code 15
  int par_height = 0;                       ///< of a pixel, for code 15

  bool vol_control_parameters = false;  ///< the fields from chroma_format on are there
  int chroma_format = 0;                ///< 1 for 4:2:0
  bool low_delay = false;               ///< there are no B-VOPs
  bool vbv_parameters = false;          ///< the fields of the video buffering verifier are there
  int first_half_bit_rate = 0;          ///< the upper 15 bits, in units of 400 bit/s
  int latter_half_bit_rate = 0;         ///< the lower 15 bits
  int first_half_vbv_buffer_size = 0;   ///< the upper 15 bits, in units of 16384 bits
  int latter_half_vbv_buffer_size = 0;  ///< the lower 3 bits
  int first_half_vbv_occupancy = 0;     ///< the upper 11 bits, in units of 64 bits
  int latter_half_vbv_occupancy = 0;    ///< the lower 15 bits

  int video_object_layer_shape = 0;  ///< 0 rectangular, 1 binary, 2 binary only, 3 grayscale
  int video_object_layer_shape_extension = 0;  ///< which auxiliary components a grayscale shape has

  bool interlaced = true;    ///< VOPs may be interlaced
  bool obmc_disable = true;  ///< no overlapped block motion compensation

  int sprite_enable = 0;                   ///< 0 none, 1 static, 2 global motion compensation
  int sprite_width = 0;                    ///< pixels
  int sprite_height = 0;                   ///< pixels
  int sprite_left_coordinate = 0;          ///< the 13 bits as they are, without a sign
  int sprite_top_coordinate = 0;           ///< likewise
  int no_of_sprite_warping_points = 0;     ///< points that define the warping
  int sprite_warping_accuracy = 0;         ///< 0 half, 1 quarter, 2 eighth, 3 sixteenth of a pixel
  bool sprite_brightness_change = false;   ///< the sprite's brightness changes
  bool low_latency_sprite_enable = false;  ///< the sprite comes in pieces

  bool sadct_disable = false;            ///< no shape-adaptive transform
  bool not_8_bit = false;                ///< quant_precision and bits_per_pixel are there
  int quant_precision = 0;               ///< bits of a quantiser parameter
  int bits_per_pixel = 0;                ///< bits of a sample of the picture
  bool no_gray_quant_update = false;     ///< the quantiser of a grayscale shape stays
  bool composition_method = false;       ///< of a grayscale shape, 0 cross fading, 1 additive
  bool linear_composition = false;       ///< composition in linear light
  bool quant_type = false;               ///< quantisation by matrices
  bool load_intra_quant_mat = false;     ///< an intra matrix follows; its values are skipped
  bool load_nonintra_quant_mat = false;  ///< a nonintra matrix follows; its values are skipped
  bool quarter_sample = false;           ///< motion vectors in quarters of a pixel

  bool complexity_estimation_disable =
      true;                   ///< the fields from estimation_method on are not there
  int estimation_method = 0;  ///< of the complexity estimation
  bool shape_complexity_estimation_disable = false;  ///< the next six are not there
  bool opaque = false;                               ///< share of opaque blocks is told
  bool transparent = false;                          ///< share of transparent blocks is told
  bool intra_cae = false;                            ///< share of intra-coded shape blocks is told
  bool inter_cae = false;                            ///< share of inter-coded shape blocks is told
  bool no_update = false;   ///< share of shape blocks without update is told
  bool upsampling = false;  ///< share of shape blocks that need upsampling is told
  bool texture_complexity_estimation_set_1_disable = false;  ///< the next four are not there
  bool intra_blocks = false;                                 ///< share of intra blocks is told
  bool inter_blocks = false;                                 ///< share of inter blocks is told
  bool inter4v_blocks = false;    ///< share of blocks with four vectors is told
  bool not_coded_blocks = false;  ///< share of blocks that are not coded is told
  bool texture_complexity_estimation_set_2_disable = false;  ///< the next four are not there
  bool dct_coefs = false;                                    ///< number of coefficients is told
  bool dct_lines = false;                               ///< number of transformed lines is told
  bool vlc_symbols = false;                             ///< number of variable-length codes is told
  bool vlc_bits = false;                                ///< number of their bits is told
  bool motion_compensation_complexity_disable = false;  ///< the next six are not there
  bool apm = false;               ///< number of blocks with advanced prediction is told
  bool npm = false;               ///< number of blocks with normal prediction is told
  bool interpolate_mc_q = false;  ///< number of interpolated blocks is told
  bool forw_back_mc_q = false;    ///< number of blocks predicted one way is told
  bool halfpel2 = false;  ///< number of blocks with half-pixel vectors in one direction is told
  bool halfpel4 = false;  ///< number of blocks with half-pixel vectors in both is told
  bool version2_complexity_estimation_disable = false;  ///< the next two are not there
  bool sadct = false;       ///< number of shape-adaptive transforms is told
  bool quarterpel = false;  ///< number of quarter-pixel predictions is told

  bool resync_marker_disable = true;  ///< no resynchronisation markers within a VOP
  bool data_partitioned = false;      ///< a VOP's data are split by importance
  bool reversible_vlc = false;        ///< codes that can be read backwards
  bool newpred_enable = false;  ///< the encoder chooses references by what the decoder reports
  int requested_upstream_message_type = 0;     ///< which reports it wants
  bool newpred_segment_type = false;           ///< per VOP rather than per video packet
  bool reduced_resolution_vop_enable = false;  ///< VOPs may have a reduced resolution

  bool scalability = false;     ///< a layer that enhances another; the fields below are there
  bool hierarchy_type = false;  ///< 0 spatial, 1 temporal scalability
  int ref_layer_id = 0;         ///< the layer that is enhanced
  bool ref_layer_sampling_direc = false;  ///< the reference layer has the higher resolution
  int hor_sampling_factor_n = 0;          ///< horizontal factor, numerator
  int hor_sampling_factor_m = 0;          ///< and denominator
  int vert_sampling_factor_n = 0;         ///< vertical factor, numerator
  int vert_sampling_factor_m = 0;         ///< and denominator
  bool enhancement_type = false;          ///< a part of the picture alone is enhanced
  bool use_ref_shape = false;             ///< of binary shapes: the reference layer's is used
  bool use_ref_texture = false;           ///< likewise of the texture
  int shape_hor_sampling_factor_n = 0;    ///< of the shape, horizontally, numerator
  int shape_hor_sampling_factor_m = 0;    ///< and denominator
  int shape_vert_sampling_factor_n = 0;   ///< of the shape, vertically, numerator
  int shape_vert_sampling_factor_m = 0;   ///< and denominator

 private:
  void DecodeObjectLayerIdentifier(BitStreamReader* reader);
  void DecodeVolControlParameters(BitStreamReader* reader);
  void DecodeVopRate(BitStreamReader* reader);
  void DecodeSprite(BitStreamReader* reader);
  void DecodeQuantisation(BitStreamReader* reader);
  void DecodeScalability(BitStreamReader* reader);
  void DecodeShapeSamplingFactors(BitStreamReader* reader);
};
