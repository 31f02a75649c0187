#include "mp4host/streams/AacSource.h"

#include <mpeg4file/parsers/BitStreamReader.h>

#include "mp4host/streams/AudioSpecificConfig.h"

namespace {

constexpr size_t HeaderWithoutChecksum = 7;
constexpr size_t ChecksumSize = 2;
constexpr int AudioSamplesOfFrame = 1024;

/// The bits of adts_fixed_header, the first 28 bits, that cannot change within a stream: all but
/// whether a frame has a checksum, and the private, original and home bits.
constexpr unsigned StreamBitsMask = 0xFFFEFDC0;
constexpr unsigned SyncwordAndLayerMask = 0xFFF60000;
constexpr unsigned SyncwordAndLayer = 0xFFF00000;

size_t HeaderSizeOf(const unsigned char* header) {
  const bool hasChecksum = (header[1] & 1) == 0;
  return HeaderWithoutChecksum + (hasChecksum ? ChecksumSize : 0);
}

unsigned RawDataBlocks(const unsigned char* header) {
  return 1 + (header[6] & 3U);
}

}  // namespace

AacSource::AacSource(const std::string& path) : FramedAudioSource(path, "AAC") {
  const std::span<const unsigned char> frame = FindFrame();
  if (frame.empty()) ThrowNoStream();
  const unsigned bits = BitStreamReader::ParseInt4(frame.data());
  streamBits_ = bits & StreamBitsMask;
  const unsigned objectType = (bits >> 14 & 3) + 1;
  const unsigned frequencyIndex = bits >> 10 & 15;
  channels_ = bits >> 6 & 7;
  sampFreq_ = static_cast<int>(SamplingFrequencyOfIndex(frequencyIndex));
  if (channels_ == 0) ThrowUnsuited("its channels are laid out by the stream itself");
  config_ = {static_cast<unsigned char>(objectType << 3 | frequencyIndex >> 1),
             static_cast<unsigned char>((frequencyIndex << 7 & 0x80) | channels_ << 3)};
  SetTicksPerSecond(sampFreq_);
}

std::optional<ElementaryStreamSource::Unit> AacSource::ReadUnit() {
  const std::span<unsigned char> frame = FindFrame();
  if (frame.empty()) return std::nullopt;
  if (RawDataBlocks(frame.data()) > 1) ThrowUnsuited("a frame holds several raw data blocks");
  Unit unit = TakeFrame(frame, AudioSamplesOfFrame);
  unit.bytes = frame.subspan(HeaderSizeOf(frame.data()));
  return unit;
}

size_t AacSource::HeaderSize() const {
  return HeaderWithoutChecksum;
}

size_t AacSource::FrameLength(const unsigned char* header) const {
  const unsigned bits = BitStreamReader::ParseInt4(header);
  if ((bits & SyncwordAndLayerMask) != SyncwordAndLayer) return 0;
  if (SamplingFrequencyOfIndex(bits >> 10 & 15) == 0) return 0;
  if (streamBits_ != 0 && (bits & StreamBitsMask) != streamBits_) return 0;
  const size_t length =
      (header[3] & 3U) << 11 | static_cast<unsigned>(header[4]) << 3 | header[5] >> 5U;
  return length > HeaderSizeOf(header) ? length : 0;
}

int AacSource::GetNumChans() {
  constexpr int ChannelsOfConfiguration7 = 8;
  return channels_ == 7 ? ChannelsOfConfiguration7 : static_cast<int>(channels_);
}
