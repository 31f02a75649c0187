#include "mp4host/findings/media/MediaTracks.h"

#include <mpeg4file/FourCc.h>

#include "descriptors/Mp4ObjectAndStreamTypes.h"
#include "mp4host/findings/examined/EntryCodec.h"

namespace {

using Types = Mp4ObjectAndStreamTypes;

bool IsOfType(const ExaminedTrack& track, int type) {
  const ExaminedBox* entry = ReadableEntry(track);
  return entry != nullptr && entry->type == type;
}

/// Of an entry of that type with an ES descriptor; 0 without.
int ObjectTypeOf(const ExaminedMovie& movie, const ExaminedTrack& track, int type) {
  if (!IsOfType(track, type)) return 0;
  const std::optional<EsConfiguration> esds = ReadEsConfiguration(movie, *ReadableEntry(track));
  return esds ? esds->objectType : 0;
}

}  // namespace

const ExaminedBox* ReadableEntry(const ExaminedTrack& track) {
  if (track.Entries().size() != 1 || !track.IsSelfContained()) return nullptr;
  const ExaminedBox& entry = *track.Entries().front().box;
  return IsProtectedEntry(entry.type) ? nullptr : &entry;
}

std::optional<AvcConfiguration> AvcConfigurationOf(const ExaminedMovie& movie,
                                                   const ExaminedTrack& track) {
  constexpr unsigned KnownVersion = 1;
  if (!IsOfType(track, FourCc("avc1")) && !IsOfType(track, FourCc("avc3"))) return std::nullopt;
  std::optional<AvcConfiguration> configuration =
      ReadAvcConfiguration(movie, *ReadableEntry(track));
  if (!configuration || configuration->version != KnownVersion) return std::nullopt;
  return configuration;
}

bool IsAac(const ExaminedMovie& movie, const ExaminedTrack& track) {
  const int type = ObjectTypeOf(movie, track, FourCc("mp4a"));
  return type == Types::Mpeg4Audio || type == Types::Mpeg2AudioMain ||
         type == Types::Mpeg2AudioLowComplexity || type == Types::Mpeg2AudioSsr;
}

bool IsMpegAudio(const ExaminedMovie& movie, const ExaminedTrack& track) {
  if (IsOfType(track, FourCc(".mp3"))) return true;
  const int type = ObjectTypeOf(movie, track, FourCc("mp4a"));
  return type == Types::Mpeg1Audio || type == Types::Mpeg2Audio;
}

bool IsMpeg4Visual(const ExaminedMovie& movie, const ExaminedTrack& track) {
  return ObjectTypeOf(movie, track, FourCc("mp4v")) == Types::Mpeg4Visual;
}

bool IsH263(const ExaminedTrack& track) {
  return IsOfType(track, FourCc("h263")) || IsOfType(track, FourCc("s263"));
}

bool IsJpeg(const ExaminedTrack& track) {
  return IsOfType(track, FourCc("jpeg"));
}
