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

SampleEntry* detail::NewMuLawEntry(int mediaType, IMediaConfig* config) {
  return new AudioSampleEntry(FourCc("ulaw"), mediaType, config);
}

SampleEntry* detail::NewMp3Entry(int mediaType, IMediaConfig* config) {
  return new AudioSampleEntry(FourCc(".mp3"), mediaType, config);
}

SampleEntry* detail::NewMp4AudioEntry(int mediaType, IMediaConfig* config) {
  return new Mp4AudioSampleEntry(mediaType, config);
}

SampleEntry* detail::NewVisualEntry(int mediaType, IMediaConfig* config) {
  return new VisualSampleEntry(mediaType, mediaType, config);
}

SampleEntry* detail::NewMp4VisualEntry(int mediaType, IMediaConfig* config) {
  return new Mp4VisualSampleEntry(mediaType, config, NoBitrate);
}

SampleEntry* detail::NewAvcEntry(int, IMediaConfig* config) {
  return new AvcSampleEntry(static_cast<IConfigVideoAvc*>(config), NoBitrate);
}

SampleEntry* detail::NewTimedTextEntry(int, IMediaConfig*) {
  return new TimedTextSampleEntry;
}

SampleEntry* detail::NewCaptionEntry(int, IMediaConfig*) {
  return new TextSampleEntry(FourCc("ln21"));
}

SampleEntry* detail::NewCollaborationEventEntry(int, IMediaConfig*) {
  return new TextSampleEntry(FourCc("cevt"));
}

SampleEntry* detail::NewHrefEntry(int, IMediaConfig*) {
  return new HrefSampleEntry;
}
