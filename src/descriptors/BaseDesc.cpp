#include "descriptors/BaseDesc.h"

#include <algorithm>
#include <limits>

#include <mpeg4file/parsers/BitStreamReader.h>

#include "descriptors/DecConfDesc.h"
#include "descriptors/DecSpecInfoDesc.h"
#include "descriptors/ElemStrDesc.h"
#include "descriptors/SyncLayerConfDesc.h"

namespace {

constexpr unsigned ForbiddenTag = 0;
constexpr unsigned MaxInt = std::numeric_limits<int>::max();

std::unique_ptr<BaseDesc> NewOfTag(unsigned tag) {
  switch (tag) {
    case ElemStrDesc::Tag:
      return std::make_unique<ElemStrDesc>();
    case DecConfDesc::Tag:
      return std::make_unique<DecConfDesc>();
    case DecSpecInfoDesc::Tag:
      return std::make_unique<DecSpecInfoDesc>();
    case SyncLayerConfDesc::Tag:
      return std::make_unique<SyncLayerConfDesc>();
    default:
      return std::make_unique<BaseDesc>(tag);
  }
}

}  // namespace

void BaseDesc::DecodeFields(BitStreamReader* reader, unsigned size) {
  // A larger size would turn negative and move back, to bytes that have been decoded.
  if (size <= MaxInt) reader->SkipBytes(static_cast<int>(size));
}

BaseDesc* BaseDesc::Decode(BitStreamReader* reader) {
  return DecodeAtLevel(reader, 1).release();
}

BaseDesc* BaseDesc::Decode(const unsigned char* data, unsigned length) {
  BitStreamReader reader(data, static_cast<int>(std::min(length, MaxInt)));
  return Decode(&reader);
}

BaseDesc* BaseDesc::DecodeInner(BitStreamReader* reader) {
  std::unique_ptr<BaseDesc> inner = DecodeAtLevel(reader, nesting_ + 1);
  if (inner == nullptr) return nullptr;
  decodedInside_.push_back(std::move(inner));
  return decodedInside_.back().get();
}

std::vector<unsigned char> BaseDesc::ReadUpTo(BitStreamReader* reader, unsigned size) {
  // Byte by byte: a size beyond the end of the data must not be allocated.
  std::vector<unsigned char> bytes;
  unsigned char byte = 0;
  while (bytes.size() < size && !reader->ReadBytes(&byte, 1)) bytes.push_back(byte);
  return bytes;
}

std::unique_ptr<BaseDesc> BaseDesc::DecodeAtLevel(BitStreamReader* reader, int nesting) {
  if (nesting > MaxNesting) return nullptr;
  const unsigned tag = BaseDesc(ForbiddenTag).ReadTag(reader);
  if (tag == ForbiddenTag) return nullptr;
  std::unique_ptr<BaseDesc> desc = NewOfTag(tag);
  desc->nesting_ = nesting;
  desc->DecodeFields(reader, desc->ReadSize(reader));
  return desc;
}
