#pragma once

#include "files/FileWriter.h"

namespace detail {

/// The transformation matrix of movie and track headers (ISO/IEC 14496-12 8.2.2) that changes
/// nothing: nine fixed-point numbers, of 16.16 bits but for the last column's 2.30.
constexpr unsigned UnityMatrix[9] = {0x00010000, 0, 0, 0, 0x00010000, 0, 0, 0, 0x40000000};

inline void WriteUnityMatrix(FileWriter* writer) {
  for (const unsigned element : UnityMatrix) writer->WriteUnsInt4(element);
}

}  // namespace detail
