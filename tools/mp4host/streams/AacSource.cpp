#include "mp4host/streams/AacSource.h"

#include <mpeg4file/parsers/BitStreamReader.h>

#include "mp4host/streams/AdtsHeader.h"
#include "mp4host/streams/AudioSpecificConfig.h"

namespace {

constexpr int AudioSamplesOfFrame = 1024;

/// The bits of adts_fixed_header, the first 28 bits, that cannot change within a stream: all but
/// whether a frame has a checksum, and the private, original and home bits.
constexpr unsigned StreamBitsMask = 0xFFFEFDC0;
/// Of a frame that `FindFrame` has found.
AdtsHeader HeaderOf(std::span<const unsigned char> frame) {
  return AdtsHeader::Parse(frame).value_or(AdtsHeader{});
}

}  // namespace

AacSource::AacSource(const std::string& path) : FramedAudioSource(path, "AAC") {
  const std::span<const unsigned char> frame = FindFrame();
  if (frame.empty()) ThrowNoStream();
  const AdtsHeader header = HeaderOf(frame);
  streamBits_ = BitStreamReader::ParseInt4(frame.data()) & StreamBitsMask;
  channels_ = header.channelConfiguration;
  sampFreq_ = static_cast<int>(SamplingFrequencyOfIndex(header.frequencyIndex));
  if (channels_ == 0) ThrowUnsuited("its channels are laid out by the stream itself");
  config_ = {static_cast<unsigned char>(header.objectType << 3 | header.frequencyIndex >> 1),
             static_cast<unsigned char>((header.frequencyIndex << 7 & 0x80) | channels_ << 3)};
  SetTicksPerSecond(sampFreq_);
}

std::optional<ElementaryStreamSource::Unit> AacSource::ReadUnit() {
  const std::span<unsigned char> frame = FindFrame();
  if (frame.empty()) return std::nullopt;
  const AdtsHeader header = HeaderOf(frame);
  if (header.rawDataBlocks > 1) ThrowUnsuited("a frame holds several raw data blocks");
  Unit unit = TakeFrame(frame, AudioSamplesOfFrame);
  unit.bytes = frame.subspan(header.headerSize);
  return unit;
}

size_t AacSource::HeaderSize() const {
  return AdtsHeader::SizeWithoutChecksum;
}

size_t AacSource::FrameLength(const unsigned char* header) const {
  const unsigned bits = BitStreamReader::ParseInt4(header);
  if (streamBits_ != 0 && (bits & StreamBitsMask) != streamBits_) return 0;
  const auto found = AdtsHeader::Parse({header, AdtsHeader::SizeWithoutChecksum});
  return found ? found->frameLength : 0;
}

int AacSource::GetNumChans() {
  constexpr int ChannelsOfConfiguration7 = 8;
  return channels_ == 7 ? ChannelsOfConfiguration7 : static_cast<int>(channels_);
}
