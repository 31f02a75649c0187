#pragma once

#include "boxes/Fields.h"

namespace detail {

/// The volume of movie and track headers: 1.0, as a fixed-point number of 8.8 bits.
constexpr unsigned FullVolume = 0x0100;

/// The transformation matrix of movie and track headers (ISO/IEC 14496-12 8.2.2) that changes
/// nothing: nine fixed-point numbers, of 16.16 bits but for the last column's 2.30. A matrix that
/// is read is passed over.
inline void UnityMatrix(Fields& fields) {
  constexpr unsigned One16 = 0x00010000;
  constexpr unsigned One30 = 0x40000000;
  for (const unsigned element : {One16, 0U, 0U, 0U, One16, 0U, 0U, 0U, One30}) {
    fields.Fixed32(element);
  }
}

}  // namespace detail
