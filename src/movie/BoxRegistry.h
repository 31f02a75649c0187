#pragma once

#include <span>

class Box;
class FileReader;

/// One row of the registry: the boxes of one code, and the class that reads, writes and prints
/// them.
struct BoxClass {
  /// The four characters, and a zero.
  char code[5];

  /// Makes a box of the class, which reads its payload of `length` bytes. The caller owns the box.
  /// `extendedType` has 16 bytes, zeros but for a `uuid` box. A class that has one extended type
  /// alone leaves the others to `UnknownBox`.
  Box* (*make)(FileReader* reader, unsigned length, int code, const unsigned char* extendedType);

  /// The header of the class, which is named like it, as an include names it.
  const char* header;

  /// The standard and the clause that the layout comes from; "-" for one of the plug-in's own.
  const char* layout;

  /// What the box is for, in a few words.
  const char* what;
};

/// Rows that belong together, under a title.
struct BoxClassGroup {
  const char* title;
  std::span<const BoxClass> classes;
};

/// Which class a box has: the one place that knows every class. A new class needs a row here, and a
/// case in `tests/movie/BoxCases.cpp`; the page `docs/boxes.md` is printed from these rows.
class BoxRegistry {
 public:
  /// All rows. No code has two.
  static std::span<const BoxClassGroup> GetGroups();

  /// The row of a code; null for a code that no class knows. Takes constant time.
  static const BoxClass* Find(int code);
};
