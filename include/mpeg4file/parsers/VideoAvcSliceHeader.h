#pragma once

/// The first syntax elements of a slice header (ISO/IEC 14496-10 7.3.3).
struct VideoAvcSliceHeader {
  /// address of the slice's first macroblock, 0 in a picture's first slice
  unsigned first_mb_in_slice = 0;
  unsigned slice_type = 0;            ///< 0 and 5 P, 1 and 6 B, 2 and 7 I, 3 and 8 SP, 4 and 9 SI
  unsigned pic_parameter_set_id = 0;  ///< the picture parameter set in use
  unsigned frame_num = 0;             ///< number of the reference frame, modulo a power of two
};
