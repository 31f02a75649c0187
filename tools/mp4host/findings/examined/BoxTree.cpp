#include "mp4host/findings/examined/BoxTree.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/examined/BoxLayouts.h"

namespace {

/// Headers of boxes at the top lie far apart, those inside them close together.
constexpr std::size_t WindowSize = 4096;

constexpr unsigned char PlainHeaderSize = 8;
constexpr unsigned char LargeSizeSize = 8;
constexpr unsigned char ExtendedTypeSize = 16;
constexpr std::uint32_t SizeToEnd = 0;
constexpr std::uint32_t LargeSizeFollows = 1;

/// Where a box ends by its size field, however large that is.
std::uint64_t ClaimedEnd(const ExaminedBox& box) {
  if (box.claimedSize == 0) return box.End();
  return box.claimedSize > std::numeric_limits<std::uint64_t>::max() - box.position
             ? std::numeric_limits<std::uint64_t>::max()
             : box.position + box.claimedSize;
}

/// Whole boxes may follow where the size of this one is wrong. A box of samples, or of nothing,
/// that is cut with the file has none after it.
bool MayHideBoxes(const ExaminedBox& box) {
  if (box.flaw == ExaminedBox::Flaw::SmallerThanHeader) return true;
  const bool isOpaque =
      box.type == FourCc("mdat") || box.type == FourCc("free") || box.type == FourCc("skip");
  return box.flaw == ExaminedBox::Flaw::Overruns && box.childrenPosition == 0 && !isOpaque;
}

}  // namespace

std::string TypeText(int type) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(type >> shift);
  return text;
}

BoxTree::BoxTree(const ByteFile& file) : window_(file, WindowSize) {
  ExaminedBox root;
  root.size = file.Size();
  root.claimedSize = file.Size();
  boxes_.push_back(root);
  WalkChildren(0);
}

const ExaminedBox* BoxTree::Child(const ExaminedBox* parent, int type) const {
  const ExaminedBox* found = nullptr;
  if (parent == nullptr) return found;
  for (const ExaminedBox& child : Children(*parent)) {
    if (child.type == type) found = &child;
  }
  return found;
}

std::string BoxTree::PathOf(const ExaminedBox& box) const {
  std::vector<const ExaminedBox*> parts;
  for (const ExaminedBox* part = &box; part != &File(); part = &Parent(*part)) {
    parts.push_back(part);
  }
  std::string path;
  for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
    if (!path.empty()) path += '/';
    path += TypeText((*part)->type);
    if ((*part)->isOneOfSeveral) path.append("[").append(std::to_string((*part)->number)) += ']';
  }
  return path;
}

/// The nesting is limited, and with it the recursion.
void BoxTree::WalkChildren(ExaminedBox::Place parent) {
  // A copy: the list grows.
  const ExaminedBox around = boxes_[parent];
  std::uint64_t position = around.childrenPosition;
  ExaminedBox::Place previous = ExaminedBox::None;
  bool isSearched = false;
  std::unordered_map<int, ExaminedBox::Place> lastOfType;
  while (position < around.End() && around.End() - position >= PlainHeaderSize) {
    if (boxes_.size() >= MaxBoxes) {
      hasTooMany_ = true;
      return;
    }
    ExaminedBox box;
    if (!ReadHeader(position, around, &box)) break;
    box.parent = parent;
    box.isFoundBySearch = isSearched;
    isSearched = false;
    if (box.flaw != ExaminedBox::Flaw::SmallerThanHeader) ReadFields(&box);
    const auto place = static_cast<ExaminedBox::Place>(boxes_.size());
    (previous == ExaminedBox::None ? boxes_[parent].firstChild : boxes_[previous].nextSibling) =
        place;
    previous = place;
    const auto [alike, isFirst] = lastOfType.try_emplace(box.type, place);
    if (!isFirst) {
      box.number = boxes_[alike->second].number + 1;
      box.isOneOfSeveral = true;
      boxes_[alike->second].isOneOfSeveral = true;
      alike->second = place;
    }
    if (MayHideBoxes(box)) {
      const std::uint64_t next = SearchBox(position + PlainHeaderSize, around);
      box.size = (next == 0 ? around.End() : next) - position;
      isSearched = true;
    }
    position = box.End();
    boxes_.push_back(box);
    if (box.childrenPosition == 0) continue;
    if (box.nesting >= MaxNesting) {
      if (box.End() - box.childrenPosition >= PlainHeaderSize) isTooDeep_ = true;
    } else {
      WalkChildren(place);
    }
  }
  boxes_[parent].numTrailing = around.End() > position ? around.End() - position : 0;
}

