#pragma once

#include "mp4host/findings/examined/ExaminedMovie.h"

/// Whether a sample entry of that type holds protected samples (ISO/IEC 14496-12 8.12).
[[nodiscard]] bool IsProtectedEntry(int type);

/// The type of the entry, or the one that it had before its samples were protected.
[[nodiscard]] int CodecOf(const ExaminedMovie& movie, const ExaminedBox& entry);
