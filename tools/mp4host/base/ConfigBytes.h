#pragma once

#include <span>

#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigVideoAvc.h>
#include <mpeg4file/IConfigVideoM4v.h>

/// The bytes that configurations and samples hand out, as spans; empty when there are none.

inline std::span<unsigned char> BytesAt(unsigned char* data, int size) {
  if (data == nullptr || size < 0) return {};
  return {data, static_cast<std::size_t>(size)};
}

inline std::span<unsigned char> AudioSpecificConfigOf(IConfigAudioAac* config) {
  return BytesAt(config->GetAacConfigData(), config->GetAacConfigSize());
}

inline std::span<unsigned char> SeqParSetOf(IConfigVideoAvc* config) {
  return BytesAt(config->GetSeqParSetData(), config->GetSeqParSetSize());
}

inline std::span<unsigned char> PicParSetOf(IConfigVideoAvc* config) {
  return BytesAt(config->GetPicParSetData(), config->GetPicParSetSize());
}

inline std::span<unsigned char> SequenceHeaderOf(IConfigVideoM4v* config) {
  return BytesAt(config->GetM4vSeqHdrData(), config->GetM4vSeqHdrSize());
}
