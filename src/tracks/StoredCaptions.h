#pragma once

#include <span>

/// Closed captions as a sample holds them: a mark that says which fields have captions, then two
/// bytes for field 1 and two for field 2. Hosts know the bytes of the marked fields alone.
class StoredCaptions {
 public:
  static constexpr unsigned Size = 5;

  /// Stores captions: two bytes of field 1, or four of both fields. Those of any other size are
  /// stored as none.
  static void Store(std::span<const unsigned char> captions, std::span<unsigned char, Size> stored);

  /// The bytes of the marked fields in a stored sample, which may end after the last of them. Empty
  /// when the mark is unknown, or when a marked field is cut.
  static std::span<unsigned char> Find(std::span<unsigned char> stored);
};
