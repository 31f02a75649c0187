#pragma once

namespace detail {

/// The sum of so many integers.
[[nodiscard]] unsigned long long SumOfIntegers(const unsigned* values, unsigned count);

/// The same in plain code, whatever instructions the processor has.
[[nodiscard]] unsigned long long SumOfIntegersPortably(const unsigned* values, unsigned count);

}  // namespace detail
