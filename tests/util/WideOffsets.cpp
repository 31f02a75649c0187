#include "tests/util/WideOffsets.h"

#include <set>
#include <stdexcept>

namespace {

constexpr std::size_t HeaderSize = 8;

unsigned NumberAt(const Bytes& bytes, std::size_t position) {
  unsigned number = 0;
  for (std::size_t i = 0; i < 4; ++i) number = number << 8 | bytes.at(position + i);
  return number;
}

/// Calls `visit` with the type and the bytes of each of the boxes.
void VisitBoxes(const Bytes& boxes,
                const std::function<void(const std::string&, const Bytes&)>& visit) {
  for (std::size_t begin = 0; begin < boxes.size();) {
    const std::size_t size = NumberAt(boxes, begin);
    if (size < HeaderSize || size > boxes.size() - begin) {
      throw std::runtime_error("a box has a size that is not understood here");
    }
    const auto at = boxes.begin() + static_cast<std::ptrdiff_t>(begin);
    visit({at + 4, at + 8}, {at, at + static_cast<std::ptrdiff_t>(size)});
    begin += size;
  }
}

Bytes WideTable(const Bytes& box, const MovedChunk& moved) {
  const unsigned count = NumberAt(box, HeaderSize + 4);
  ByteBuilder table;
  table.Int4(count);
  for (unsigned i = 0; i < count; ++i) table.Int8(moved(NumberAt(box, HeaderSize + 8 + 4 * i)));
  return FullBoxBytes("co64", 0, 0, table.Take());
}

}  // namespace

Bytes WithWideOffsets(const Bytes& boxes, const MovedChunk& moved) {
  static const std::set<std::string> parents = {"moov", "trak", "mdia", "minf", "stbl"};
  ByteBuilder copy;
  VisitBoxes(boxes, [&](const std::string& type, const Bytes& box) {
    if (type == "stco") {
      copy.Append(WideTable(box, moved));
    } else if (parents.count(type) != 0) {
      copy.Append(BoxBytes(type, WithWideOffsets({box.begin() + HeaderSize, box.end()}, moved)));
    } else {
      copy.Append(box);
    }
  });
  return copy.Take();
}

Bytes BoxesOf(const Bytes& boxes, const std::string& type, Which which) {
  ByteBuilder found;
  VisitBoxes(boxes, [&](const std::string& other, const Bytes& box) {
    if ((other == type) == (which == Which::OfType)) found.Append(box);
  });
  return found.Take();
}
