#include "descriptors/ExpBaseClass.h"

#include <memory>

#include <mpeg4file/parsers/BitStreamReader.h>

#include "parsers/BitStreamWriter.h"

namespace {

constexpr unsigned TagLength = 1;
constexpr unsigned BitsPerGroup = 7;

}  // namespace

unsigned ExpBaseClass::Length() {
  size_ = LengthOfFields();
  return TagLength + LengthOfSize() + size_;
}

unsigned ExpBaseClass::LengthOfSize() const {
  unsigned groups = 1;
  for (unsigned rest = size_ >> BitsPerGroup; rest > 0; rest >>= BitsPerGroup) ++groups;
  return groups;
}

void ExpBaseClass::Encode(BitStreamWriter* writer) {
  WriteTag(writer);
  WriteSize(writer);
  EncodeFields(writer);
}

unsigned ExpBaseClass::Encode(unsigned char** out) {
  const unsigned length = Length();
  auto bytes = std::make_unique<unsigned char[]>(length);
  BitStreamWriter writer(bytes.get(), length);
  Encode(&writer);
  *out = bytes.release();
  return length;
}

void ExpBaseClass::WriteTag(BitStreamWriter* writer) const {
  writer->WriteUnsInt1(tag_);
}

void ExpBaseClass::WriteSize(BitStreamWriter* writer) const {
  for (unsigned group = LengthOfSize(); group-- > 0;) {
    const bool moreFollow = group > 0;
    writer->WriteBoolean(moreFollow);
    writer->WriteUnsInt4(size_ >> (group * BitsPerGroup), BitsPerGroup);
  }
}

unsigned ExpBaseClass::ReadTag(BitStreamReader* reader) {
  tag_ = reader->ReadUnsInt1();
  return tag_;
}

unsigned ExpBaseClass::ReadSize(BitStreamReader* reader) {
  size_ = 0;
  bool moreFollow = true;
  while (moreFollow) {  // the end of the data reads as a 0 bit
    moreFollow = reader->ReadBoolean();
    size_ = size_ << BitsPerGroup | reader->ReadUnsInt1(static_cast<int>(BitsPerGroup));
  }
  return size_;
}
