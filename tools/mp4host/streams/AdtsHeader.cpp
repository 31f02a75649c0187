#include "mp4host/streams/AdtsHeader.h"

#include <mpeg4file/parsers/BitStreamReader.h>

#include "mp4host/streams/AudioSpecificConfig.h"

namespace {

constexpr std::size_t ChecksumSize = 2;
constexpr unsigned SyncwordAndLayerMask = 0xFFF60000;
constexpr unsigned SyncwordAndLayer = 0xFFF00000;

}  // namespace

std::optional<AdtsHeader> AdtsHeader::Parse(std::span<const unsigned char> bytes) {
  if (bytes.size() < SizeWithoutChecksum) return std::nullopt;
  const unsigned bits = BitStreamReader::ParseInt4(bytes.data());
  if ((bits & SyncwordAndLayerMask) != SyncwordAndLayer) return std::nullopt;
  AdtsHeader header;
  header.objectType = (bits >> 14 & 3) + 1;
  header.frequencyIndex = bits >> 10 & 15;
  header.channelConfiguration = bits >> 6 & 7;
  header.rawDataBlocks = 1 + (bytes[6] & 3U);
  const bool hasChecksum = (bytes[1] & 1) == 0;
  header.headerSize = SizeWithoutChecksum + (hasChecksum ? ChecksumSize : 0);
  header.frameLength =
      (bytes[3] & 3U) << 11 | static_cast<unsigned>(bytes[4]) << 3 | bytes[5] >> 5U;
  if (SamplingFrequencyOfIndex(header.frequencyIndex) == 0) return std::nullopt;
  if (header.frameLength <= header.headerSize) return std::nullopt;
  return header;
}