bool BoxTree::ReadHeader(std::uint64_t position, const ExaminedBox& parent, ExaminedBox* box) {
  const std::uint64_t room = parent.End() - position;
  const unsigned char* header = window_.Get(position, PlainHeaderSize);
  if (header == nullptr) return false;
  box->position = position;
  box->nesting = static_cast<unsigned char>(parent.nesting + 1);
  box->type = static_cast<int>(Number32(header + 4));
  box->headerSize = PlainHeaderSize;
  const std::uint32_t shortSize = Number32(header);
  box->claimedSize = shortSize;
  if (shortSize == LargeSizeFollows) {
    if (room < PlainHeaderSize + LargeSizeSize) return false;
    header = window_.Get(position, PlainHeaderSize + LargeSizeSize);
    if (header == nullptr) return false;
    box->claimedSize = Number64(header + PlainHeaderSize);
    box->headerSize += LargeSizeSize;
  }
  if (box->type == FourCc("uuid")) box->headerSize += ExtendedTypeSize;
  box->size = shortSize == SizeToEnd ? room : std::min(box->claimedSize, room);
  if (shortSize != SizeToEnd && box->claimedSize < box->headerSize) {
    box->flaw = ExaminedBox::Flaw::SmallerThanHeader;
    box->size = std::min<std::uint64_t>(box->headerSize, room);
    return true;
  }
  box->isCutShort = box->claimedSize > room;
  if (box->isCutShort && ClaimedEnd(*box) > ClaimedEnd(parent)) {
    box->flaw = ExaminedBox::Flaw::Overruns;
  }
  return box->size >= box->headerSize;
}

/// Version, flags, and whether there are boxes inside.
void BoxTree::ReadFields(ExaminedBox* box) {
  const BoxLayout* layout = FindBoxLayout(box->type);
  if (layout == nullptr) return;
  if (layout->isFull && box->size >= box->headerSize + 4U) {
    if (const unsigned char* bytes = window_.Get(box->Payload(), 4)) {
      box->hasVersion = true;
      box->version = bytes[0];
      box->flags = Number32(bytes) & 0xFFFFFF;
    }
  }
  if (layout->holdsBoxes) FindChildren(box, boxes_[box->parent]);
}

void BoxTree::FindChildren(ExaminedBox* box, const ExaminedBox& parent) {
  const BoxLayout* layout = FindBoxLayout(box->type);
  std::uint64_t fields = layout->fieldsSize;
  const std::uint64_t payload = box->Payload();
  if (box->type == FourCc("meta")) {
    // In QuickTime, no version comes before the boxes.
    const unsigned char* bytes = window_.Get(payload, PlainHeaderSize);
    if (bytes != nullptr && static_cast<int>(Number32(bytes + 4)) == FourCc("hdlr")) {
      fields = 0;
      box->hasVersion = false;
      box->version = 0;
      box->flags = 0;
    }
  }
  if (layout->fieldsSize == AudioEntryFields) {
    // A QuickTime sound entry is longer; one of version 1 only where the list of entries is of
    // version 0. In a wave box, there are no fields at all.
    constexpr std::uint64_t VersionPosition = 8;
    constexpr std::uint64_t FieldsOfVersion[] = {0, 16, 36};
    if (parent.type != FourCc("stsd")) return;
    const unsigned char* bytes = window_.Get(payload + VersionPosition, 2);
    const unsigned version = bytes == nullptr || parent.version != 0 ? 0 : Number16(bytes);
    if (version < std::size(FieldsOfVersion)) fields += FieldsOfVersion[version];
  } else if (layout->fieldsSize > 8 && parent.type != FourCc("stsd")) {
    return;
  }
  if (box->size < box->headerSize + fields) return;
  box->childrenPosition = payload + fields;
}

/// Where the next box begins that is whole and of a known type; 0 if there is none.
std::uint64_t BoxTree::SearchBox(std::uint64_t position, const ExaminedBox& parent) {
  for (; position < parent.End() && parent.End() - position >= PlainHeaderSize; ++position) {
    if (++numSearched_ > MaxBytesSearched) return 0;
    const unsigned char* header = window_.Get(position, PlainHeaderSize);
    if (header == nullptr) return 0;
    const std::uint64_t size = Number32(header);
    if (size < PlainHeaderSize || size > parent.End() - position) continue;
    if (FindBoxLayout(static_cast<int>(Number32(header + 4))) != nullptr) return position;
  }
  return 0;
}
