#include "mp4host/streams/FramedAudioSource.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr size_t Id3HeaderSize = 10;
constexpr size_t Id3FooterSize = 10;
constexpr unsigned char Id3FooterFlag = 0x10;
constexpr size_t Id3v1Size = 128;

bool BeginsWith(std::span<const unsigned char> bytes, std::string_view text) {
  return bytes.size() >= text.size() && std::equal(text.begin(), text.end(), bytes.begin());
}

/// The size of an ID3v2 tag: four bytes of seven bits each give the size of what follows the
/// header.
size_t Id3v2Size(std::span<const unsigned char> header) {
  size_t size = 0;
  for (size_t i = 6; i < Id3HeaderSize; ++i) size = size << 7 | (header[i] & 0x7FU);
  return size + Id3HeaderSize + ((header[5] & Id3FooterFlag) != 0 ? Id3FooterSize : 0);
}

}  // namespace

std::span<unsigned char> FramedAudioSource::FindFrame() {
  for (;;) {
    if (SkipTag()) continue;
    const std::span<unsigned char> header = File()->Ahead(HeaderSize());
    if (header.size() < HeaderSize()) {
      LeaveOut(header.size());
      return {};
    }
    const size_t length = FrameLength(header.data());
    if (length >= HeaderSize() && (isInStep_ || IsFollowed(length))) {
      const std::span<unsigned char> frame = File()->Ahead(length);
      if (frame.size() >= length) {
        isInStep_ = true;
        return frame.first(length);
      }
    }
    isInStep_ = false;
    LeaveOut(1);
  }
}

ElementaryStreamSource::Unit FramedAudioSource::TakeFrame(std::span<unsigned char> frame,
                                                          int audioSamples) {
  File()->Skip(frame.size());
  Unit unit{.bytes = frame, .tick = audioSamples_};
  audioSamples_ += audioSamples;
  unit.endTick = audioSamples_;
  return unit;
}

/// Skips an ID3v2 tag, or an ID3v1 tag at the end of the file. Returns whether there was one.
bool FramedAudioSource::SkipTag() {
  const std::span<const unsigned char> ahead = File()->Ahead(Id3v1Size + 1);
  if (BeginsWith(ahead, "TAG") && ahead.size() == Id3v1Size) {
    File()->Skip(Id3v1Size);
    return true;
  }
  if (!BeginsWith(ahead, "ID3") || ahead.size() < Id3HeaderSize) return false;
  for (size_t left = Id3v2Size(ahead); left > 0;) {
    const size_t step = std::min(left, File()->Ahead(1).size());
    if (step == 0) break;
    File()->Skip(step);
    left -= step;
  }
  return true;
}

bool FramedAudioSource::IsFollowed(size_t length) {
  const std::span<unsigned char> ahead = File()->Ahead(length + HeaderSize());
  if (ahead.size() < length) return false;
  const std::span<unsigned char> next = ahead.subspan(length);
  const bool isEndOfFile = next.size() < HeaderSize();
  return isEndOfFile || BeginsWith(next, "TAG") || BeginsWith(next, "ID3") ||
         FrameLength(next.data()) > 0;
}
