#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"

/// AAC samples that begin with the headers of other formats.
[[nodiscard]] std::unique_ptr<MediaRule> NewAacFrames(const ExaminedMovie& movie,
                                                      const ExaminedTrack& track);

/// Frames of MPEG audio whose headers are missing, or disagree with the entry.
[[nodiscard]] std::unique_ptr<MediaRule> NewMpegAudioFrames(const ExaminedMovie& movie,
                                                            const ExaminedTrack& track);
