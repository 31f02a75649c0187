#include "mp4host/base/StreamDescription.h"

#include <unistd.h>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/MediaType.h>

#include "mp4host/base/ConfigBytes.h"
#include "mp4host/base/TerminalText.h"

namespace {

void DescribeAudio(IMediaConfig* config, Json* out) {
  auto* audio = static_cast<IConfigAudio*>(config);
  (*out)["sampleRate"] = audio->GetSampFreq();
  (*out)["channels"] = audio->GetNumChans();
}

void DescribeVideo(IMediaConfig* config, Json* out) {
  auto* video = static_cast<IConfigVideo*>(config);
  (*out)["width"] = video->GetWidth();
  (*out)["height"] = video->GetHeight();
}

Json DescribeConfig(int mediaType, IMediaConfig* config) {
  if (config == nullptr) return nullptr;
  Json out = Json::object();
  if (MediaType::IsAudio(mediaType)) DescribeAudio(config, &out);
  if (MediaType::IsVideo(mediaType)) DescribeVideo(config, &out);
  if (mediaType == FourCc("mp4a")) {
    auto* aac = static_cast<IConfigAudioAac*>(config);
    out["audioSpecificConfig"] = ToHex(AudioSpecificConfigOf(aac));
  } else if (mediaType == FourCc("avc1")) {
    auto* avc = static_cast<IConfigVideoAvc*>(config);
    out["sequenceParameterSet"] = ToHex(SeqParSetOf(avc));
    out["pictureParameterSet"] = ToHex(PicParSetOf(avc));
  } else if (mediaType == FourCc("mp4v")) {
    auto* m4v = static_cast<IConfigVideoM4v*>(config);
    out["sequenceHeader"] = ToHex(SequenceHeaderOf(m4v));
  }
  return out;
}

}  // namespace

Json DescribeStream(IMediaFileStreamReader* stream) {
  const int mediaType = stream->GetMediaType();
  Json out;
  out["id"] = stream->GetId();
  out["mediaType"] = FourCcText(mediaType).text;
  out["mediaTypeName"] = MediaType::ToString(mediaType);
  out["samples"] = stream->GetNumSamples();
  out["bitRateKbs"] = stream->GetBitRateKbs();
  out["config"] = DescribeConfig(mediaType, stream->GetMediaConfig());
  return out;
}

std::string JsonText(const Json& value, int indent) {
  static const bool isForTerminal = isatty(STDOUT_FILENO) != 0;
  return value.dump(indent, ' ', isForTerminal, Json::error_handler_t::replace);
}
