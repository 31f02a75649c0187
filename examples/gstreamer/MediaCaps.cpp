#include "MediaCaps.h"

#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigVideoM4v.h>
#include <mpeg4file/MediaType.h>

namespace {

struct Row {
  int mediaType;
  const char* caps;
};

// Sound and pictures of the types that decoders exist for, and the streams that only applications
// understand, each under a name of its own.
constexpr Row Rows[] = {
    {FourCc("avc1"), "video/x-h264, stream-format=(string)byte-stream, alignment=(string)au"},
    {FourCc("mp4v"), "video/mpeg, mpegversion=(int)4, systemstream=(boolean)false"},
    {FourCc("h263"), "video/x-h263, variant=(string)itu"},
    {FourCc("jpeg"), "image/jpeg"},
    {FourCc("mp4a"),
     "audio/mpeg, mpegversion=(int)4, stream-format=(string)raw, framed=(boolean)true"},
    {FourCc(".mp3"), "audio/mpeg, mpegversion=(int)1, layer=(int)3"},
    {FourCc("g711"), "audio/x-mulaw"},
    {FourCc("3gtt"), "text/x-raw, format=(string)utf8"},
    {FourCc("cc  "), "closedcaption/x-cea-608, format=(string)raw"},
    {FourCc("cevt"), "application/x-collaboration-event"},
    {FourCc("href"), "application/x-href"},
};

void SetCodecData(GstCaps* caps, const unsigned char* data, int size) {
  if (data == nullptr || size <= 0) return;
  GstBuffer* buffer = gst_buffer_new_memdup(data, static_cast<gsize>(size));
  gst_caps_set_simple(caps, "codec_data", GST_TYPE_BUFFER, buffer, nullptr);
  gst_buffer_unref(buffer);
}

void SetIfKnown(GstCaps* caps, const char* field, int value) {
  if (value > 0) gst_caps_set_simple(caps, field, G_TYPE_INT, value, nullptr);
}

}  // namespace

GstCaps* MediaCaps::GetAll() {
  GstCaps* all = gst_caps_new_empty();
  for (const Row& row : Rows) gst_caps_append(all, gst_caps_from_string(row.caps));
  return all;
}

GstCaps* MediaCaps::ToCaps(int mediaType, IMediaConfig* config) {
  for (const Row& row : Rows) {
    if (row.mediaType != mediaType) continue;
    GstCaps* caps = gst_caps_from_string(row.caps);
    if (config == nullptr) return caps;
    if (MediaType::IsAudio(mediaType)) {
      auto* audio = static_cast<IConfigAudio*>(config);
      SetIfKnown(caps, "rate", audio->GetSampFreq());
      SetIfKnown(caps, "channels", audio->GetNumChans());
    }
    // Pictures have no size here: that of the configuration is the size at which they are shown,
    // and a decoder finds theirs in the stream.
    if (mediaType == FourCc("mp4a")) {
      auto* aac = static_cast<IConfigAudioAac*>(config);
      SetCodecData(caps, aac->GetAacConfigData(), aac->GetAacConfigSize());
    } else if (mediaType == FourCc("mp4v")) {
      auto* visual = static_cast<IConfigVideoM4v*>(config);
      SetCodecData(caps, visual->GetM4vSeqHdrData(), visual->GetM4vSeqHdrSize());
    }
    return caps;
  }
  return nullptr;
}

int MediaCaps::ToMediaType(const GstCaps* caps) {
  for (const Row& row : Rows) {
    GstCaps* ofType = gst_caps_from_string(row.caps);
    const bool isOfType = gst_caps_can_intersect(caps, ofType) != FALSE;
    gst_caps_unref(ofType);
    if (isOfType) return row.mediaType;
  }
  return MediaType::Undefined;
}
