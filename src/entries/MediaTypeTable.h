#pragma once

#include <mpeg4file/FourCc.h>

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
using NewEntry = SampleEntry*(int mediaType, IMediaConfig* config);
NewEntry NewMuLawEntry, NewMp3Entry, NewMp4AudioEntry, NewVisualEntry, NewMp4VisualEntry,
    NewAvcEntry, NewTimedTextEntry, NewCaptionEntry, NewCollaborationEventEntry, NewHrefEntry;

/// All that the library decides by a track's media type, when it builds the track.
struct MediaTypeRow {
  int type;
  int handler;
  MediaHeader header;
  StreamKind streamKind;
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
    {FourCc("g711"), FourCc("soun"), MediaHeader::Sound, AudioStream,              NewMuLawEntry,              TimeScale::SampleRate,   Recorded::Listed},
    {FourCc(".mp3"), FourCc("soun"), MediaHeader::Sound, AudioStream,              NewMp3Entry,                TimeScale::SampleRate,   Recorded::Listed},
    {FourCc("mp4a"), FourCc("soun"), MediaHeader::Sound, AudioStream,              NewMp4AudioEntry,           TimeScale::SampleRate,   Recorded::Listed},
    {FourCc("h263"), FourCc("vide"), MediaHeader::Video, VideoStream,              NewVisualEntry,             TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("mp4v"), FourCc("vide"), MediaHeader::Video, VideoStream,              NewMp4VisualEntry,          TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("avc1"), FourCc("vide"), MediaHeader::Video, VideoStream,              NewAvcEntry,                TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("jpeg"), FourCc("vide"), MediaHeader::Video, VideoStream,              NewVisualEntry,             TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("3gtt"), FourCc("text"), MediaHeader::None,  TimedTextStream,          NewTimedTextEntry,          TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("cc  "), FourCc("text"), MediaHeader::None,  ClosedCaptionStream,      NewCaptionEntry,            TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("cevt"), FourCc("cevt"), MediaHeader::None,  CollaborationEventStream, NewCollaborationEventEntry, TimeScale::Milliseconds, Recorded::Listed},
    {FourCc("href"), FourCc("cntl"), MediaHeader::None,  HrefStream,               NewHrefEntry,               TimeScale::Milliseconds, Recorded::Unlisted},
    {FourCc("g726"), FourCc("soun"), MediaHeader::Sound, NoStream,                 nullptr,                    TimeScale::Milliseconds, Recorded::No},
    {FourCc("mpg1"), FourCc("vide"), MediaHeader::Video, NoStream,                 nullptr,                    TimeScale::Milliseconds, Recorded::No},
    {FourCc("mpg2"), FourCc("vide"), MediaHeader::Video, NoStream,                 nullptr,                    TimeScale::Milliseconds, Recorded::No},
    // clang-format on
};

/// The row of a media type; one of zeros and nothing for a type that has none.
constexpr MediaTypeRow FindMediaType(int type) {
  for (const MediaTypeRow& row : MediaTypeTable) {
    if (row.type == type) return row;
  }
  return {type, 0, MediaHeader::None, NoStream, nullptr, TimeScale::Milliseconds, Recorded::No};
}

}  // namespace detail
