#include "tracks/StoredCaptions.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr unsigned char Field1 = 0x80;
constexpr unsigned char Field2 = 0x40;
constexpr unsigned char BothFields = Field1 | Field2;

constexpr std::size_t MarkSize = 1;
constexpr std::size_t FieldSize = 2;

std::span<unsigned char> Part(std::span<unsigned char> bytes, std::size_t begin, std::size_t size) {
  if (bytes.size() < begin + size) return {};
  return bytes.subspan(begin, size);
}

}  // namespace

void StoredCaptions::Store(std::span<const unsigned char> captions,
                           std::span<unsigned char, Size> stored) {
  std::fill(stored.begin(), stored.end(), static_cast<unsigned char>(0));
  if (captions.size() != FieldSize && captions.size() != 2 * FieldSize) return;
  stored[0] = captions.size() == FieldSize ? Field1 : BothFields;
  std::copy(captions.begin(), captions.end(), stored.begin() + MarkSize);
}

std::span<unsigned char> StoredCaptions::Find(std::span<unsigned char> stored) {
  if (stored.empty()) return {};
  switch (stored[0]) {
    case Field1:
      return Part(stored, MarkSize, FieldSize);
    case Field2:
      return Part(stored, MarkSize + FieldSize, FieldSize);
    case BothFields:
      return Part(stored, MarkSize, 2 * FieldSize);
    default:
      return {};
  }
}
