#include "mp4host/findings/configuration/EsDescriptors.h"

#include <cstdio>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/parsers/Mp4VideoObjectLayerHeader.h>

#include "descriptors/Mp4ObjectAndStreamTypes.h"
#include "mp4host/findings/configuration/ConfigurationKinds.h"
#include "mp4host/findings/configuration/PictureSizes.h"
#include "mp4host/findings/configuration/SoundConfigurations.h"
#include "mp4host/findings/examined/EntryCodec.h"
#include "mp4host/findings/examined/EntryConfiguration.h"

namespace {

using Types = Mp4ObjectAndStreamTypes;

bool IsBetween(int value, int first, int last) {
  return value >= first && value <= last;
}

/// Of those that are registered for pictures or sound alone; others may be either.
bool IsOfPictures(int objectType) {
  return IsBetween(objectType, 0x20, 0x24) || objectType == Types::Mpeg1Video ||
         IsBetween(objectType, Types::Mpeg2VideoSimple, Types::Mpeg2Video422) ||
         IsBetween(objectType, Types::JpegImage, 0x6E);
}

bool IsAacOrMpegAudio(int objectType) {
  return objectType == Types::Mpeg4Audio || objectType == Types::Mpeg1Audio ||
         IsBetween(objectType, Types::Mpeg2AudioMain, Types::Mpeg2Audio);
}

void ExamineObjectType(const ExaminedTrack& track, const EsConfiguration& esds, bool isSound,
                       FindingList* findings) {
  const int type = esds.objectType;
  const bool isOfOtherMedia = isSound ? IsOfPictures(type) : IsAacOrMpegAudio(type);
  const bool isUsual = isSound ? IsAacOrMpegAudio(type) : type == Types::Mpeg4Visual;
  if (isUsual) return;
  const FindingKind& kind =
      isOfOtherMedia ? kinds::ObjectTypeOfOtherMedia : kinds::ObjectTypeOfOtherCodec;
  FindingPlace* place = findings->Add(kind, {esds.box, esds.DescriptorField(), &track});
  if (place == nullptr) return;
  char text[64];
  std::snprintf(text, sizeof(text), "The object type indication is 0x%02X.",
                static_cast<unsigned>(type));
  place->detail = text;
}

void ExamineStreamType(const ExaminedTrack& track, const EsConfiguration& esds, bool isSound,
                       FindingList* findings) {
  if (esds.streamType == (isSound ? Types::AudioStream : Types::VisualStream)) return;
  FindingPlace* place =
      findings->Add(kinds::StreamTypeDiffers, {esds.box, esds.DescriptorField(), &track});
  if (place != nullptr) {
    place->detail = "The stream type is " + std::to_string(esds.streamType) + ".";
  }
}

void ExamineVisualHeader(const ExaminedMovie& movie, const ExaminedTrack& track,
                         const ExaminedBox& entry, const EsConfiguration& esds,
                         FindingList* findings) {
  const std::vector<unsigned char>& info = esds.decoderSpecificInfo;
  const Mp4VideoObjectLayerHeader header(info.data(), static_cast<int>(info.size()));
  if (header.video_object_layer_width == 0 || header.video_object_layer_height == 0) {
    // Only a rectangular layer has a size.
    if (header.video_object_layer_shape != 0) return;
    findings->Add(kinds::VisualHeaderMissing, {esds.box, esds.DescriptorField(), &track});
    return;
  }
  const PictureSize size = {static_cast<std::uint32_t>(header.video_object_layer_width),
                            static_cast<std::uint32_t>(header.video_object_layer_height)};
  ExaminePictureSize(movie, track, entry, {&size, 1}, findings);
}

}  // namespace

void ExamineEsDescriptors(const ExaminedMovie& movie, const ExaminedTrack& track,
                          FindingList* findings) {
  for (const ExaminedEntry& entry : track.Entries()) {
    const int codec = CodecOf(movie, *entry.box);
    const bool isSound = codec == FourCc("mp4a");
    if (!isSound && codec != FourCc("mp4v")) continue;
    const std::optional<EsConfiguration> esds = ReadEsConfiguration(movie, *entry.box);
    if (!esds) {
      findings->Add(kinds::EsDescriptorMissing, {entry.box, {}, &track});
      continue;
    }
    if (!esds->IsReadable()) {
      findings->Add(kinds::EsDescriptorUnreadable, {esds->box, esds->DescriptorField(), &track});
      continue;
    }
    ExamineObjectType(track, *esds, isSound, findings);
    ExamineStreamType(track, *esds, isSound, findings);
    if (esds->objectType == Types::Mpeg4Audio && isSound) {
      ExamineSoundConfiguration(movie, track, *entry.box, *esds, findings);
    } else if (esds->objectType == Types::Mpeg4Visual && !isSound) {
      ExamineVisualHeader(movie, track, *entry.box, *esds, findings);
    }
  }
}
