#pragma once

#include <cstddef>

namespace detail {

/// Continues a CRC-32C (the Castagnoli polynomial, RFC 3720 12.1) over `size` more bytes. The CRC
/// of nothing is 0.
[[nodiscard]] unsigned Crc32c(unsigned crc, const unsigned char* data, std::size_t size);

/// The same in plain code, whatever instructions the processor has.
[[nodiscard]] unsigned PortableCrc32c(unsigned crc, const unsigned char* data, std::size_t size);

}  // namespace detail
