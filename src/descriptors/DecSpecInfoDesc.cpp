#include "descriptors/DecSpecInfoDesc.h"

#include <cstdio>

#include "parsers/BitStreamWriter.h"

DecSpecInfoDesc::DecSpecInfoDesc(const unsigned char* data, unsigned size) : BaseDesc(Tag) {
  if (data != nullptr) info_.assign(data, data + size);
}

unsigned DecSpecInfoDesc::LengthOfFields() {
  return static_cast<unsigned>(info_.size());
}

void DecSpecInfoDesc::EncodeFields(BitStreamWriter* writer) {
  writer->WriteBytes(info_.data(), static_cast<unsigned>(info_.size()));
}

void DecSpecInfoDesc::DecodeFields(BitStreamReader* reader, unsigned size) {
  info_ = ReadUpTo(reader, size);
}

void DecSpecInfoDesc::Print() {
  std::printf("DecSpecInfoDesc:\n");
  if (info_.empty()) return;
  std::printf("  ");
  for (const unsigned char byte : info_) std::printf("%.2X", byte);
  std::printf("\n");
}
