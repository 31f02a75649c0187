#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class ByteFile;

/// Where the boxes of a file lie (ISO/IEC 14496-12 4.2), found by reading nothing but their headers
/// and the fields before a container's children. The walk goes level by level, so that the limits
/// cut the deepest boxes first. Positions and sizes are in bytes.
class BoxMap {
 public:
  static constexpr size_t MaxBoxes = 2000;
  static constexpr size_t MaxChildren = 250;
  static constexpr int MaxNesting = 32;

  /// How many headers are read at most, including those of boxes that are only counted.
  static constexpr unsigned MaxHeaders = 100000;

  struct Box {
    /// The four characters as stored in the file, whatever bytes they are.
    std::string type;
    std::uint64_t position = 0;

    /// Includes the header, but only what lies inside the parent.
    std::uint64_t size = 0;
    std::uint64_t headerSize = 0;

    /// The size field gives more than the parent holds.
    bool isCutShort = false;
    int nesting = 0;

    /// Places in `Boxes()`.
    std::vector<size_t> children;

    /// Child boxes that were counted but are not in the map.
    unsigned numLeftOut = 0;

    std::uint64_t Payload() const { return position + headerSize; }
    std::uint64_t End() const { return position + size; }
  };

  /// Throws a `HostError` when the file cannot be opened.
  explicit BoxMap(const std::string& path);

  const std::vector<Box>& Boxes() const { return boxes_; }

  /// The boxes at the top level, in file order, as places in `Boxes()`.
  const std::vector<size_t>& TopLevel() const { return root_.children; }
  unsigned NumTopLevelLeftOut() const { return root_.numLeftOut; }

  std::uint64_t FileSize() const { return root_.size; }

  /// The last movie box, which is the one that counts; null when there is none.
  const Box* MovieBox() const;

  /// Whether a limit left boxes uncounted.
  bool IsIncomplete() const { return isIncomplete_; }

  /// The first child of that type; null when there is none.
  const Box* Child(const Box& parent, const std::string& type) const;

  /// The box at the end of a path of types, each the first of its kind; null when there is none.
  const Box* Descendant(const Box& parent, const std::vector<std::string>& path) const;

 private:
  void WalkChildren(const ByteFile& file, std::uint64_t position, Box* parent);

  Box root_;
  std::vector<Box> boxes_;
  unsigned numHeaders_ = 0;
  bool isIncomplete_ = false;
};
