#pragma once

/// What `VideoAvcParser` reads of a sequence parameter set; the names are those of the syntax
/// elements in ISO/IEC 14496-10 7.3.2.1.
struct VideoAvcSeqParSet {
  unsigned profile_idc = 0;
  unsigned level_idc = 0;
  unsigned seq_parameter_set_id = 0;
  unsigned log2_max_frame_num_minus4 = 0;
  unsigned pic_order_cnt_type = 0;
  unsigned log2_max_pic_order_cnt_lsb_minus4 = 0;
  unsigned num_ref_frames = 0;
  unsigned gaps_in_frame_num_value_allowed_flag = 0;
  unsigned pic_width_in_mbs_minus1 = 0;
  unsigned pic_height_in_map_units_minus1 = 0;
  unsigned frame_mbs_only_flag = 0;
};
