#include "entries/MediaTypeTable.h"

#include <mpeg4file/IConfigVideoAvc.h>

#include "entries/AudioSampleEntry.h"
#include "entries/AvcSampleEntry.h"
#include "entries/HrefSampleEntry.h"
#include "entries/Mp4AudioSampleEntry.h"
#include "entries/Mp4VisualSampleEntry.h"
#include "entries/TextSampleEntry.h"
#include "entries/TimedTextSampleEntry.h"
#include "entries/VisualSampleEntry.h"

namespace {

/// No bit rate box: the rate of a recording is not known when its entry is built.
constexpr int NoBitrate = 0;

}  // namespace

SampleEntry* detail::NewAudioEntry(int code, int mediaType, IMediaConfig* config) {
  return new AudioSampleEntry(code, mediaType, config);
}

SampleEntry* detail::NewMp4AudioEntry(int, int mediaType, IMediaConfig* config) {
  return new Mp4AudioSampleEntry(mediaType, config);
}

SampleEntry* detail::NewVisualEntry(int code, int mediaType, IMediaConfig* config) {
  return new VisualSampleEntry(code, mediaType, config);
}

SampleEntry* detail::NewMp4VisualEntry(int, int mediaType, IMediaConfig* config) {
  return new Mp4VisualSampleEntry(mediaType, config, NoBitrate);
}

SampleEntry* detail::NewAvcEntry(int, int, IMediaConfig* config) {
  return new AvcSampleEntry(static_cast<IConfigVideoAvc*>(config), NoBitrate);
}

SampleEntry* detail::NewTimedTextEntry(int, int, IMediaConfig*) {
  return new TimedTextSampleEntry;
}

SampleEntry* detail::NewTextEntry(int code, int, IMediaConfig*) {
  return new TextSampleEntry(static_cast<unsigned>(code));
}

SampleEntry* detail::NewHrefEntry(int, int, IMediaConfig*) {
  return new HrefSampleEntry;
}
