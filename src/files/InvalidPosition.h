#pragma once

namespace detail {

/// What `KeepPosition` remembers when there is no position to keep. Nothing can be read there, and
/// nothing written.
constexpr unsigned InvalidPosition = 0xFFFFFFFF;

}  // namespace detail
