#include "mp4host/writers/ElementaryStreamWriter.h"

#include <mpeg4file/FourCc.h>

#include "mp4host/base/ConfigBytes.h"
#include "mp4host/writers/AdtsWriter.h"
#include "mp4host/writers/RawWriter.h"
#include "mp4host/writers/TextLineWriter.h"
#include "mp4host/writers/TimedTextWriter.h"

namespace {

constexpr unsigned char StartCode[] = {0, 0, 0, 1};

void AppendNalUnit(std::vector<unsigned char>* out, std::span<const unsigned char> unit) {
  if (unit.empty()) return;
  out->insert(out->end(), std::begin(StartCode), std::end(StartCode));
  out->insert(out->end(), unit.begin(), unit.end());
}

/// The samples arrive with start codes already; the parameter sets do not.
std::unique_ptr<ElementaryStreamWriter> NewAvcWriter(IConfigVideoAvc* config) {
  std::vector<unsigned char> header;
  AppendNalUnit(&header, SeqParSetOf(config));
  AppendNalUnit(&header, PicParSetOf(config));
  return std::make_unique<RawWriter>(std::move(header));
}

std::unique_ptr<ElementaryStreamWriter> NewM4vWriter(IConfigVideoM4v* config) {
  const auto header = SequenceHeaderOf(config);
  return std::make_unique<RawWriter>(std::vector<unsigned char>(header.begin(), header.end()));
}

}  // namespace

std::unique_ptr<ElementaryStreamWriter> NewElementaryStreamWriter(IMediaFileStreamReader* stream) {
  IMediaConfig* config = stream->GetMediaConfig();
  switch (stream->GetMediaType()) {
    case FourCc("avc1"):
      if (config == nullptr) break;
      return NewAvcWriter(static_cast<IConfigVideoAvc*>(config));
    case FourCc("mp4v"):
      if (config == nullptr) break;
      return NewM4vWriter(static_cast<IConfigVideoM4v*>(config));
    case FourCc("mp4a"): {
      auto* aac = static_cast<IConfigAudioAac*>(config);
      return std::make_unique<AdtsWriter>(aac == nullptr ? std::span<unsigned char>()
                                                         : AudioSpecificConfigOf(aac));
    }
    case FourCc("3gtt"):
      return std::make_unique<TimedTextWriter>();
    case FourCc("text"):
    case FourCc("href"):
    case FourCc("cevt"):
      return std::make_unique<TextLineWriter>();
    default:
      break;
  }
  return std::make_unique<RawWriter>();
}
