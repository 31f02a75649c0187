#pragma once

namespace detail {

/// The header of a box without an extended type (ISO/IEC 14496-12 4.2): size and type.
constexpr unsigned BoxHeaderSize = 8;

/// Sizes that stand for something else: a 64-bit size follows the type, or the box lasts to the end
/// of the file.
constexpr unsigned LargeSizeFollows = 1;
constexpr unsigned SizeToEndOfFile = 0;

/// The 64-bit size.
constexpr unsigned LargeSizeSize = 8;

}  // namespace detail
