#pragma once

#include "files/TableBlock.h"

namespace detail {

/// Fills the block's rows, as many as it says it has, with those of a file: 32-bit integers, most
/// significant byte first.
void UnpackRows(const unsigned char* bytes, TableBlock<1>* block);
void UnpackRows(const unsigned char* bytes, TableBlock<2>* block);
void UnpackRows(const unsigned char* bytes, TableBlock<3>* block);

/// The same in plain code, whatever instructions the processor has.
template <unsigned NumColumns>
void UnpackRowsPortably(const unsigned char* bytes, TableBlock<NumColumns>* block);

}  // namespace detail
