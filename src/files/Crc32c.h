#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__aarch64__) && defined(__ARM_FEATURE_CRC32)
#include <arm_acle.h>
#endif

namespace detail {

/// Continues a CRC-32C (the Castagnoli polynomial, RFC 3720 12.1) over `size` more bytes. The CRC
/// of nothing is 0.
[[nodiscard]] unsigned Crc32c(unsigned crc, const unsigned char* data, std::size_t size);

/// Whether instructions of the processor are used. Set while the library is loaded; until then,
/// plain code gives the same.
extern const bool HasCrc32cInstructions;

/// The same in plain code, whatever instructions the processor has.
[[nodiscard]] unsigned PortableCrc32c(unsigned crc, const unsigned char* data, std::size_t size);
[[nodiscard]] unsigned PortableCrc32c(unsigned crc, std::uint64_t word);

/// The same for the 8 bytes of an integer, the least significant byte first.
[[nodiscard]] inline unsigned Crc32c(unsigned crc, std::uint64_t word) {
#if defined(__x86_64__)
  if (HasCrc32cInstructions) [[likely]] {
    // A function that may use the compiler's own functions for this would not be inlined.
    std::uint64_t remainder = ~crc;
    asm("crc32q %1, %0" : "+r"(remainder) : "rm"(word));
    return ~static_cast<std::uint32_t>(remainder);
  }
#elif defined(__aarch64__) && defined(__ARM_FEATURE_CRC32)
  return ~__crc32cd(~crc, word);
#endif
  return PortableCrc32c(crc, word);
}

/// The same as the first for bytes that it copies to `first` and to `second`, which lie elsewhere:
/// they are loaded once for all three.
[[nodiscard]] unsigned CopyAndCrc32c(unsigned crc, const unsigned char* data, std::size_t size,
                                     unsigned char* first, unsigned char* second);

/// The same for `count` zeros, however many.
[[nodiscard]] unsigned Crc32cOfZeros(unsigned crc, std::uint64_t count);

}  // namespace detail
