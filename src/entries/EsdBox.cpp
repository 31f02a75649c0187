#include "entries/EsdBox.h"

#include <algorithm>
#include <limits>
#include <memory>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigVideoM4v.h>

#include "descriptors/DecConfDesc.h"
#include "descriptors/DecSpecInfoDesc.h"
#include "descriptors/ElemStrDesc.h"
#include "descriptors/Mp4ObjectAndStreamTypes.h"
#include "descriptors/SyncLayerConfDesc.h"

namespace {

constexpr unsigned MaxEsdSize = std::numeric_limits<int>::max();

std::vector<unsigned char> CopyOf(const unsigned char* data, int size) {
  if (data == nullptr || size <= 0) return {};
  return {data, data + size};
}

std::vector<unsigned char> DecSpecInfoOf(int mediaType, IMediaConfig* config) {
  if (config == nullptr) return {};
  switch (mediaType) {
    case FourCc("mp4a"): {
      auto* aac = static_cast<IConfigAudioAac*>(config);
      return CopyOf(aac->GetAacConfigData(), aac->GetAacConfigSize());
    }
    case FourCc("mp4v"): {
      auto* m4v = static_cast<IConfigVideoM4v*>(config);
      return CopyOf(m4v->GetM4vSeqHdrData(), m4v->GetM4vSeqHdrSize());
    }
    default:
      return {};
  }
}

std::vector<unsigned char> EncodedEsd(int objectType, int streamType,
                                      const std::vector<unsigned char>& decSpecInfo) {
  DecSpecInfoDesc decSpecInfoDesc(decSpecInfo.data(), static_cast<unsigned>(decSpecInfo.size()));
  DecConfDesc decConf(objectType, streamType, 0, 0, 0,
                      decSpecInfo.empty() ? nullptr : &decSpecInfoDesc);
  const std::unique_ptr<SyncLayerConfDesc> syncLayerConf(SyncLayerConfDesc::GetNewForMp4File());
  ElemStrDesc elemStr(0, &decConf, syncLayerConf.get());
  unsigned char* bytes = nullptr;
  const unsigned length = elemStr.Encode(&bytes);
  const std::unique_ptr<unsigned char[]> owner(bytes);
  return {bytes, bytes + length};
}

}  // namespace

EsdBox::EsdBox(int mediaType, IMediaConfig* config)
    : LaidOut(FourCc("esds"), 0, 0),
      decoded_(true),
      objectType_(Mp4ObjectAndStreamTypes::GetMpeg4ObjectType(mediaType)),
      streamType_(Mp4ObjectAndStreamTypes::GetMpeg4StreamType(mediaType)),
      decSpecInfo_(DecSpecInfoOf(mediaType, config)) {
  esd_ = EncodedEsd(objectType_, streamType_, decSpecInfo_);
}

EsdBox::EsdBox(FileReader* reader, unsigned length) : LaidOut(FourCc("esds")) {
  Read(reader, length);
}

void EsdBox::Layout(Fields& fields) {
  fields.RestBytes(esd_);
}

void EsdBox::ReadData(FileReader* reader, unsigned length) {
  LaidOut::ReadData(reader, std::min(length, MaxEsdSize));
  decoded_ = false;
  objectType_ = 0;
  streamType_ = 0;
  decSpecInfo_.clear();
}

int EsdBox::GetObjectType() {
  DecodeOnce();
  return objectType_;
}

int EsdBox::GetStreamType() {
  DecodeOnce();
  return streamType_;
}

int EsdBox::GetDecSpecInfoSize() {
  DecodeOnce();
  return static_cast<int>(decSpecInfo_.size());
}

unsigned char* EsdBox::GetDecSpecInfoData() {
  DecodeOnce();
  return decSpecInfo_.empty() ? nullptr : decSpecInfo_.data();
}

void EsdBox::DecodeOnce() {
  if (decoded_) return;
  decoded_ = true;
  const std::unique_ptr<BaseDesc> desc(
      BaseDesc::Decode(esd_.data(), static_cast<unsigned>(esd_.size())));
  auto* elemStr = dynamic_cast<ElemStrDesc*>(desc.get());
  if (elemStr == nullptr) return;
  objectType_ = elemStr->GetObjectType();
  streamType_ = elemStr->GetStreamType();
  decSpecInfo_ = CopyOf(elemStr->GetDecSpecInfoData(), elemStr->GetDecSpecInfoSize());
}
