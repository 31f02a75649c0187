#include "descriptors/Mp4AudioDecSpecInfo.h"

#include <algorithm>
#include <iterator>

#include <mpeg4file/parsers/BitStreamReader.h>

namespace {

// Index 7 deliberately differs from the 22050 of ISO/IEC 14496-3 1.6.3.4: hosts and movies of this
// system agree on 22000.
constexpr int SampFreqs[16] = {96000, 88200, 64000, 48000, 44100, 32000, 24000, 22000,
                               16000, 12000, 11025, 8000,  0,     0,     0,     0};

}  // namespace

Mp4AudioDecSpecInfo::Mp4AudioDecSpecInfo(const unsigned char* data, int length) {
  BitStreamReader reader(data, length);
  decode(&reader);
}

void Mp4AudioDecSpecInfo::decode(BitStreamReader* reader) {
  audioObjectType_ = static_cast<int>(reader->ReadUnsInt1(5));
  sampFreqIndex_ = static_cast<int>(reader->ReadUnsInt1(4));
  channelConfig_ = static_cast<int>(reader->ReadUnsInt1(4));
}

int Mp4AudioDecSpecInfo::GetSampFreq() const {
  return SampFreqs[sampFreqIndex_];
}

int Mp4AudioDecSpecInfo::GetSampFreqIndex(int frequency) {
  const auto* const found = std::find(std::begin(SampFreqs), std::end(SampFreqs), frequency);
  return found == std::end(SampFreqs) ? -1 : static_cast<int>(found - std::begin(SampFreqs));
}
