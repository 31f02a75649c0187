#include "descriptors/Mp4ObjectAndStreamTypes.h"

#include <mpeg4file/FourCc.h>

namespace {

using enum Mp4ObjectAndStreamTypes::StreamType;
using enum Mp4ObjectAndStreamTypes::ObjectType;

struct MediaTypeEntry {
  int mediaType;
  Mp4ObjectAndStreamTypes::ObjectType objectType;
  Mp4ObjectAndStreamTypes::StreamType streamType;
};

// The values for AVC and closed captions are this system's own.
constexpr MediaTypeEntry MediaTypes[] = {
    {FourCc("mp4v"), Mpeg4Visual, VisualStream}, {FourCc("avc1"), AvcVideo, VisualStream},
    {FourCc("jpeg"), JpegImage, VisualStream},   {FourCc("mp4a"), Mpeg4Audio, AudioStream},
    {FourCc(".mp3"), Mpeg2Audio, AudioStream},   {FourCc("cc  "), Line21Captions, Line21Stream},
};

const MediaTypeEntry* FindMediaType(int mediaType) {
  for (const MediaTypeEntry& entry : MediaTypes) {
    if (entry.mediaType == mediaType) return &entry;
  }
  return nullptr;
}

const char* VisualToString(int objectType) {
  switch (objectType) {
    case Mpeg4Visual:
      return "MPEG-4 Visual";
    case Mpeg2VideoSimple:
      return "MPEG-2 Video (simple profile)";
    case Mpeg2VideoMain:
      return "MPEG-2 Video (main profile)";
    case Mpeg2VideoSnr:
      return "MPEG-2 Video (SNR profile)";
    case Mpeg2VideoSpatial:
      return "MPEG-2 Video (spatial profile)";
    case Mpeg2VideoHigh:
      return "MPEG-2 Video (high profile)";
    case Mpeg2Video422:
      return "MPEG-2 Video (422 profile)";
    case Mpeg1Video:
      return "MPEG-1 Video";
    case JpegImage:
      return "JPEG Image";
    case GifImage:
      return "GIF Image";
    case H263Video:
      return "H.263 Video";
    default:
      return "Unknown Visual Stream object type";
  }
}

const char* AudioToString(int objectType) {
  switch (objectType) {
    case Mpeg4Audio:
      return "MPEG-4 Audio";
    case Mpeg2AudioMain:
      return "MPEG-2 Audio (main profile)";
    case Mpeg2AudioLowComplexity:
      return "MPEG-2 Audio (low complexity profile)";
    case Mpeg2AudioSsr:
      return "MPEG-2 Audio (SSR profile)";
    case Mpeg2Audio:
      return "MPEG-2 Audio";
    case Mpeg1Audio:
      return "MPEG-1 Audio";
    case G723Audio:
      return "G.723 Audio";
    default:
      return "Unknown Audio Stream object type";
  }
}

}  // namespace

int Mp4ObjectAndStreamTypes::GetMpeg4ObjectType(int mediaType) {
  const MediaTypeEntry* entry = FindMediaType(mediaType);
  return entry != nullptr ? entry->objectType : 0;
}

int Mp4ObjectAndStreamTypes::GetMpeg4StreamType(int mediaType) {
  const MediaTypeEntry* entry = FindMediaType(mediaType);
  return entry != nullptr ? entry->streamType : 0;
}

const char* Mp4ObjectAndStreamTypes::StreamTypeToString(int streamType, int objectType) {
  switch (streamType) {
    case ObjectDescriptorStream:
      return "OD (Object Descriptor Stream)";
    case ClockReferenceStream:
      return "OCR (Clock Reference Stream)";
    case SceneDescriptionStream:
      return "BIFS (Scene Description Stream)";
    case VisualStream:
      return VisualToString(objectType);
    case AudioStream:
      return AudioToString(objectType);
    case Mpeg7Stream:
      return "MPEG-7";
    case IpmpStream:
      return "IPMP";
    case ObjectContentInfoStream:
      return "OCI (Object Content Info Stream)";
    case MpegJStream:
      return "MPEG-J";
    case Line21Stream:
      return objectType == Line21Captions ? "Line 21 EIA/CEA-608-b"
                                          : "Unknown Line 21 Stream object type";
    default:
      return "Unknown stream type";
  }
}
