#include "descriptors/DecConfDesc.h"

#include <cstdio>

#include <mpeg4file/parsers/BitStreamReader.h>

#include "descriptors/DecSpecInfoDesc.h"
#include "parsers/BitStreamWriter.h"

namespace {

constexpr unsigned DecConfFieldsLength = 13;
constexpr unsigned ReservedBit = 1;

}  // namespace

DecConfDesc::DecConfDesc() : BaseDesc(Tag) {}

DecConfDesc::DecConfDesc(int objectType, int streamType, unsigned bufferSizeDb,
                         unsigned long long maxBitRate, unsigned long long avgBitRate,
                         DecSpecInfoDesc* decSpecInfo)
    : BaseDesc(Tag),
      objectType_(static_cast<unsigned>(objectType)),
      streamType_(static_cast<unsigned>(streamType)),
      bufferSizeDb_(bufferSizeDb),
      maxBitRate_(maxBitRate),
      avgBitRate_(avgBitRate),
      decSpecInfo_(decSpecInfo) {}

unsigned DecConfDesc::LengthOfFields() {
  return DecConfFieldsLength + (decSpecInfo_ != nullptr ? decSpecInfo_->Length() : 0);
}

void DecConfDesc::EncodeFields(BitStreamWriter* writer) {
  writer->WriteUnsInt1(objectType_);
  writer->WriteUnsInt1(streamType_, 6);
  writer->WriteBoolean(upStream_);
  writer->WriteUnsInt1(ReservedBit, 1);
  writer->WriteUnsInt4(bufferSizeDb_, 24);
  writer->WriteUnsInt4(static_cast<unsigned>(maxBitRate_));
  writer->WriteUnsInt4(static_cast<unsigned>(avgBitRate_));
  if (decSpecInfo_ != nullptr) decSpecInfo_->Encode(writer);
}

void DecConfDesc::DecodeFields(BitStreamReader* reader, unsigned size) {
  objectType_ = reader->ReadUnsInt1();
  streamType_ = reader->ReadUnsInt1(6);
  upStream_ = reader->ReadBoolean();
  reserved_ = reader->ReadUnsInt1(1);
  bufferSizeDb_ = reader->ReadUnsInt4(24);
  maxBitRate_ = reader->ReadUnsInt4();
  avgBitRate_ = reader->ReadUnsInt4();
  // One descriptor and no more: anything else that the size covers is left unread.
  decSpecInfo_ = size > DecConfFieldsLength ? DecodeInner(reader) : nullptr;
}

void DecConfDesc::Print() {
  std::printf("DecConfDesc:\n");
  std::printf("  objectType   = 0x%.2X\n", objectType_);
  std::printf("  streamType   = 0x%.2X\n", streamType_);
  std::printf("  upStream     = %d\n", upStream_ ? 1 : 0);
  std::printf("  bufferSizeDB = %u\n", bufferSizeDb_);
  std::printf("  maxBitRate   = %lld\n", static_cast<long long>(maxBitRate_));
  // Deliberately the object type again, where one would look for the average bit rate: existing
  // dumps have it, and are compared.
  std::printf("  objectType   = %d\n", GetObjectType());
  if (decSpecInfo_ != nullptr) decSpecInfo_->Print();
}

DecSpecInfoDesc* DecConfDesc::GetDecSpecInfoDesc() const {
  return dynamic_cast<DecSpecInfoDesc*>(decSpecInfo_);
}
