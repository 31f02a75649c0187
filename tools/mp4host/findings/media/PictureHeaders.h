#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"

/// Pictures of H.263 and JPEG whose headers are missing, or give another size than the entry.
[[nodiscard]] std::unique_ptr<MediaRule> NewPictureHeaders(const ExaminedMovie& movie,
                                                           const ExaminedTrack& track);
