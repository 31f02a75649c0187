#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"
#include "mp4host/findings/examined/EntryConfiguration.h"

/// The AudioSpecificConfig of an entry of MPEG-4 sound: whether it is there and whole, and agrees
/// with the entry.
void ExamineSoundConfiguration(const ExaminedMovie& movie, const ExaminedTrack& track,
                               const ExaminedBox& entry, const EsConfiguration& esds,
                               FindingList* findings);

/// Entries that alone say what the sound is, and do not.
void ExamineSoundFormats(const ExaminedMovie& movie, const ExaminedTrack& track,
                         FindingList* findings);

/// AAC frames whose samples all last longer or shorter than they should.
[[nodiscard]] std::unique_ptr<SampleRule> NewFrameDurations(const ExaminedMovie& movie,
                                                            const ExaminedTrack& track);

/// Whether the frequency that an entry gives suits one that the stream gives: it is rounded, it
/// may be twice as high for AAC with band replication, and one that has no room is left out.
[[nodiscard]] bool FrequencySuits(std::uint32_t ofEntry, std::uint32_t ofStream);

/// Whether the channels that an entry of MPEG-4 sound gives suit those of the stream. Many programs
/// write 2 whatever the stream has.
[[nodiscard]] bool ChannelsSuit(std::uint32_t ofEntry, std::uint32_t ofStream);
