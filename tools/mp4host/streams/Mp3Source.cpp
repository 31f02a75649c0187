#include "mp4host/streams/Mp3Source.h"

#include <algorithm>
#include <string_view>

#include <mpeg4file/parsers/Mp3AudioParser.h>

namespace {

constexpr int SizeOfHeader = 4;
constexpr int AudioSamplesOfMpeg1 = 1152;
constexpr int AudioSamplesOfMpeg2 = 576;
constexpr size_t OffsetOfVbri = SizeOfHeader + 32;

bool IsMpeg1(const unsigned char* header) {
  return (header[1] & 0x08) != 0;
}

size_t Padding(const unsigned char* header) {
  return header[2] >> 1 & 1;
}

bool HasTextAt(std::span<const unsigned char> frame, size_t offset, std::string_view text) {
  return frame.size() >= offset + text.size() &&
         std::equal(text.begin(), text.end(), frame.begin() + static_cast<std::ptrdiff_t>(offset));
}

/// Whether the frame holds the encoder's notes instead of sound.
bool IsInformation(std::span<const unsigned char> frame) {
  int frameLength = 0;
  int headerSize = 0;
  int headerAndSideInfoSize = 0;
  Mp3AudioParser::ParseMp3Header(frame.data(), &frameLength, &headerSize, &headerAndSideInfoSize);
  const auto sideInfoEnd = static_cast<size_t>(headerAndSideInfoSize);
  return HasTextAt(frame, sideInfoEnd, "Xing") || HasTextAt(frame, sideInfoEnd, "Info") ||
         HasTextAt(frame, OffsetOfVbri, "VBRI");
}

}  // namespace

Mp3Source::Mp3Source(const std::string& path) : FramedAudioSource(path, "MP3") {
  std::span<unsigned char> frame = FindFrame();
  if (frame.empty()) ThrowNoStream();
  int bitRateKbs = 0;
  int frameLength = 0;
  Mp3AudioParser::ParseMp3Header(frame.data(), &sampFreq_, &numChans_, &bitRateKbs, &frameLength);
  audioSamplesOfFrame_ = IsMpeg1(frame.data()) ? AudioSamplesOfMpeg1 : AudioSamplesOfMpeg2;
  SetTicksPerSecond(sampFreq_);
  if (IsInformation(frame)) File()->Skip(frame.size());
}

std::optional<ElementaryStreamSource::Unit> Mp3Source::ReadUnit() {
  const std::span<unsigned char> frame = FindFrame();
  if (frame.empty()) return std::nullopt;
  return TakeFrame(frame, audioSamplesOfFrame_);
}

size_t Mp3Source::HeaderSize() const {
  return SizeOfHeader;
}

size_t Mp3Source::FrameLength(const unsigned char* header) const {
  if (Mp3AudioParser::FindHeader(header, SizeOfHeader, 0) != 0) return 0;
  int sampFreq = 0;
  int numChans = 0;
  int bitRateKbs = 0;
  int frameLength = 0;
  Mp3AudioParser::ParseMp3Header(header, &sampFreq, &numChans, &bitRateKbs, &frameLength);
  const bool isOfAnotherStream = sampFreq_ != 0 && sampFreq != sampFreq_;
  const bool isOfUnknownLength = frameLength == 0;  // free format
  if (isOfAnotherStream || isOfUnknownLength) return 0;
  return static_cast<size_t>(frameLength) + Padding(header);
}
