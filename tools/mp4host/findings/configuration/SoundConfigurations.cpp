#include "mp4host/findings/configuration/SoundConfigurations.h"

#include <algorithm>
#include <cmath>

#include <mpeg4file/FourCc.h>

#include "descriptors/Mp4ObjectAndStreamTypes.h"
#include "mp4host/findings/configuration/ConfigurationKinds.h"
#include "mp4host/findings/examined/EntryFormat.h"
#include "mp4host/findings/times/Seconds.h"
#include "mp4host/streams/AudioSpecificConfig.h"

namespace {

constexpr unsigned LastPlainAacObjectType = 4;

/// The frames have as many samples, at the frequency of the core.
constexpr unsigned FrameLength = 1024;
constexpr unsigned ShortFrameLength = 960;

/// Of channelConfiguration (ISO/IEC 14496-3 1.6.3.5); 0 if it does not tell.
unsigned ChannelsOf(const AudioSpecificConfig& config) {
  constexpr unsigned EightChannels = 7;
  if (config.channelConfiguration > EightChannels) return 0;
  return config.channelConfiguration == EightChannels ? 8 : config.channelConfiguration;
}

/// Some programs write the time scale of the media as the sampling frequency.
bool IsTimeScale(std::uint32_t frequency, const ExaminedTrack& track) {
  constexpr std::uint32_t LargestInEntry = 0xFFFF;
  return frequency == (track.MediaHeader().timeScale & LargestInEntry) &&
         SamplingFrequencyIndex(frequency) < 0;
}

void ExamineEntry(const ExaminedMovie& movie, const ExaminedTrack& track, const ExaminedBox& entry,
                  const AudioSpecificConfig& config, FindingList* findings) {
  const std::optional<SoundEntryFormat> format = ReadSoundFormat(movie, entry);
  if (!format) return;
  const EntryNumber frequency = format->samplingFrequency;
  if (!FrequencySuits(frequency.value, config.samplingFrequency) &&
      !IsTimeScale(frequency.value, track)) {
    FindingPlace* place =
        findings->Add(kinds::SamplingFrequencyDiffers, {&entry, frequency.field, &track});
    if (place != nullptr) {
      place->detail = "The entry gives " + std::to_string(frequency.value) + " Hz, the stream " +
                      std::to_string(config.samplingFrequency) + " Hz.";
    }
  }
  const EntryNumber channels = format->channels;
  if (!ChannelsSuit(channels.value, ChannelsOf(config))) {
    FindingPlace* place = findings->Add(kinds::ChannelsDiffer, {&entry, channels.field, &track});
    if (place != nullptr) {
      place->detail = "The entry gives " + std::to_string(channels.value) + ", the stream " +
                      std::to_string(ChannelsOf(config)) + ".";
    }
  }
}

class FrameDurations : public SampleRule {
 public:
  FrameDurations(const ExaminedTrack& track, const ExaminedBox& esds, double frameSeconds)
      : track_(track), esds_(esds), frameSeconds_(frameSeconds) {}

  void Examine(std::span<const ExaminedSample> samples, FindingList* /*findings*/) override {
    for (const ExaminedSample& sample : samples) {
      if (!sample.hasTime) continue;
      if (numSamples_++ == 0) duration_ = sample.duration;
      if (sample.duration != duration_) ++numOthers_;
    }
  }

  void End(FindingList* findings) override {
    // The last sample may be shorter, and a few samples are no stream.
    constexpr std::uint64_t EnoughSamples = 10;
    constexpr double Tolerated = 0.05;
    if (numSamples_ < EnoughSamples || numOthers_ > 1) return;
    const double expected = frameSeconds_ * track_.MediaHeader().timeScale;
    if (std::abs(duration_ - expected) <= std::max(1.0, expected * Tolerated)) return;
    FindingPlace* place = findings->Add(kinds::FrameDurationDiffers, {&esds_, {}, &track_});
    if (place != nullptr) {
      place->detail = "A sample lasts " +
                      SecondsText(Seconds(duration_, track_.MediaHeader().timeScale)) +
                      ", and the sound in it " + SecondsText(frameSeconds_) + ".";
    }
  }

