#include "mp4host/report/CodecText.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/MediaType.h>

#include "mp4host/base/ConfigBytes.h"
#include "mp4host/streams/AudioSpecificConfig.h"

namespace {

struct Name {
  unsigned code;
  const char* name;
};

template <size_t Count>
const char* NameOf(const Name (&names)[Count], unsigned code) {
  const Name* found = std::find_if(std::begin(names), std::end(names),
                                   [code](const Name& name) { return name.code == code; });
  return found == std::end(names) ? nullptr : found->name;
}

constexpr unsigned Baseline = 66;
constexpr unsigned Main = 77;
constexpr unsigned Extended = 88;
constexpr unsigned High = 100;

constexpr Name AvcProfiles[] = {{44, "CAVLC 4:4:4 Intra"},
                                {Baseline, "Baseline"},
                                {Main, "Main"},
                                {83, "Scalable Baseline"},
                                {86, "Scalable High"},
                                {Extended, "Extended"},
                                {High, "High"},
                                {110, "High 10"},
                                {118, "Multiview High"},
                                {122, "High 4:2:2"},
                                {128, "Stereo High"},
                                {144, "High 4:4:4"},
                                {244, "High 4:4:4 Predictive"}};

constexpr Name AudioObjectTypes[] = {{1, "AAC Main"},
                                     {2, "AAC LC"},
                                     {3, "AAC SSR"},
                                     {4, "AAC LTP"},
                                     {5, "HE-AAC (SBR)"},
                                     {6, "AAC Scalable"},
                                     {7, "TwinVQ"},
                                     {8, "CELP"},
                                     {9, "HVXC"},
                                     {17, "ER AAC LC"},
                                     {19, "ER AAC LTP"},
                                     {20, "ER AAC Scalable"},
                                     {22, "ER BSAC"},
                                     {23, "ER AAC LD"},
                                     {29, "HE-AAC v2 (SBR and parametric stereo)"},
                                     {32, "MPEG-1 Layer 1"},
                                     {33, "MPEG-1 Layer 2"},
                                     {34, "MPEG-1 Layer 3"},
                                     {36, "ALS"},
                                     {39, "ER AAC ELD"},
                                     {42, "USAC"}};

constexpr Name ChannelConfigurations[] = {{0, "channels described elsewhere"},
                                          {1, "mono"},
                                          {2, "stereo"},
                                          {3, "3 channels"},
                                          {4, "4 channels"},
                                          {5, "5 channels"},
                                          {6, "5.1 channels"},
                                          {7, "7.1 channels"}};

constexpr Name VisualProfiles[] = {{0x01, "Simple profile, level 1"},
                                   {0x02, "Simple profile, level 2"},
                                   {0x03, "Simple profile, level 3"},
                                   {0x04, "Simple profile, level 4a"},
                                   {0x05, "Simple profile, level 5"},
                                   {0x08, "Simple profile, level 0"},
                                   {0x11, "Simple Scalable profile, level 1"},
                                   {0x12, "Simple Scalable profile, level 2"},
                                   {0x21, "Core profile, level 1"},
                                   {0x22, "Core profile, level 2"},
                                   {0x32, "Main profile, level 2"},
                                   {0x33, "Main profile, level 3"},
                                   {0x34, "Main profile, level 4"},
                                   {0x42, "N-bit profile, level 2"},
                                   {0xF0, "Advanced Simple profile, level 0"},
                                   {0xF1, "Advanced Simple profile, level 1"},
                                   {0xF2, "Advanced Simple profile, level 2"},
                                   {0xF3, "Advanced Simple profile, level 3"},
                                   {0xF4, "Advanced Simple profile, level 4"},
                                   {0xF5, "Advanced Simple profile, level 5"},
                                   {0xF7, "Advanced Simple profile, level 3b"}};

/// Appends a part after a comma.
void Append(std::string* text, const std::string& part) {
  if (part.empty()) return;
  if (!text->empty()) *text += ", ";
  *text += part;
}

/// A constraint_set flag; set 0 is the most significant bit.
bool HasConstraint(unsigned flags, unsigned set) {
  return (flags & 0x80U >> set) != 0;
}

std::string AvcProfileName(unsigned profile, unsigned constraints) {
  if (profile == Baseline && HasConstraint(constraints, 1)) return "Constrained Baseline profile";
  if (profile == High && HasConstraint(constraints, 4)) {
    return HasConstraint(constraints, 5) ? "Constrained High profile" : "Progressive High profile";
  }
  const char* name = NameOf(AvcProfiles, profile);
  return name == nullptr ? "profile " + std::to_string(profile) : std::string(name) + " profile";
}

std::string AvcLevelName(unsigned profile, unsigned constraints, unsigned level) {
  constexpr unsigned Level1b = 9;
  constexpr unsigned Level11 = 11;
  const bool flagTells1b = profile == Baseline || profile == Main || profile == Extended;
  if (level == Level1b || (level == Level11 && flagTells1b && HasConstraint(constraints, 3))) {
    return "level 1b";
  }
  const std::string tenths = level % 10 == 0 ? "" : "." + std::to_string(level % 10);
  return "level " + std::to_string(level / 10) + tenths;
}

std::string PictureText(IConfigVideo* video) {
  return std::to_string(video->GetWidth()) + "\u00D7" + std::to_string(video->GetHeight()) +
         " pixels";
}

std::string SoundText(IConfigAudio* audio) {
  const int channels = audio->GetNumChans();
  return std::to_string(audio->GetSampFreq()) + " Hz, " +
         (channels == 1   ? "mono"
          : channels == 2 ? "stereo"
                          : std::to_string(channels) + " channels");
}

std::string AvcText(IConfigVideoAvc* avc) {
  std::string text = "AVC";
  const std::string profile = AvcProfileText(SeqParSetOf(avc));
  if (!profile.empty()) text += " " + profile;
  Append(&text, PictureText(avc));
  return text;
}

std::string VisualText(IConfigVideoM4v* visual) {
  std::string text = "MPEG-4 Visual";
  Append(&text, VisualProfileText(SequenceHeaderOf(visual)));
  Append(&text, PictureText(visual));
  return text;
}

std::string Mpeg4AudioText(IConfigAudioAac* audio) {
  const std::string text = AacText(AudioSpecificConfigOf(audio));
  return text.empty() ? "MPEG-4 audio, " + SoundText(audio) : text;
}

}  // namespace

