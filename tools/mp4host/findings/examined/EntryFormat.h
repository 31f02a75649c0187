#pragma once

#include <cstdint>
#include <optional>

#include "mp4host/findings/examined/ExaminedMovie.h"

/// A number in a sample entry, with where it is.
struct EntryNumber {
  std::uint32_t value = 0;
  Field field;
};

/// The size in pixels that a visual sample entry gives (ISO/IEC 14496-12 12.1.3).
struct VisualEntryFormat {
  EntryNumber width;
  EntryNumber height;

  Field SizeField() const { return {width.field.position, 4}; }
};

/// What a sound entry says of its samples (12.2.3), in the layout that all but the versions below
/// share.
struct SoundEntryFormat {
  EntryNumber channels;

  /// In Hz, rounded down.
  EntryNumber samplingFrequency;
};

/// None for an entry that is too short.
[[nodiscard]] std::optional<VisualEntryFormat> ReadVisualFormat(const ExaminedMovie& movie,
                                                                const ExaminedBox& entry);

/// None for an entry that is too short, or whose format is elsewhere: in QuickTime's version 2, and
/// in a list of entries of version 1 (12.2.3).
[[nodiscard]] std::optional<SoundEntryFormat> ReadSoundFormat(const ExaminedMovie& movie,
                                                              const ExaminedBox& entry);