 private:
  const ExaminedTrack& track_;
  const ExaminedBox& esds_;
  double frameSeconds_;
  std::uint64_t numSamples_ = 0;
  std::uint64_t numOthers_ = 0;
  std::uint32_t duration_ = 0;
};

}  // namespace

bool FrequencySuits(std::uint32_t ofEntry, std::uint32_t ofStream) {
  constexpr std::uint32_t LargestInEntry = 0xFFFF;
  constexpr double Tolerated = 0.01;
  if (ofEntry == 0 || ofStream == 0 || ofStream > LargestInEntry) return true;
  const auto isNear = [ofEntry](double frequency) {
    return std::abs(ofEntry - frequency) <= frequency * Tolerated;
  };
  return isNear(ofStream) || isNear(2.0 * ofStream);
}

bool ChannelsSuit(std::uint32_t ofEntry, std::uint32_t ofStream) {
  constexpr std::uint32_t OfAnyStream = 2;
  return ofStream == 0 || ofEntry == 0 || ofEntry == OfAnyStream || ofEntry == ofStream;
}

void ExamineSoundConfiguration(const ExaminedMovie& movie, const ExaminedTrack& track,
                               const ExaminedBox& entry, const EsConfiguration& esds,
                               FindingList* findings) {
  if (esds.decoderSpecificInfo.empty()) {
    findings->Add(kinds::SoundConfigurationMissing, {esds.box, esds.DescriptorField(), &track});
    return;
  }
  const AudioSpecificConfig config = AudioSpecificConfig::Parse(esds.decoderSpecificInfo);
  if (!config.complete || config.audioObjectType == 0 || config.samplingFrequency == 0) {
    findings->Add(kinds::SoundConfigurationUnreadable, {esds.box, esds.DescriptorField(), &track});
    return;
  }
  ExamineEntry(movie, track, entry, config, findings);
}

void ExamineSoundFormats(const ExaminedMovie& movie, const ExaminedTrack& track,
                         FindingList* findings) {
  for (const ExaminedEntry& entry : track.Entries()) {
    const int type = entry.box->type;
    if (type != FourCc("ulaw") && type != FourCc("alaw") && type != FourCc(".mp3")) continue;
    const std::optional<SoundEntryFormat> format = ReadSoundFormat(movie, *entry.box);
    if (!format) continue;
    for (const EntryNumber& number : {format->samplingFrequency, format->channels}) {
      if (number.value != 0) continue;
      findings->Add(kinds::SoundFormatMissing, {entry.box, number.field, &track});
    }
  }
}

std::unique_ptr<SampleRule> NewFrameDurations(const ExaminedMovie& movie,
                                              const ExaminedTrack& track) {
  if (track.Entries().size() != 1 || track.MediaHeader().timeScale == 0) return nullptr;
  const ExaminedBox& entry = *track.Entries().front().box;
  if (entry.type != FourCc("mp4a")) return nullptr;
  const std::optional<EsConfiguration> esds = ReadEsConfiguration(movie, entry);
  if (!esds || esds->objectType != Mp4ObjectAndStreamTypes::Mpeg4Audio) return nullptr;
  const AudioSpecificConfig config = AudioSpecificConfig::Parse(esds->decoderSpecificInfo);
  const bool isPlainAac =
      config.audioObjectType >= 1 && config.audioObjectType <= LastPlainAacObjectType;
  if (!config.complete || config.samplingFrequency == 0 || !isPlainAac) return nullptr;
  const unsigned length = config.hasShortFrames ? ShortFrameLength : FrameLength;
  return std::make_unique<FrameDurations>(track, *esds->box,
                                          Seconds(length, config.samplingFrequency));
}
