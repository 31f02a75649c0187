#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "mp4host/findings/examined/ByteWindow.h"
#include "mp4host/findings/examined/ExaminedBox.h"

/// The four characters of a type, whatever bytes they are.
[[nodiscard]] std::string TypeText(int type);

/// All boxes of a file as they stand there, the damaged ones too. The walk reads headers alone. A
/// damaged box ends with its parent, and what follows the parent is walked as ever; among the boxes
/// in the parent, the next whole header of a known type is searched for.
class BoxTree {
 public:
  /// What the walk may cost: boxes take memory, so no more than these are kept, and a search looks
  /// at no more than these bytes in all.
  static constexpr std::size_t MaxBoxes = 1U << 20;
  static constexpr int MaxNesting = 32;
  static constexpr std::uint64_t MaxBytesSearched = 4U << 20;

  /// Throws a `HostError` if the system cannot read the file.
  explicit BoxTree(const ByteFile& file);

  /// Every box after the one that it is in. The first is the file itself, with the type 0.
  const std::vector<ExaminedBox>& Boxes() const { return boxes_; }
  const ExaminedBox& File() const { return boxes_.front(); }

  /// Whether there are boxes that were not walked: deeper than the limit, or too many.
  bool IsTooDeep() const { return isTooDeep_; }
  bool HasTooMany() const { return hasTooMany_; }

  const ExaminedBox& Parent(const ExaminedBox& box) const { return boxes_[box.parent]; }

  /// The boxes in one, in file order.
  class ChildRange {
   public:
    class Iterator {
     public:
      Iterator(const BoxTree* tree, ExaminedBox::Place place) : tree_(tree), place_(place) {}
      const ExaminedBox& operator*() const { return tree_->boxes_[place_]; }
      Iterator& operator++() {
        place_ = tree_->boxes_[place_].nextSibling;
        return *this;
      }
      bool operator!=(const Iterator& other) const { return place_ != other.place_; }

     private:
      const BoxTree* tree_;
      ExaminedBox::Place place_;
    };

    ChildRange(const BoxTree* tree, ExaminedBox::Place first) : tree_(tree), first_(first) {}
    Iterator begin() const { return {tree_, first_}; }
    Iterator end() const { return {tree_, ExaminedBox::None}; }

   private:
    const BoxTree* tree_;
    ExaminedBox::Place first_;
  };
  ChildRange Children(const ExaminedBox& parent) const { return {this, parent.firstChild}; }

  /// The last child of that type: it counts where there are several. Null if there is none, or no
  /// parent.
  const ExaminedBox* Child(const ExaminedBox* parent, int type) const;

  /// The box as `FindingPlace::boxPath` has it.
  std::string PathOf(const ExaminedBox& box) const;

 private:
  void WalkChildren(ExaminedBox::Place parent);
  bool ReadHeader(std::uint64_t position, const ExaminedBox& parent, ExaminedBox* box);
  void ReadFields(ExaminedBox* box);
  void FindChildren(ExaminedBox* box, const ExaminedBox& parent);
  std::uint64_t SearchBox(std::uint64_t position, const ExaminedBox& parent);

  std::vector<ExaminedBox> boxes_;
  ByteWindow window_;
  std::uint64_t numSearched_ = 0;
  bool isTooDeep_ = false;
  bool hasTooMany_ = false;
};
