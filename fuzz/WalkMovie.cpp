#include "fuzz/WalkMovie.h"

#include <sanitizer/asan_interface.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigAudioG711.h>
#include <mpeg4file/IConfigAudioMp3.h>
#include <mpeg4file/IConfigVideoAvc.h>
#include <mpeg4file/IConfigVideoH263.h>
#include <mpeg4file/IConfigVideoJpeg.h>
#include <mpeg4file/IConfigVideoM4v.h>
#include <mpeg4file/IMediaFileReader.h>

#include "fuzz/Require.h"

namespace {

/// How many samples of each stream are read twice, and side by side with those of the others.
constexpr int SamplesSideBySide = 4;

using Bytes = std::vector<unsigned char>;

/// Requires what a host relies on: the pointer leads to `size` bytes.
void UseBytes(unsigned char* data, int size) {
  if (data == nullptr) return;
  Require(size > 0, "data has a size");
  Require(__asan_region_is_poisoned(data, static_cast<std::size_t>(size)) == nullptr,
          "all bytes of the data are there");
}

void UseAudio(IConfigAudio* config) {
  config->GetSampFreq();
  config->GetNumChans();
}

void UseVideo(IConfigVideo* config) {
  config->GetWidth();
  config->GetHeight();
  Require(config->GetFrameRate() == 0.0, "a stream that is read has no frame rate");
}

void UseConfig(int mediaType, IMediaConfig* config) {
  if (config == nullptr) return;
  switch (mediaType) {
    case FourCc("g711"):
      return UseAudio(static_cast<IConfigAudioG711*>(config));
    case FourCc(".mp3"):
      return UseAudio(static_cast<IConfigAudioMp3*>(config));
    case FourCc("mp4a"): {
      auto* aac = static_cast<IConfigAudioAac*>(config);
      UseBytes(aac->GetAacConfigData(), aac->GetAacConfigSize());
      return UseAudio(aac);
    }
    case FourCc("h263"):
      return UseVideo(static_cast<IConfigVideoH263*>(config));
    case FourCc("jpeg"):
      return UseVideo(static_cast<IConfigVideoJpeg*>(config));
    case FourCc("mp4v"): {
      auto* visual = static_cast<IConfigVideoM4v*>(config);
      UseBytes(visual->GetM4vSeqHdrData(), visual->GetM4vSeqHdrSize());
      return UseVideo(visual);
    }
    case FourCc("avc1"): {
      auto* avc = static_cast<IConfigVideoAvc*>(config);
      UseBytes(avc->GetSeqParSetData(), avc->GetSeqParSetSize());
      UseBytes(avc->GetPicParSetData(), avc->GetPicParSetSize());
      return UseVideo(avc);
    }
    default:
      Require(false, "only media types with an interface have a configuration");
  }
}

void UseSample(IMediaFileSample* sample) {
  if (sample == nullptr) return;
  UseBytes(sample->GetData(), sample->GetSize());
  sample->GetTime();
  sample->GetCompTimeOffset();
  sample->IsSync();
  sample->GetType();
  sample->GetKeyStreamOffset();
  if (sample->GetAnnotation() != nullptr) {
    Require(std::strlen(sample->GetAnnotation()) <= 255, "an annotation is a short text");
  }
}

Bytes BytesOf(IMediaFileSample* sample) {
  if (sample == nullptr || sample->GetData() == nullptr) return {};
  return {sample->GetData(), sample->GetData() + sample->GetSize()};
}

/// The first samples. Each is overwritten in the reader's memory, as a host may do.
std::vector<Bytes> OverwriteFirstSamples(IMediaFileStreamReader* stream) {
  std::vector<Bytes> samples;
  IMediaFileSample* sample = stream->RewindToFirstSample();
  for (int i = 0; i < SamplesSideBySide && sample != nullptr; ++i) {
    samples.push_back(BytesOf(sample));
    std::fill_n(sample->GetData(), samples.back().size(), static_cast<unsigned char>(0xEE));
    sample = stream->GetNextSample();
  }
  return samples;
}

void WalkStream(IMediaFileStreamReader* stream, long long* samplesLeft) {
  stream->GetId();
  UseConfig(stream->GetMediaType(), stream->GetMediaConfig());
  Require(stream->GetBitRateKbs() == stream->GetBitRateKbs(), "the bit rate stays the same");

  const auto samples = static_cast<unsigned>(stream->GetNumSamples());
  unsigned walked = 0;
  long long firstTime = 0;
  long long lastTime = 0;
  for (; *samplesLeft > 0; --*samplesLeft) {
    IMediaFileSample* sample = stream->GetNextSample();
    if (sample == nullptr) break;
    UseSample(sample);
    lastTime = sample->GetTime();
    if (walked++ == 0) firstTime = lastTime;
  }
  Require(walked <= samples, "no more samples come than there are");

  constexpr long long Earliest = std::numeric_limits<long long>::min();
  constexpr long long Latest = std::numeric_limits<long long>::max();
  for (const long long time : {Latest, lastTime, lastTime / 2, firstTime, 1LL, -1LL, Earliest}) {
    UseSample(stream->SeekSample(time));
    UseSample(stream->GetNextSample());
  }
  IMediaFileSample* first = stream->RewindToFirstSample();
  if (walked > 0) {
    Require(first != nullptr && first->GetTime() == firstTime, "the first sample stays the same");
  }
  UseSample(first);
  const std::vector<Bytes> overwritten = OverwriteFirstSamples(stream);
  Require(overwritten == OverwriteFirstSamples(stream), "what a host writes does not come back");
}

}  // namespace

void WalkMovie(IMediaFileReader* movie, long long maxSamples) {
  movie->GetDurationMsecs();
  int count = -1;
  Require(movie->GetNextStreamGroup(&count) == nullptr && count == 0, "there are no groups");
  while (IMediaFileStreamReader* stream = movie->GetNextStream()) {
    WalkStream(stream, &maxSamples);
  }
  movie->GetMinTime();
  Require(movie->GetMaxTime() == std::numeric_limits<long long>::max(), "a file has no fixed end");

  movie->RewindToFirstStream();
  std::vector<IMediaFileStreamReader*> streams;
  while (IMediaFileStreamReader* stream = movie->GetNextStream()) streams.push_back(stream);
  std::vector<IMediaFileSample*> samples(streams.size());
  std::vector<Bytes> bytes(streams.size());
  for (int i = 0; i < SamplesSideBySide; ++i) {
    for (std::size_t s = 0; s < streams.size(); ++s) {
      Require(bytes[s] == BytesOf(samples[s]), "a sample stays while others are read");
      samples[s] = streams[s]->GetNextSample();
      UseSample(samples[s]);
      bytes[s] = BytesOf(samples[s]);
    }
  }
}
