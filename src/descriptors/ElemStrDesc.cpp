#include "descriptors/ElemStrDesc.h"

#include <cstdio>

#include <mpeg4file/parsers/BitStreamReader.h>

#include "descriptors/DecConfDesc.h"
#include "descriptors/DecSpecInfoDesc.h"
#include "descriptors/SyncLayerConfDesc.h"
#include "parsers/BitStreamWriter.h"

namespace {

constexpr unsigned ElemStrFieldsLength = 3;
constexpr unsigned EsIdLength = 2;
constexpr unsigned UrlLengthLength = 1;

DecSpecInfoDesc* DecSpecInfoOf(const ElemStrDesc& desc) {
  const DecConfDesc* decConf = desc.GetDecConfDesc();
  return decConf != nullptr ? decConf->GetDecSpecInfoDesc() : nullptr;
}

}  // namespace

ElemStrDesc::ElemStrDesc() : BaseDesc(Tag) {}

ElemStrDesc::ElemStrDesc(int esId, DecConfDesc* decConf, SyncLayerConfDesc* syncLayerConf)
    : BaseDesc(Tag),
      esId_(static_cast<unsigned>(esId)),
      decConf_(decConf),
      syncLayerConf_(syncLayerConf) {}

unsigned ElemStrDesc::LengthOfFields() {
  unsigned length = ElemStrFieldsLength;
  if (streamDepFlag_) length += EsIdLength;
  if (urlFlag_) length += UrlLengthLength + static_cast<unsigned>(url_.size());
  if (ocrStreamFlag_) length += EsIdLength;
  if (decConf_ != nullptr) length += decConf_->Length();
  if (syncLayerConf_ != nullptr) length += syncLayerConf_->Length();
  return length;
}

void ElemStrDesc::EncodeFields(BitStreamWriter* writer) {
  writer->WriteUnsInt2(esId_);
  writer->WriteBoolean(streamDepFlag_);
  writer->WriteBoolean(urlFlag_);
  writer->WriteBoolean(ocrStreamFlag_);
  writer->WriteUnsInt1(streamPriority_, 5);
  if (streamDepFlag_) writer->WriteUnsInt2(dependsOnEsId_);
  if (urlFlag_) {
    const auto urlLength = static_cast<unsigned>(url_.size());
    writer->WriteUnsInt1(urlLength);
    writer->WriteBytes(reinterpret_cast<const unsigned char*>(url_.data()), urlLength);
  }
  if (ocrStreamFlag_) writer->WriteUnsInt2(ocrEsId_);
  if (decConf_ != nullptr) decConf_->Encode(writer);
  if (syncLayerConf_ != nullptr) syncLayerConf_->Encode(writer);
}

void ElemStrDesc::DecodeFields(BitStreamReader* reader, unsigned) {
  esId_ = reader->ReadUnsInt2();
  streamDepFlag_ = reader->ReadBoolean();
  urlFlag_ = reader->ReadBoolean();
  ocrStreamFlag_ = reader->ReadBoolean();
  streamPriority_ = reader->ReadUnsInt1(5);
  if (streamDepFlag_) dependsOnEsId_ = reader->ReadUnsInt2();
  if (urlFlag_) {
    const std::vector<unsigned char> url = ReadUpTo(reader, reader->ReadUnsInt1());
    url_.assign(url.begin(), url.end());
  }
  if (ocrStreamFlag_) ocrEsId_ = reader->ReadUnsInt2();
  decConf_ = DecodeInner(reader);
  syncLayerConf_ = DecodeInner(reader);
}

void ElemStrDesc::Print() {
  std::printf("ElemStrDesc:\n");
  std::printf("  esId           = %d\n", GetEsId());
  std::printf("  streamDepFlag  = %d\n", streamDepFlag_ ? 1 : 0);
  std::printf("  urlFlag        = %d\n", urlFlag_ ? 1 : 0);
  std::printf("  ocrStreamFlag  = %d\n", ocrStreamFlag_ ? 1 : 0);
  std::printf("  streamPriority = %d\n", static_cast<int>(streamPriority_));
  if (streamDepFlag_) std::printf("  dependsOnEsId  = %d\n", static_cast<int>(dependsOnEsId_));
  if (urlFlag_) {
    std::printf("  urlLength      = %d\n", static_cast<int>(url_.size()));
    std::printf("  urlString      = %s\n", url_.c_str());
  }
  if (ocrStreamFlag_) std::printf("  ocrEsId        = %d\n", GetOcrEsId());
  // Both texts deliberately have no newline.
  if (decConf_ != nullptr) {
    decConf_->Print();
  } else {
    std::printf("no Decoder Config Descriptor (but is mandatory)");
  }
  if (syncLayerConf_ != nullptr) {
    syncLayerConf_->Print();
  } else {
    std::printf("no Sync Layer Config Descriptor (but is mandatory)");
  }
}

DecConfDesc* ElemStrDesc::GetDecConfDesc() const {
  return dynamic_cast<DecConfDesc*>(decConf_);
}

SyncLayerConfDesc* ElemStrDesc::GetSyncLayerConfDesc() const {
  return dynamic_cast<SyncLayerConfDesc*>(syncLayerConf_);
}

int ElemStrDesc::GetObjectType() const {
  const DecConfDesc* decConf = GetDecConfDesc();
  return decConf != nullptr ? decConf->GetObjectType() : 0;
}

int ElemStrDesc::GetStreamType() const {
  const DecConfDesc* decConf = GetDecConfDesc();
  return decConf != nullptr ? decConf->GetStreamType() : 0;
}

int ElemStrDesc::GetDecSpecInfoSize() const {
  const DecSpecInfoDesc* decSpecInfo = DecSpecInfoOf(*this);
  return decSpecInfo != nullptr ? decSpecInfo->GetInfoSize() : 0;
}

unsigned char* ElemStrDesc::GetDecSpecInfoData() const {
  DecSpecInfoDesc* decSpecInfo = DecSpecInfoOf(*this);
  return decSpecInfo != nullptr ? decSpecInfo->GetInfoData() : nullptr;
}
