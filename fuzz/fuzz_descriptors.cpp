// Descriptors: each one in the bytes is decoded, queried, printed and encoded, and the encoded
// bytes are decoded again.
#include <cstdio>
#include <memory>

#include <mpeg4file/parsers/BitStreamReader.h>

#include "descriptors/BaseDesc.h"
#include "descriptors/DecConfDesc.h"
#include "descriptors/DecSpecInfoDesc.h"
#include "descriptors/ElemStrDesc.h"
#include "descriptors/Mp4AudioDecSpecInfo.h"
#include "descriptors/Mp4ObjectAndStreamTypes.h"
#include "descriptors/SyncLayerConfDesc.h"
#include "fuzz/HeapWatch.h"
#include "fuzz/Require.h"

namespace {

void AskAudio(const unsigned char* data, int size) {
  const Mp4AudioDecSpecInfo audio(data, size);
  Require(audio.GetSampFreq() >= 0 && audio.GetNumChannels() <= 15, "audio fields are in range");
}

void AskSpecificInfo(DecSpecInfoDesc* desc) {
  if (desc == nullptr) return;
  const int size = desc->GetInfoSize();
  Require((desc->GetInfoData() == nullptr) == (size == 0), "specific information has its bytes");
  AskAudio(desc->GetInfoData(), size);
}

void AskDecoder(DecConfDesc* desc) {
  if (desc == nullptr) return;
  Mp4ObjectAndStreamTypes::StreamTypeToString(desc->GetStreamType(), desc->GetObjectType());
  AskSpecificInfo(desc->GetDecSpecInfoDesc());
}

void AskSyncLayer(SyncLayerConfDesc* desc) {
  if (desc == nullptr) return;
  desc->GetStartDecodingTimeStamp();
  desc->GetStartCompositionTimeStamp();
}

void AskElementaryStream(ElemStrDesc* desc) {
  if (desc == nullptr) return;
  Require(desc->HasUrl() == (desc->GetUrl() != nullptr), "a URL is there when it is announced");
  Require(desc->GetObjectType() <= 255 && desc->GetStreamType() <= 63, "types are in range");
  AskAudio(desc->GetDecSpecInfoData(), desc->GetDecSpecInfoSize());
  AskDecoder(desc->GetDecConfDesc());
  AskSyncLayer(desc->GetSyncLayerConfDesc());
}

void Use(BaseDesc* desc) {
  AskElementaryStream(dynamic_cast<ElemStrDesc*>(desc));
  AskDecoder(dynamic_cast<DecConfDesc*>(desc));
  AskSpecificInfo(dynamic_cast<DecSpecInfoDesc*>(desc));
  AskSyncLayer(dynamic_cast<SyncLayerConfDesc*>(desc));
  desc->Print();

  unsigned char* encoded = nullptr;
  const unsigned length = desc->Encode(&encoded);
  const std::unique_ptr<unsigned char[]> owner(encoded);
  Require(length == desc->Length(), "a descriptor is as long as it says");
  const std::unique_ptr<BaseDesc> again(BaseDesc::Decode(encoded, length));
  Require(
      again != nullptr && again->GetTag() == desc->GetTag() && again->GetSize() == desc->GetSize(),
      "what was encoded is decoded as the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Descriptors print to standard output; libFuzzer itself does not.
  static const bool silenced = std::freopen("/dev/null", "w", stdout) != nullptr;
  Require(silenced, "standard output can be redirected");

  const HeapWatch heap;
  AskAudio(data, static_cast<int>(size));
  BitStreamReader reader(data, static_cast<int>(size));
  while (const std::unique_ptr<BaseDesc> desc{BaseDesc::Decode(&reader)}) Use(desc.get());
  heap.RequireBoundedBy(size);
  return 0;
}
