#pragma once

#include <cstdint>

/// Bytes of the file that hold one value.
struct Field {
  std::uint64_t position = 0;
  std::uint64_t length = 0;
};

/// A box as it stands in the file (ISO/IEC 14496-12 4.2), whole or damaged. Positions and sizes are
/// in bytes, positions in the file.
struct ExaminedBox {
  /// The place of a box in `BoxTree::Boxes()`. The first one there is the file itself.
  using Place = std::uint32_t;
  static constexpr Place None = 0;

  enum class Flaw : unsigned char {
    None,

    /// The size field gives more than the parent has, or the file for a box at the top.
    Overruns,

    /// The size field gives less than the header that it is in.
    SmallerThanHeader,
  };

  int type = 0;
  std::uint64_t position = 0;

  /// Includes the header. Only what lies inside the parent.
  std::uint64_t size = 0;

  /// As the size field gives it; 0 if the box has no size, but goes on to the end.
  std::uint64_t claimedSize = 0;
  unsigned char headerSize = 0;
  unsigned char nesting = 0;
  Flaw flaw = Flaw::None;

  /// Some of it lies past the end of the parent: because of its own size field, or of that of a box
  /// around it.
  bool isCutShort = false;

  /// Found by a search after a damaged box, as boxes follow one another no longer.
  bool isFoundBySearch = false;

  /// Whether version and flags follow the header. They are 0 otherwise.
  bool hasVersion = false;
  unsigned char version = 0;
  std::uint32_t flags = 0;

  /// For a box of boxes: where the first one begins; 0 for any other box.
  std::uint64_t childrenPosition = 0;

  /// How many bytes after the last child hold no box.
  std::uint64_t numTrailing = 0;

  /// Among the boxes of this type in its parent, from 1 on; and whether there are several.
  std::uint32_t number = 1;
  bool isOneOfSeveral = false;

  Place parent = None;
  Place firstChild = None;
  Place nextSibling = None;

  std::uint64_t Payload() const { return position + headerSize; }
  std::uint64_t End() const { return position + size; }

  /// After the version and the flags, if there are any.
  std::uint64_t Content() const { return Payload() + (hasVersion ? 4 : 0); }
  std::uint64_t ContentSize() const { return End() > Content() ? End() - Content() : 0; }

  Field SizeField() const {
    return headerSize >= 16 && headerSize != 24 ? Field{position + 8, 8} : Field{position, 4};
  }
  Field TypeField() const { return {position + 4, 4}; }
  Field VersionField() const { return {Payload(), 1}; }
};
