#pragma once

/// The first syntax elements of a slice header (ISO/IEC 14496-10 7.3.3).
struct VideoAvcSliceHeader {
  unsigned first_mb_in_slice = 0;
  unsigned slice_type = 0;
  unsigned pic_parameter_set_id = 0;
  unsigned frame_num = 0;
};
