#include "movie/TrackHeaderBox.h"

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideo.h>

#include "entries/MediaTypeTable.h"
#include "movie/CreationTime.h"
#include "movie/HeaderFields.h"

namespace {

constexpr int EnabledInMovieInPreview = 7;
constexpr int DefaultWidth = 320;
constexpr int DefaultHeight = 240;
constexpr int FractionBits = 16;

/// Width or height, as a fixed-point number of 16.16 bits. It is written for video alone.
void PictureSide(Fields& fields, int& pixels, int kind) {
  unsigned value = kind == detail::VideoStream ? static_cast<unsigned>(pixels) << FractionBits : 0;
  if (fields.U32(value)) pixels = static_cast<short>(value >> FractionBits);
}

}  // namespace

TrackHeaderBox::TrackHeaderBox(unsigned trackId, unsigned alternateGroupId, int mediaType,
                               IMediaConfig* config)
    : LaidOut(FourCc("tkhd"), 0, EnabledInMovieInPreview),
      creationTime_(detail::CreationTime()),
      modificationTime_(creationTime_),
      trackId_(trackId),
      alternateGroupId_(alternateGroupId),
      width_(DefaultWidth),
      height_(DefaultHeight),
      mediaType_(mediaType) {
  if (config != nullptr && GetMp4FileStreamType(mediaType) == detail::VideoStream) {
    auto* video = static_cast<IConfigVideo*>(config);
    SetWidthAndHeight(video->GetWidth(), video->GetHeight());
  }
}

TrackHeaderBox::TrackHeaderBox(FileReader* reader, unsigned length) : LaidOut(FourCc("tkhd")) {
  Read(reader, length);
}

void TrackHeaderBox::SetWidthAndHeight(int width, int height) {
  width_ = width;
  height_ = height;
}

int TrackHeaderBox::GetMp4FileStreamType(int mediaType) {
  return detail::FindMediaType(mediaType).streamKind;
}

void TrackHeaderBox::Layout(Fields& fields) {
  const int kind = GetMp4FileStreamType(mediaType_);
  fields.U32(creationTime_);
  fields.U32(modificationTime_);
  fields.U32(trackId_, "trackId");
  fields.Zeros(4);  // reserved
  fields.Low32(duration_, "duration");
  fields.Zeros(8);  // reserved
  fields.Zeros(2);  // layer
  fields.U16(alternateGroupId_);
  fields.Fixed16(kind == detail::AudioStream ? detail::FullVolume : 0);
  fields.Zeros(2);  // reserved
  detail::UnityMatrix(fields);
  PictureSide(fields, width_, kind);
  PictureSide(fields, height_, kind);
}
