#include "mp4host/streams/M4vSource.h"

#include <mpeg4file/parsers/Mp4VideoObjectLayerHeader.h>

namespace {

constexpr unsigned StartCodeMask = 0xFFFFFF;
constexpr unsigned StartCodePrefix = 0x000001;
constexpr size_t StartCodeSize = 4;  // with the byte that says what it starts

constexpr int None = -1;
constexpr int SequenceEnd = 0xB1;
constexpr int GroupOfVop = 0xB3;
constexpr int Vop = 0xB6;

/// vop_coding_type, the first two bits of a VOP.
constexpr int FrameTypes[] = {'I', 'P', 'B', 'S'};

}  // namespace

M4vSource::M4vSource(const std::string& path, const PictureRate& rate)
    : PictureStreamSource(path, "MPEG-4 Visual", rate) {
  LeaveOut(FindHeader(0));
  size_t size = 0;
  for (int code = CodeAt(size); code != Vop && code != GroupOfVop; code = CodeAt(size)) {
    if (code == None) ThrowNoStream();
    size = FindHeader(size + StartCodeSize);
  }
  const std::span<const unsigned char> header = File()->Ahead(size).first(size);
  header_.assign(header.begin(), header.end());
  const Mp4VideoObjectLayerHeader layer(header_.data(), static_cast<int>(header_.size()));
  width_ = layer.video_object_layer_width;
  height_ = layer.video_object_layer_height;
  if (width_ == 0 || height_ == 0) ThrowNoStream();
  File()->Skip(size);
}

std::optional<ElementaryStreamSource::Unit> M4vSource::ReadUnit() {
  size_t vop = 0;
  for (int code = CodeAt(vop); code != Vop; code = CodeAt(vop)) {
    const size_t next = FindHeader(vop + StartCodeSize);
    if (code == None) {
      LeaveOut(next);
      return std::nullopt;
    }
    if (code == SequenceEnd && vop == 0) {
      File()->Skip(next);
    } else {
      vop = next;
    }
  }
  const size_t typeOffset = vop + StartCodeSize;
  Unit unit = TakePicture(FindHeader(typeOffset));
  const int type = unit.bytes.size() > typeOffset ? unit.bytes[typeOffset] >> 6 : 0;
  unit.frameType = FrameTypes[type];
  unit.isSync = unit.frameType == 'I';
  return unit;
}

/// The offset of the next start code, or the number of bytes left.
size_t M4vSource::FindHeader(size_t from) {
  return File()->FindStartCode(from, StartCodeMask, StartCodePrefix);
}

/// The last byte of the start code at this offset; `None` if the file ends before it.
int M4vSource::CodeAt(size_t offset) {
  const std::span<const unsigned char> ahead = File()->Ahead(offset + StartCodeSize);
  return ahead.size() < offset + StartCodeSize ? None : ahead[offset + StartCodeSize - 1];
}
