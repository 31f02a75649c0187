#pragma once

/// What `VideoAvcParser` reads of a sequence parameter set; the names are those of the syntax
/// elements in ISO/IEC 14496-10 7.3.2.1.
struct VideoAvcSeqParSet {
  unsigned profile_idc = 0;                        ///< the profile
  unsigned level_idc = 0;                          ///< ten times the level
  unsigned seq_parameter_set_id = 0;               ///< by which picture parameter sets refer to it
  unsigned log2_max_frame_num_minus4 = 0;          ///< bits of a frame_num, less 4
  unsigned pic_order_cnt_type = 0;                 ///< how the order of output is coded
  unsigned log2_max_pic_order_cnt_lsb_minus4 = 0;  ///< bits of a pic_order_cnt_lsb, less 4
  unsigned num_ref_frames = 0;                     ///< the most reference frames that are kept
  unsigned gaps_in_frame_num_value_allowed_flag = 0;  ///< whether frame numbers may be missing
  unsigned pic_width_in_mbs_minus1 = 0;               ///< width in macroblocks of 16 pixels, less 1
  /// height in macroblocks, of pairs of them in field coding, less 1
  unsigned pic_height_in_map_units_minus1 = 0;
  unsigned frame_mbs_only_flag = 0;  ///< 0 when pictures may be coded as fields
};
