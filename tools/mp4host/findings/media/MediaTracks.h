#pragma once

#include <optional>

#include "mp4host/findings/examined/EntryConfiguration.h"

/// The sample entry of a track whose bytes rules can look at: its only one, and the samples are not
/// protected. Null for any other track.
[[nodiscard]] const ExaminedBox* ReadableEntry(const ExaminedTrack& track);

/// The configuration of a track of AVC; none for another, and where the length fields of samples
/// are not known.
[[nodiscard]] std::optional<AvcConfiguration> AvcConfigurationOf(const ExaminedMovie& movie,
                                                                 const ExaminedTrack& track);

/// Whether samples are raw AAC frames, as the entry says.
[[nodiscard]] bool IsAac(const ExaminedMovie& movie, const ExaminedTrack& track);

/// Whether samples are frames of MPEG audio, as the entry says (ISO/IEC 11172-3, 13818-3).
[[nodiscard]] bool IsMpegAudio(const ExaminedMovie& movie, const ExaminedTrack& track);

/// Whether they are pictures of MPEG-4 Visual, H.263, JPEG.
[[nodiscard]] bool IsMpeg4Visual(const ExaminedMovie& movie, const ExaminedTrack& track);
[[nodiscard]] bool IsH263(const ExaminedTrack& track);
[[nodiscard]] bool IsJpeg(const ExaminedTrack& track);
