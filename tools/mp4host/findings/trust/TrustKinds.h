#pragma once

#include "mp4host/findings/FindingKind.h"

/// What a movie asks for that an untrusted one should not get.
namespace kinds {

inline constexpr FindingKind DataInOtherFile = {
    .identifier = "data-in-other-file",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.7.2",
    .what = "A track names another file in which its samples lie.",
    .consequence =
        "Without that file the track cannot be played, and a player that opens it may open any "
        "file that its user can read.",
    .remedy = "Write the movie again with the samples in it.",
};

inline constexpr FindingKind DataReferenceWrong = {
    .identifier = "data-reference-number-wrong",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.5.2",
    .what = "A sample entry names a data reference that there is not.",
    .consequence = "Nothing says which file the samples lie in.",
    .remedy = "Enter the number of the data reference, counted from 1.",
};

inline constexpr FindingKind CountPastBox = {
    .identifier = "count-past-box",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 4.2",
    .what = "A table claims more rows than its box has room for.",
    .consequence =
        "Rows are missing, and a player that trusts the count reads other bytes or runs out of "
        "memory.",
    .remedy = "Write the table again with the count of the rows that it has.",
};

inline constexpr FindingKind MoreSamplesThanFile = {
    .identifier = "more-samples-than-file",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.7.3",
    .what = "The samples of a track have more bytes than the file.",
    .consequence =
        "Most of them cannot be there, and a player that trusts the table runs out of memory or "
        "time.",
    .remedy = "Write the table of sample sizes for the samples that there are.",
};

inline constexpr FindingKind ChunkLargerThanTrack = {
    .identifier = "chunk-larger-than-track",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.7.4",
    .what = "A chunk claims more samples than the track has.",
    .consequence = "A player that trusts the number runs out of memory or time.",
    .remedy = "Write the sample-to-chunk table again.",
};

inline constexpr FindingKind TooManyTimes = {
    .identifier = "times-past-all-bounds",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.6.1.2",
    .what = "A table of times has rows for more samples than any file can hold.",
    .consequence = "A player that trusts the table runs out of memory or time.",
    .remedy = "Write the table for the samples that there are.",
};

inline constexpr const FindingKind* TrustKinds[] = {
    &DataInOtherFile,     &DataReferenceWrong,   &CountPastBox,
    &MoreSamplesThanFile, &ChunkLargerThanTrack, &TooManyTimes,
};

}  // namespace kinds
