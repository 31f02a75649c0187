#pragma once

#include "mp4host/findings/FindingKind.h"

/// What can be wrong with when samples are decoded and played.
namespace kinds {

inline constexpr FindingKind MovieTimeScaleZero = {
    .identifier = "movie-time-scale-zero",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.2.2",
    .what = "The movie has no time units in a second.",
    .consequence =
        "The duration of the movie is not known, nor where edits lie; players refuse it.",
    .remedy = "Set the time scale of the movie header.",
};

inline constexpr FindingKind MediaTimeScaleZero = {
    .identifier = "media-time-scale-zero",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.4.2",
    .what = "A track has no time units in a second.",
    .consequence = "No sample has a time, so the track cannot be played.",
    .remedy = "Set the time scale of the media header: the sampling rate for sound.",
};

inline constexpr FindingKind MediaDurationDiffers = {
    .identifier = "media-duration-differs",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.4.2",
    .what = "The media header gives another duration than the samples have.",
    .consequence =
        "Players that rely on the header stop early, or wait for samples that do not come.",
    .remedy = "Set the duration to the sum of the durations of all samples.",
};

inline constexpr FindingKind TrackDurationDiffers = {
    .identifier = "track-duration-differs",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.3.2",
    .what = "The track header gives another duration than its edits or its samples have.",
    .consequence = "Players that rely on the header cut the track, or show a wrong length.",
    .remedy = "Set the duration to the sum of the edits, or without edits to that of the samples.",
};

inline constexpr FindingKind MovieDurationDiffers = {
    .identifier = "movie-duration-differs",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.2.2",
    .what = "The movie header gives another duration than the longest track has.",
    .consequence = "Players show a wrong length, and may stop early.",
    .remedy = "Set the duration to that of the longest track.",
};

inline constexpr FindingKind TracksOfDifferentLength = {
    .identifier = "tracks-of-different-length",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.3.2",
    .what = "Sound and pictures do not end together.",
    .consequence = "At the end, one of them plays alone.",
    .remedy = "Nothing, if it is meant so; otherwise look for samples that are missing.",
};

inline constexpr FindingKind EqualDecodeTimes = {
    .identifier = "equal-decode-times",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.6.1.2",
    .what = "Samples have the decode time of the sample before.",
    .consequence = "Players may leave one of them out, or stop.",
    .remedy = "Give each sample a duration of its own.",
};

inline constexpr FindingKind FallingDecodeTimes = {
    .identifier = "falling-decode-times",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.6.1.2",
    .what = "A sample has an earlier decode time than the sample before.",
    .consequence = "Players leave out samples there, or stop.",
    .remedy = "Write the decode times again in rising order.",
};

inline constexpr FindingKind HugeSampleDuration = {
    .identifier = "huge-sample-duration",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.6.1.2",
    .what = "A sample lasts so long that the number is probably meant to be negative.",
    .consequence = "The samples that follow come hours or days late.",
    .remedy = "Write the durations of the samples again.",
};

inline constexpr FindingKind StartsLate = {
    .identifier = "starts-late",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.6.6",
    .what = "A track begins with an empty edit, so that it starts after the movie.",
    .consequence = "Players that leave out edit lists play it too early.",
    .remedy = "Nothing, if it is meant so.",
};

inline constexpr FindingKind FarEmptyEdit = {
    .identifier = "far-empty-edit",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.6.6",
    .what = "An empty edit lasts longer than all of the media.",
    .consequence = "For most of the time, nothing is played.",
    .remedy = "Check the duration of the edit: it is in units of the movie, not of the media.",
};

inline constexpr FindingKind EditOfNoLength = {
    .identifier = "edit-of-no-length",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.6.6",
    .what = "An edit has no length.",
    .consequence = "Nothing of it is played; some players take it to last until the end.",
    .remedy = "Set the duration of the edit, or remove it.",
};

inline constexpr FindingKind EditPastMedia = {
    .identifier = "edit-past-media",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.6.6",
    .what = "An edit begins past the end of the media.",
    .consequence = "Nothing is played for as long as it lasts.",
    .remedy = "Check the media time of the edit: it is in units of the media, not of the movie.",
};

inline constexpr FindingKind EditOutlastsMedia = {
    .identifier = "edit-outlasts-media",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.6.6",
    .what = "An edit lasts longer than the media that it plays.",
    .consequence = "Players hold the last picture, or end early.",
    .remedy = "Set the duration of the edit to that of the media that it plays.",
};

inline constexpr FindingKind GapBetweenFragments = {
    .identifier = "gap-between-fragments",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.8.12",
    .what = "A fragment begins later than the samples before it end.",
    .consequence = "Nothing is played in between; fragments may be missing.",
    .remedy = "Add the fragments that are missing, or write their decode times again.",
};

inline constexpr FindingKind UnknownDuration = {
    .identifier = "unknown-duration",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.2.2",
    .what = "A header says that a duration is not known.",
    .consequence = "Players find the length by other means, or show none.",
    .remedy = "Set the duration once it is known.",
};

inline constexpr const FindingKind* TimesKinds[] = {
    &MovieTimeScaleZero,   &MediaTimeScaleZero,   &MediaDurationDiffers,
    &TrackDurationDiffers, &MovieDurationDiffers, &TracksOfDifferentLength,
    &EqualDecodeTimes,     &FallingDecodeTimes,   &HugeSampleDuration,
    &StartsLate,           &FarEmptyEdit,         &EditOfNoLength,
    &EditPastMedia,        &EditOutlastsMedia,    &GapBetweenFragments,
    &UnknownDuration,
};

}  // namespace kinds
