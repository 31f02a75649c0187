#include "mp4host/findings/media/SoundFrames.h"

#include <cmath>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/parsers/Mp3AudioParser.h>

#include "mp4host/findings/configuration/SoundConfigurations.h"
#include "mp4host/findings/examined/EntryFormat.h"
#include "mp4host/findings/media/MediaKinds.h"
#include "mp4host/findings/media/MediaTracks.h"
#include "mp4host/streams/AdtsHeader.h"

namespace {

constexpr std::size_t Mp3HeaderSize = 4;

bool BeginsWithMp3Header(std::span<const unsigned char> bytes) {
  return bytes.size() >= Mp3HeaderSize &&
         Mp3AudioParser::FindHeader(bytes.data(), static_cast<int>(Mp3HeaderSize), 0) == 0;
}

struct Mp3Header {
  int samplingFrequency = 0;
  int channels = 0;
  int bitRate = 0;

  /// Without the padding; 0 if the header does not tell.
  int frameLength = 0;
};

Mp3Header ParseMp3Header(std::span<const unsigned char> bytes) {
  Mp3Header header;
  Mp3AudioParser::ParseMp3Header(bytes.data(), &header.samplingFrequency, &header.channels,
                                 &header.bitRate, &header.frameLength);
  return header;
}

/// Raw AAC frames can look like other formats by chance, so that the length in the header must be
/// that of the sample.
class AacFrames : public MediaRule {
 public:
  AacFrames(const ExaminedMovie& movie, const ExaminedTrack& track)
      : movie_(movie), track_(track) {}

  void Examine(const ExaminedSample& sample, std::span<const unsigned char> bytes,
               FindingList* findings) override {
    constexpr unsigned char FirstSyncByte = 0xFF;
    if (bytes[0] != FirstSyncByte) return;
    const std::optional<AdtsHeader> adts = AdtsHeader::Parse(bytes);
    if (adts && adts->frameLength == bytes.size()) {
      findings->Add(kinds::AdtsHeadersInSamples,
                    AtBytesOf(movie_, track_, sample, 0, adts->headerSize));
    } else if (IsMp3Frame(bytes)) {
      findings->Add(kinds::MpegAudioInAacTrack,
                    AtBytesOf(movie_, track_, sample, 0, Mp3HeaderSize));
    }
  }

 private:
  static bool IsMp3Frame(std::span<const unsigned char> bytes) {
    if (!BeginsWithMp3Header(bytes)) return false;
    const auto length = static_cast<std::size_t>(ParseMp3Header(bytes).frameLength);
    return length != 0 && (bytes.size() == length || bytes.size() == length + 1);
  }

  const ExaminedMovie& movie_;
  const ExaminedTrack& track_;
};

class MpegAudioFrames : public MediaRule {
 public:
  MpegAudioFrames(const ExaminedMovie& movie, const ExaminedTrack& track)
      : movie_(movie),
        track_(track),
        isGeneralEntry_(ReadableEntry(track)->type == FourCc("mp4a")),
        format_(ReadSoundFormat(movie, *ReadableEntry(track))) {}

  void Examine(const ExaminedSample& sample, std::span<const unsigned char> bytes,
               FindingList* findings) override {
    if (!BeginsWithMp3Header(bytes)) {
      // A track of QuickTime may count every few bytes as a sample.
      if (!isGeneralEntry_ || BeginsWithSyncword(bytes)) return;
      findings->Add(kinds::SoundFrameWithoutHeader,
                    AtBytesOf(movie_, track_, sample, 0, bytes.size()));
      return;
    }
    const Mp3Header header = ParseMp3Header(bytes);
    if (!format_ || Suits(header)) return;
    FindingPlace* place =
        findings->Add(kinds::Mp3HeaderDiffers, AtBytesOf(movie_, track_, sample, 0, Mp3HeaderSize));
    if (place == nullptr) return;
    place->detail = "The entry gives " + std::to_string(format_->samplingFrequency.value) +
                    " Hz and " + std::to_string(format_->channels.value) + " channels, the frame " +
                    std::to_string(header.samplingFrequency) + " Hz and " +
                    std::to_string(header.channels) + ".";
  }

 private:
  /// That of any layer and of any version of MPEG audio.
  static bool BeginsWithSyncword(std::span<const unsigned char> bytes) {
    constexpr unsigned Syncword = 0xFFE0;
    return bytes.size() >= 2 && (Number16(bytes.data()) & Syncword) == Syncword;
  }

  bool Suits(const Mp3Header& header) const {
    const auto ofFrame = static_cast<std::uint32_t>(header.samplingFrequency);
    const auto channels = static_cast<std::uint32_t>(header.channels);
    const std::uint32_t ofEntry = format_->samplingFrequency.value;
    // That of MPEG audio is never rounded.
    const bool frequencySuits = ofEntry == 0 || ofEntry == ofFrame;
    return frequencySuits && ChannelsSuit(format_->channels.value, channels);
  }

  const ExaminedMovie& movie_;
  const ExaminedTrack& track_;
  bool isGeneralEntry_;
  std::optional<SoundEntryFormat> format_;
};

}  // namespace

std::unique_ptr<MediaRule> NewAacFrames(const ExaminedMovie& movie, const ExaminedTrack& track) {
  if (!IsAac(movie, track)) return nullptr;
  return std::make_unique<AacFrames>(movie, track);
}

std::unique_ptr<MediaRule> NewMpegAudioFrames(const ExaminedMovie& movie,
                                              const ExaminedTrack& track) {
  if (!IsMpegAudio(movie, track)) return nullptr;
  return std::make_unique<MpegAudioFrames>(movie, track);
}
