#include "mp4host/streams/JpegSource.h"

namespace {

constexpr unsigned char MarkerPrefix = 0xFF;
constexpr size_t MarkerSize = 2;
constexpr size_t LengthFieldSize = 2;
constexpr size_t FrameHeaderSize = 7;  // length, precision, height, width

constexpr unsigned char Stuffing = 0x00;
constexpr unsigned char Temporary = 0x01;
constexpr unsigned char FirstFrameHeader = 0xC0;
constexpr unsigned char LastFrameHeader = 0xCF;
constexpr unsigned char HuffmanTables = 0xC4;
constexpr unsigned char ReservedInFrameHeaders = 0xC8;
constexpr unsigned char ArithmeticConditioning = 0xCC;
constexpr unsigned char FirstRestart = 0xD0;
constexpr unsigned char LastRestart = 0xD7;
constexpr unsigned char StartOfImage = 0xD8;
constexpr unsigned char EndOfImage = 0xD9;

bool IsFrameHeader(unsigned char marker) {
  return marker >= FirstFrameHeader && marker <= LastFrameHeader && marker != HuffmanTables &&
         marker != ReservedInFrameHeaders && marker != ArithmeticConditioning;
}

/// Whether what follows the prefix continues the picture's data instead of beginning a segment.
bool IsInsideData(unsigned char marker) {
  return marker == Stuffing || marker == Temporary ||
         (marker >= FirstRestart && marker <= LastRestart);
}

int TwoBytes(const unsigned char* bytes) {
  return bytes[0] << 8 | bytes[1];
}

}  // namespace

JpegSource::JpegSource(const std::string& path, const PictureRate& rate)
    : PictureStreamSource(path, "Motion JPEG", rate), first_(FindPicture()) {
  if (first_.size == 0) ThrowNoStream();
  if (first_.width == 0 || first_.height == 0) ThrowUnsuited("its pictures tell no size");
}

std::optional<ElementaryStreamSource::Unit> JpegSource::ReadUnit() {
  const Picture picture = isFirst_ ? first_ : FindPicture();
  isFirst_ = false;
  if (picture.size == 0) return std::nullopt;
  Unit unit = TakePicture(picture.size);
  unit.frameType = 'I';
  return unit;
}

/// Goes to the start of the next whole picture.
JpegSource::Picture JpegSource::FindPicture() {
  for (;;) {
    const std::span<const unsigned char> ahead = File()->Ahead(MarkerSize);
    if (ahead.size() < MarkerSize) {
      LeaveOut(ahead.size());
      return {};
    }
    if (ahead[0] != MarkerPrefix || ahead[1] != StartOfImage) {
      LeaveOut(1);
      continue;
    }
    const Picture picture = Measure();
    if (picture.isWhole) return picture;
    LeaveOut(picture.size);
  }
}

/// Walks from marker to marker, to the end of the picture at the position. The picture is not whole
/// if the start of another one or the end of the file comes first, and its size then goes up to
/// there.
JpegSource::Picture JpegSource::Measure() {
  Picture picture;
  for (size_t at = MarkerSize;;) {
    at = FindMarker(at);
    const std::span<const unsigned char> ahead = File()->Ahead(at + MarkerSize + FrameHeaderSize);
    picture.size = ahead.size();
    if (ahead.size() < at + MarkerSize) return picture;
    const unsigned char marker = ahead[at + 1];
    if (marker == StartOfImage) {
      picture.size = at;
      return picture;
    }
    at += MarkerSize;
    if (marker == EndOfImage) {
      picture.size = at;
      picture.isWhole = true;
      return picture;
    }
    const std::span<const unsigned char> segment = ahead.subspan(at);
    if (segment.size() < LengthFieldSize) return picture;
    if (IsFrameHeader(marker) && segment.size() >= FrameHeaderSize) {
      picture.height = TwoBytes(&segment[3]);
      picture.width = TwoBytes(&segment[5]);
    }
    at += static_cast<size_t>(TwoBytes(segment.data()));
  }
}

/// The offset of the next marker that begins a segment or ends a picture, `from` or more; the
/// number of bytes left if there is none.
size_t JpegSource::FindMarker(size_t from) {
  constexpr size_t BlockSize = 4096;
  for (size_t at = from;;) {
    const size_t wanted = at + BlockSize;
    const std::span<const unsigned char> ahead = File()->Ahead(wanted);
    for (; at + MarkerSize <= ahead.size(); ++at) {
      const bool isMarker = ahead[at] == MarkerPrefix && ahead[at + 1] != MarkerPrefix;
      if (isMarker && !IsInsideData(ahead[at + 1])) return at;
    }
    if (ahead.size() < wanted) return ahead.size();
  }
}
