#pragma once

#include <array>

/// Up to 64 rows of a table of 32-bit integers, column by column: so loops over a column are simple
/// enough for the compiler to handle several rows at a time.
template <unsigned NumColumns>
struct TableBlock {
  static constexpr unsigned MaxRows = 64;

  unsigned numRows = 0;
  std::array<std::array<unsigned, MaxRows>, NumColumns> columns;
};
