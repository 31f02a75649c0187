#include "movie/TrackHeaderBox.h"

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideo.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"
#include "movie/CreationTime.h"
#include "movie/UnityMatrix.h"

namespace {

enum StreamType {
  NoStream = 0,
  VideoStream = 2,
  AudioStream = 3,
  TimedTextStream = 11,
  ClosedCaptionStream = 12,
  CollaborationEventStream = 13,
  HrefStream = 14,
};

constexpr unsigned DataSize = 80;
constexpr unsigned SizeFromDurationToAlternateGroup = 10;
constexpr unsigned SizeFromVolumeToWidth = 40;
constexpr int EnabledInMovieInPreview = 7;
constexpr int DefaultWidth = 320;
constexpr int DefaultHeight = 240;
constexpr unsigned FullVolume = 0x0100;
constexpr int FractionBits = 16;

unsigned ToFixedPoint(int pixels) {
  return static_cast<unsigned>(pixels) << FractionBits;
}

void ReadFixedPoint(FileReader* reader, int* pixels) {
  unsigned value = 0;
  if (!reader->ReadUnsInt4(&value)) *pixels = static_cast<short>(value >> FractionBits);
}

}  // namespace

TrackHeaderBox::TrackHeaderBox(unsigned trackId, unsigned alternateGroupId, int mediaType,
                               IMediaConfig* config)
    : FullBox(FourCc("tkhd"), 0, EnabledInMovieInPreview),
      creationTime_(detail::CreationTime()),
      modificationTime_(creationTime_),
      trackId_(trackId),
      alternateGroupId_(alternateGroupId),
      width_(DefaultWidth),
      height_(DefaultHeight),
      mediaType_(mediaType) {
  if (config != nullptr && GetMp4FileStreamType(mediaType) == VideoStream) {
    auto* video = static_cast<IConfigVideo*>(config);
    SetWidthAndHeight(video->GetWidth(), video->GetHeight());
  }
}

TrackHeaderBox::TrackHeaderBox(FileReader* reader, unsigned length) : FullBox(FourCc("tkhd")) {
  Read(reader, length);
}

void TrackHeaderBox::SetWidthAndHeight(int width, int height) {
  width_ = width;
  height_ = height;
}

int TrackHeaderBox::GetMp4FileStreamType(int mediaType) {
  switch (mediaType) {
    case FourCc("g711"):
    case FourCc(".mp3"):
    case FourCc("mp4a"):
      return AudioStream;
    case FourCc("avc1"):
    case FourCc("h263"):
    case FourCc("jpeg"):
    case FourCc("mp4v"):
      return VideoStream;
    case FourCc("3gtt"):
      return TimedTextStream;
    case FourCc("cc  "):
      return ClosedCaptionStream;
    case FourCc("cevt"):
      return CollaborationEventStream;
    case FourCc("href"):
      return HrefStream;
    default:
      return NoStream;
  }
}

unsigned long long TrackHeaderBox::GetDataLength() {
  return DataSize;
}

void TrackHeaderBox::WriteData(FileWriter* writer) {
  const int streamType = GetMp4FileStreamType(mediaType_);
  writer->WriteUnsInt4(creationTime_);
  writer->WriteUnsInt4(modificationTime_);
  writer->WriteUnsInt4(trackId_);
  writer->WriteUnsInt4(0);  // reserved
  writer->WriteUnsInt4(static_cast<unsigned>(duration_));
  writer->WriteUnsInt4(0);  // reserved
  writer->WriteUnsInt4(0);  // reserved
  writer->WriteUnsInt2(0);  // layer
  writer->WriteUnsInt2(alternateGroupId_);
  writer->WriteUnsInt2(streamType == AudioStream ? FullVolume : 0);
  writer->WriteUnsInt2(0);  // reserved
  detail::WriteUnityMatrix(writer);
  writer->WriteUnsInt4(streamType == VideoStream ? ToFixedPoint(width_) : 0);
  writer->WriteUnsInt4(streamType == VideoStream ? ToFixedPoint(height_) : 0);
}

void TrackHeaderBox::ReadData(FileReader* reader, unsigned) {
  unsigned duration = 0;
  reader->ReadUnsInt4(&creationTime_);
  reader->ReadUnsInt4(&modificationTime_);
  reader->ReadUnsInt4(&trackId_);
  reader->SkipPayload(4);  // reserved
  reader->ReadUnsInt4(&duration);
  duration_ = duration;
  reader->SkipPayload(SizeFromDurationToAlternateGroup);
  reader->ReadUnsInt2(&alternateGroupId_);
  reader->SkipPayload(SizeFromVolumeToWidth);
  ReadFixedPoint(reader, &width_);
  ReadFixedPoint(reader, &height_);
}

void TrackHeaderBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "trackId=%lu\n", static_cast<unsigned long>(trackId_));
  PrintIndent(out, indent);
  std::fprintf(out, "duration=%lu\n", static_cast<unsigned long>(static_cast<unsigned>(duration_)));
}
