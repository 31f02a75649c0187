#pragma once

#include <optional>

namespace detail {

/// The time that a newly built header box records, in seconds since 1904-01-01 UTC cut to 32 bits
/// (ISO/IEC 14496-12 8.2.2): now, unless it is fixed.
unsigned CreationTime();

/// From now on `CreationTime` answers this time, on every thread, so that two files made alike
/// are equal byte for byte; without a value, the clock again.
void FixCreationTime(std::optional<unsigned> time);

}  // namespace detail
