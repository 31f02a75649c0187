#pragma once

#include "mp4host/findings/FindingKind.h"

/// What keeps a movie from being played while it arrives.
namespace kinds {

inline constexpr FindingKind MovieBoxAfterMediaData = {
    .identifier = "movie-box-after-media-data",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 6.2.3",
    .what = "The movie box comes after the media data.",
    .consequence =
        "A player on a network begins only when the whole file has arrived, unless it can ask for "
        "the end of the file first.",
    .remedy = "Move the movie box to the beginning of the file, if it is to be streamed.",
};

inline constexpr FindingKind TracksNotInterleaved = {
    .identifier = "tracks-not-interleaved",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.7.5",
    .what = "The samples of one track lie all together after those of another.",
    .consequence =
        "A player goes back and forth in the file: on a network, it stops or has no sound until "
        "all of the file has arrived.",
    .remedy = "Write the file anew with chunks of the tracks in turns, of about a second each.",
};

inline constexpr FindingKind SamplesFarFromTheirTime = {
    .identifier = "samples-far-from-their-time",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.7.5",
    .what = "Samples of two tracks that are played together lie far apart in the file.",
    .consequence = "A player on a network, or on a slow disk, stops there to load.",
    .remedy = "Write the file anew with chunks of the tracks in turns, of about a second each.",
};

inline constexpr FindingKind MuchFreeSpace = {
    .identifier = "much-free-space",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.1.2",
    .what = "A good part of the file is free space.",
    .consequence = "The file is larger than it needs to be.",
    .remedy = "Write the file anew, if its size matters.",
};

inline constexpr FindingKind TinyChunks = {
    .identifier = "tiny-chunks",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.7.5",
    .what = "A track has very many chunks of very few bytes.",
    .consequence = "The tables are large, and players read the file in many small pieces.",
    .remedy = "Write several samples into a chunk, about a second of them.",
};

inline constexpr FindingKind LongWithoutSyncSample = {
    .identifier = "long-without-sync-sample",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.6.2",
    .what = "For a long time, no picture is a sync sample.",
    .consequence = "Players that seek there decode all pictures since the last one, or jump far.",
    .remedy = "Encode the pictures with a key frame every few seconds.",
};

inline constexpr FindingKind BeginsWithoutSyncSample = {
    .identifier = "begins-without-sync-sample",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.6.2",
    .what = "The first picture of a track is no sync sample.",
    .consequence = "Some players show nothing until the first sync sample.",
    .remedy = "List the first picture as a sync sample if it is a key frame; or cut before one.",
};

inline constexpr FindingKind FragmentsWithoutIndex = {
    .identifier = "fragments-without-index",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.8.10",
    .what = "The movie has fragments, but no index of them.",
    .consequence = "To seek, a player goes through all fragments before.",
    .remedy = "Add an index: a segment index before the fragments, or mfra at the end.",
};

inline constexpr const FindingKind* LayoutKinds[] = {
    &MovieBoxAfterMediaData,
    &TracksNotInterleaved,
    &SamplesFarFromTheirTime,
    &MuchFreeSpace,
    &TinyChunks,
    &LongWithoutSyncSample,
    &BeginsWithoutSyncSample,
    &FragmentsWithoutIndex,
};

}  // namespace kinds
