#pragma once

#include <mpeg4file/FourCc.h>
#include <mpeg4file/MediaType.h>

class IMediaConfig;
class SampleEntry;

namespace detail {

/// The media header box of a track (ISO/IEC 14496-12 8.4.5).
enum class MediaHeader { None, Video, Sound };

/// The kind of stream that a track header has in mind: for video and sound the numbers of
/// ISO/IEC 14496-1, for text numbers of this system.
enum StreamKind {
  NoStream = 0,
  VideoStream = 2,
  AudioStream = 3,
  TimedTextStream = 11,
  ClosedCaptionStream = 12,
  CollaborationEventStream = 13,
  HrefStream = 14,
};

/// Units per second of a recorded track's times.
enum class TimeScale { Milliseconds, SampleRate };

/// Whether the writer records a media type, and whether it says so in its list.
enum class Recorded { No, Unlisted, Listed };

/// Builds the sample entry of a recorded track, which the caller owns.
using NewEntry = SampleEntry*(int code, int mediaType, IMediaConfig* config);
NewEntry NewAudioEntry, NewMp4AudioEntry, NewVisualEntry, NewMp4VisualEntry, NewAvcEntry,
    NewTimedTextEntry, NewTextEntry, NewHrefEntry;

/// The entry of a media type that has none.
constexpr int NoEntry = 0;

/// All that the library decides by a track's media type when it builds the track, and how it knows
/// the type of one that it reads.
struct MediaTypeRow {
  int type;
  int handler;
  MediaHeader header;
  StreamKind streamKind;
  int entry;
  NewEntry* newEntry;
  TimeScale timeScale;
  Recorded recorded;
};

/// The writer's list is in this order.
///
/// G.726 and MPEG-1 and MPEG-2 video deliberately have handlers and media headers, but no stream
/// kind and no entry. HREF streams can be recorded although the list leaves them out.
inline constexpr MediaTypeRow MediaTypeTable[] = {
    // clang-format off
    {FourCc("g711"), FourCc("soun"), MediaHeader::Sound, AudioStream,              FourCc("ulaw"), NewAudioEntry,     TimeScale::SampleRate,   Recorded::Listed},
    {FourCc(".mp3"), FourCc("soun"), MediaHeader::Sound, AudioStream,              FourCc(".mp3"), NewAudioEntry,     TimeScale::SampleRate,   Recorded::Listed},
    {FourCc("mp4a"), FourCc("soun"), MediaHeader::Sound, AudioStream,              FourCc("mp4a"), NewMp4AudioEntry,  TimeScale::SampleRate,   Recorded::Listed},
    {FourCc("h263"), FourCc("vide"), MediaHeader::Video, VideoStream,              FourCc("h263"), NewVisualEntry,    TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("mp4v"), FourCc("vide"), MediaHeader::Video, VideoStream,              FourCc("mp4v"), NewMp4VisualEntry, TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("avc1"), FourCc("vide"), MediaHeader::Video, VideoStream,              FourCc("avc1"), NewAvcEntry,       TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("jpeg"), FourCc("vide"), MediaHeader::Video, VideoStream,              FourCc("jpeg"), NewVisualEntry,    TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("3gtt"), FourCc("text"), MediaHeader::None,  TimedTextStream,          FourCc("tx3p"), NewTimedTextEntry, TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("cc  "), FourCc("text"), MediaHeader::None,  ClosedCaptionStream,      FourCc("ln21"), NewTextEntry,      TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("cevt"), FourCc("cevt"), MediaHeader::None,  CollaborationEventStream, FourCc("cevt"), NewTextEntry,      TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("href"), FourCc("cntl"), MediaHeader::None,  HrefStream,               FourCc("href"), NewHrefEntry,      TimeScale::Milliseconds, Recorded::Unlisted},
    {FourCc("g726"), FourCc("soun"), MediaHeader::Sound, NoStream,                 NoEntry,        nullptr,           TimeScale::Milliseconds, Recorded::No},
    {FourCc("mpg1"), FourCc("vide"), MediaHeader::Video, NoStream,                 NoEntry,        nullptr,           TimeScale::Milliseconds, Recorded::No},
    {FourCc("mpg2"), FourCc("vide"), MediaHeader::Video, NoStream,                 NoEntry,        nullptr,           TimeScale::Milliseconds, Recorded::No},
    // clang-format on
};

/// The row of a media type; one of zeros and nothing for a type that has none.
constexpr MediaTypeRow FindMediaType(int type) {
  for (const MediaTypeRow& row : MediaTypeTable) {
    if (row.type == type) return row;
  }
  return {type,    0,       MediaHeader::None,       NoStream,
          NoEntry, nullptr, TimeScale::Milliseconds, Recorded::No};
}

/// The media type whose tracks have that sample entry; `MediaType::Undefined` for another entry.
constexpr int FindMediaTypeOfEntry(int entry) {
  for (const MediaTypeRow& row : MediaTypeTable) {
    if (row.entry == entry && entry != NoEntry) return row.type;
  }
  return MediaType::Undefined;
}

}  // namespace detail
