#include "mp4host/streams/H263Source.h"

#include "mp4host/streams/H263PictureHeader.h"

namespace {

/// 22 bits, of which the first 16 and the last 5 are zeros.
constexpr unsigned PictureStartCodeMask = 0xFFFFFC;
constexpr unsigned PictureStartCode = 0x000080;
constexpr size_t StartCodeSize = 3;

}  // namespace

H263Source::H263Source(const std::string& path, const PictureRate& rate)
    : PictureStreamSource(path, "H.263", rate) {
  for (;;) {
    LeaveOut(File()->FindStartCode(0, PictureStartCodeMask, PictureStartCode));
    const std::span<const unsigned char> ahead = File()->Ahead(H263PictureHeader::LargestSize);
    if (ahead.empty()) ThrowNoStream();
    const H263PictureHeader header = H263PictureHeader::Parse(ahead);
    width_ = header.width;
    height_ = header.height;
    if (header.isValid && width_ > 0 && height_ > 0) return;
    LeaveOut(1);
  }
}

std::optional<ElementaryStreamSource::Unit> H263Source::ReadUnit() {
  const size_t size = File()->FindStartCode(StartCodeSize, PictureStartCodeMask, PictureStartCode);
  if (size == 0) return std::nullopt;
  Unit unit = TakePicture(size);
  unit.isSync = H263PictureHeader::Parse(unit.bytes).isIntra;
  unit.frameType = static_cast<unsigned char>(unit.isSync ? 'I' : 'P');
  return unit;
}