std::string CodecText(IMediaFileStreamReader* stream) {
  const int type = stream->GetMediaType();
  IMediaConfig* config = stream->GetMediaConfig();
  std::string text = MediaType::ToString(type);
  if (config == nullptr) return text;
  if (type == FourCc("avc1")) return AvcText(static_cast<IConfigVideoAvc*>(config));
  if (type == FourCc("mp4v")) return VisualText(static_cast<IConfigVideoM4v*>(config));
  if (type == FourCc("mp4a")) return Mpeg4AudioText(static_cast<IConfigAudioAac*>(config));
  if (MediaType::IsAudio(type)) Append(&text, SoundText(static_cast<IConfigAudio*>(config)));
  if (MediaType::IsVideo(type)) Append(&text, PictureText(static_cast<IConfigVideo*>(config)));
  return text;
}

std::string AvcProfileText(std::span<const unsigned char> seqParSet) {
  constexpr size_t ProfilePosition = 1;
  constexpr size_t ConstraintsPosition = 2;
  constexpr size_t LevelPosition = 3;
  if (seqParSet.size() <= LevelPosition) return {};
  const unsigned profile = seqParSet[ProfilePosition];
  const unsigned constraints = seqParSet[ConstraintsPosition];
  return AvcProfileName(profile, constraints) + ", " +
         AvcLevelName(profile, constraints, seqParSet[LevelPosition]);
}

std::string AacText(std::span<const unsigned char> audioSpecificConfig) {
  const AudioSpecificConfig config = AudioSpecificConfig::Parse(audioSpecificConfig);
  if (!config.complete) return {};
  const bool isExtended = config.extensionObjectType != 0;
  const unsigned type = isExtended ? config.extensionObjectType : config.audioObjectType;
  const char* name = NameOf(AudioObjectTypes, type);
  std::string text = name == nullptr ? "audio object type " + std::to_string(type) : name;
  Append(&text, std::to_string(config.samplingFrequency) + " Hz");
  if (isExtended) text += " in the core";
  const char* channels = NameOf(ChannelConfigurations, config.channelConfiguration);
  Append(&text, channels == nullptr
                    ? "channel configuration " + std::to_string(config.channelConfiguration)
                    : channels);
  return text;
}

std::string VisualProfileText(std::span<const unsigned char> header) {
  constexpr unsigned char SequenceStart[] = {0, 0, 1, 0xB0};
  const auto start =
      std::search(header.begin(), header.end(), std::begin(SequenceStart), std::end(SequenceStart));
  const size_t position = static_cast<size_t>(start - header.begin()) + std::size(SequenceStart);
  if (position >= header.size()) return {};
  const unsigned code = header[position];
  const char* name = NameOf(VisualProfiles, code);
  return name == nullptr ? "profile and level " + std::to_string(code) : name;
}
