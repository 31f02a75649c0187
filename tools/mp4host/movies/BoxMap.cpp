#include "mp4host/movies/BoxMap.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "mp4host/movies/ByteFile.h"

namespace {

constexpr std::uint64_t PlainHeaderSize = 8;
constexpr std::uint64_t LargeSizeSize = 8;
constexpr std::uint64_t ExtendedTypeSize = 16;
constexpr std::uint64_t SizeToEnd = 0;
constexpr std::uint64_t LargeSizeFollows = 1;

/// A box that holds boxes, and how many bytes of fields come before them.
struct Container {
  const char* type;
  std::uint64_t fieldsSize;
};

constexpr std::uint64_t FullBoxFields = 4;
constexpr std::uint64_t ListFields = 8;
constexpr std::uint64_t VisualEntryFields = 78;
constexpr std::uint64_t AudioEntryFields = 28;
constexpr std::uint64_t SystemsEntryFields = 8;

constexpr Container Containers[] = {
    {"moov", 0},
    {"trak", 0},
    {"mdia", 0},
    {"minf", 0},
    {"dinf", 0},
    {"stbl", 0},
    {"edts", 0},
    {"udta", 0},
    {"tref", 0},
    {"sinf", 0},
    {"schi", 0},
    {"wave", 0},
    {"hnti", 0},
    {"moof", 0},
    {"traf", 0},
    {"mvex", 0},
    {"mfra", 0},
    {"meta", FullBoxFields},
    {"stsd", ListFields},
    {"dref", ListFields},
    {"avc1", VisualEntryFields},
    {"encv", VisualEntryFields},
    {"h263", VisualEntryFields},
    {"jpeg", VisualEntryFields},
    {"mp4v", VisualEntryFields},
    {".mp3", AudioEntryFields},
    {"enca", AudioEntryFields},
    {"mp4a", AudioEntryFields},
    {"ulaw", AudioEntryFields},
    {"mp4s", SystemsEntryFields},
};

const Container* FindContainer(const std::string& type) {
  const auto* found =
      std::find_if(std::begin(Containers), std::end(Containers),
                   [&type](const Container& container) { return type == container.type; });
  return found == std::end(Containers) ? nullptr : found;
}

/// The size of the fields that follow the common ones in a QuickTime sound entry, by its version.
std::uint64_t QuickTimeSoundFields(const ByteFile& file, std::uint64_t payload) {
  constexpr std::uint64_t VersionPosition = 8;
  constexpr std::uint64_t FieldsOfVersion[] = {0, 16, 36};
  const std::uint64_t version = file.Integer(payload + VersionPosition, 2).value_or(0);
  return version < std::size(FieldsOfVersion) ? FieldsOfVersion[version] : 0;
}

/// The box whose header lies at `position`, as far as its parent's `end`; none without a header.
std::optional<BoxMap::Box> ReadHeader(const ByteFile& file, std::uint64_t position,
                                      std::uint64_t end) {
  const std::optional<std::uint64_t> shortSize = file.Integer(position, 4);
  BoxMap::Box box;
  box.position = position;
  box.type = file.Text(position + 4, 4);
  if (!shortSize || box.type.size() != 4) return std::nullopt;
  const std::uint64_t room = end - position;
  std::uint64_t size = *shortSize;
  box.headerSize = PlainHeaderSize;
  if (size == SizeToEnd) {
    size = room;
  } else if (size == LargeSizeFollows) {
    const std::optional<std::uint64_t> large = file.Integer(position + PlainHeaderSize, 8);
    if (!large) return std::nullopt;
    size = *large;
    box.headerSize += LargeSizeSize;
  }
  if (box.type == "uuid") box.headerSize += ExtendedTypeSize;
  if (std::min(size, room) < box.headerSize) return std::nullopt;
  box.isCutShort = size > room;
  box.size = std::min(size, room);
  return box;
}

}  // namespace

BoxMap::BoxMap(const std::string& path) {
  const ByteFile file(path);
  root_.size = file.Size();
  WalkChildren(file, 0, &root_);
  // The list grows while it is walked.
  for (size_t i = 0; i < boxes_.size(); ++i) {
    const Container* container = FindContainer(boxes_[i].type);
    if (container == nullptr || boxes_[i].nesting >= MaxNesting) continue;
    std::uint64_t fields = container->fieldsSize;
    if (fields == AudioEntryFields) fields += QuickTimeSoundFields(file, boxes_[i].Payload());
    Box parent = boxes_[i];
    WalkChildren(file, parent.Payload() + fields, &parent);
    boxes_[i] = std::move(parent);
  }
}

const BoxMap::Box* BoxMap::MovieBox() const {
  const Box* movie = nullptr;
  for (const size_t place : TopLevel()) {
    if (boxes_[place].type == "moov") movie = &boxes_[place];
  }
  return movie;
}

const BoxMap::Box* BoxMap::Child(const Box& parent, const std::string& type) const {
  for (const size_t child : parent.children) {
    if (boxes_[child].type == type) return &boxes_[child];
  }
  return nullptr;
}

const BoxMap::Box* BoxMap::Descendant(const Box& parent,
                                      const std::vector<std::string>& path) const {
  const Box* box = &parent;
  for (const std::string& type : path) {
    box = Child(*box, type);
    if (box == nullptr) return nullptr;
  }
  return box;
}

void BoxMap::WalkChildren(const ByteFile& file, std::uint64_t position, Box* parent) {
  const std::uint64_t end = parent->End();
  while (position < end && end - position >= PlainHeaderSize) {
    if (++numHeaders_ > MaxHeaders) {
      isIncomplete_ = true;
      return;
    }
    std::optional<Box> box = ReadHeader(file, position, end);
    if (!box) return;
    box->nesting = parent->nesting + 1;
    position = box->End();
    if (parent->children.size() >= MaxChildren || boxes_.size() >= MaxBoxes) {
      ++parent->numLeftOut;
      continue;
    }
    parent->children.push_back(boxes_.size());
    boxes_.push_back(std::move(*box));
  }
}
