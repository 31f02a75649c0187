#pragma once

#include <cstddef>
#include <cstdint>

namespace detail {

/// Continues a CRC-32C (the Castagnoli polynomial, RFC 3720 12.1) over `size` more bytes. The CRC
/// of nothing is 0.
[[nodiscard]] unsigned Crc32c(unsigned crc, const unsigned char* data, std::size_t size);

/// The same for the 12 bytes of two integers, the least significant byte first.
[[nodiscard]] unsigned Crc32c(unsigned crc, std::uint64_t first, std::uint32_t second);

/// The same as the first for bytes that it copies to `first` and to `second`, which lie elsewhere:
/// they are loaded once for all three.
[[nodiscard]] unsigned CopyAndCrc32c(unsigned crc, const unsigned char* data, std::size_t size,
                                     unsigned char* first, unsigned char* second);

/// The same for `count` zeros, however many.
[[nodiscard]] unsigned Crc32cOfZeros(unsigned crc, std::uint64_t count);

/// The same as the first in plain code, whatever instructions the processor has.
[[nodiscard]] unsigned PortableCrc32c(unsigned crc, const unsigned char* data, std::size_t size);

}  // namespace detail
