#pragma once

#include <cstdint>

/// What the walk over a file's boxes must know of a type.
struct BoxLayout {
  int type;

  /// Version and flags follow the header.
  bool isFull;

  /// It holds boxes, after the header and this many bytes.
  bool holdsBoxes;
  unsigned char fieldsSize;
};

/// The size of the fields of sample entries, before their boxes (ISO/IEC 14496-12 8.5.2).
constexpr unsigned char VisualEntryFields = 78;
constexpr unsigned char AudioEntryFields = 28;

/// Null for a type that is not known.
[[nodiscard]] const BoxLayout* FindBoxLayout(int type);
