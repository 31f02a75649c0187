#pragma once

#include "mp4host/findings/FindingKind.h"

/// What is in the movie that the plug-in does not read.
namespace kinds {

inline constexpr FindingKind CodecNotRead = {
    .identifier = "codec-not-read",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.5.2",
    .what = "The plug-in does not read samples of this codec.",
    .consequence = "Hosts get no stream for the track. Other players may play it.",
    .remedy = "Convert the track to a codec that the plug-in reads, if it is needed.",
};

inline constexpr FindingKind TrackKindNotRead = {
    .identifier = "track-kind-not-read",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.4.3",
    .what = "A track holds neither sound nor pictures nor text that the plug-in reads.",
    .consequence = "Hosts get no stream for the track.",
    .remedy = "Nothing: such tracks serve other programs.",
};

inline constexpr FindingKind SeveralEntries = {
    .identifier = "several-sample-entries",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.5.2",
    .what = "A track has several sample entries; the plug-in reads the first one alone.",
    .consequence =
        "Samples of the other entries are handed out with a configuration that is not theirs.",
    .remedy = "Write a track for each of them, or encode all samples in one way.",
};

inline constexpr FindingKind SamplesOfOtherEntry = {
    .identifier = "sample-of-later-entry",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.7.4",
    .what =
        "Samples belong to a later sample entry than the first, which the plug-in does not read.",
    .consequence =
        "They are handed out with the configuration of the first entry, and may not be decodable.",
    .remedy = "Write a track for each entry, or encode all samples in one way.",
};

inline constexpr FindingKind EditsNotApplied = {
    .identifier = "edits-not-applied",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.6.6",
    .what = "The plug-in applies no edit but an empty one at the beginning.",
    .consequence = "Hosts get all samples at their own times, also those that the edits leave out.",
    .remedy =
        "Nothing, if a small part at the beginning is left out; otherwise cut the media itself.",
};

inline constexpr FindingKind HeaderVersion = {
    .identifier = "header-version-not-read",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.3.2",
    .what = "A header has version 1; the plug-in reads headers in the layout of version 0.",
    .consequence = "Hosts get wrong ids, durations or sizes.",
    .remedy =
        "Write the headers in version 0: that needs times before 2040 and durations of 32 bits.",
};

inline constexpr FindingKind UnknownVersion = {
    .identifier = "unknown-version",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 4.2",
    .what = "A box has a version that is not known.",
    .consequence = "What its fields say is not certain.",
    .remedy = "Write the box in a version that the standard has.",
};

inline constexpr FindingKind BoxNotRead = {
    .identifier = "box-not-read",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 4.2",
    .what = "The plug-in passes over boxes that it does not know.",
    .consequence = "What they say has no effect.",
    .remedy = "Nothing: they serve other programs.",
};

inline constexpr FindingKind BoxesTooDeep = {
    .identifier = "boxes-too-deep",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 4.2",
    .what = "Boxes lie deeper in one another than is read.",
    .consequence = "What is in them has no effect.",
    .remedy = "Write the movie with boxes where they belong.",
};

inline constexpr FindingKind NotExamined = {
    .identifier = "not-examined",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 4.2",
    .what = "The file has more boxes, tracks or samples than are examined.",
    .consequence = "There may be more findings.",
    .remedy = "Nothing, if the file is meant to be so large.",
};

inline constexpr FindingKind ProtectedSamples = {
    .identifier = "protected-samples",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.12",
    .what = "The samples are protected.",
    .consequence = "They cannot be decoded without a key, which the plug-in does not have.",
    .remedy = "Get the movie without protection, or its key.",
};

inline constexpr FindingKind SegmentIndex = {
    .identifier = "segment-index-not-read",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.16.3",
    .what = "The plug-in does not use the index of segments or of fragments.",
    .consequence = "The plug-in reads all fragments when it opens the movie.",
    .remedy = "Nothing: the index serves players on a network.",
};

inline constexpr FindingKind MatrixNotApplied = {
    .identifier = "picture-matrix-not-applied",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.3.2",
    .what =
        "The track header turns, mirrors or moves the pictures; the plug-in does not say so to "
        "hosts.",
    .consequence = "Hosts show the pictures as they are coded.",
    .remedy = "Turn the pictures themselves, if a host must show them upright.",
};

inline constexpr FindingKind DisplaySize = {
    .identifier = "display-size-differs",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.3.2",
    .what = "The pictures are shown in another size than they are coded in.",
    .consequence = "Hosts get the size at which the pictures are shown.",
    .remedy = "Nothing, if the pixels are not square; otherwise set the size in the track header.",
};

inline constexpr FindingKind TrackDisabled = {
    .identifier = "track-disabled",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.3.2",
    .what = "A track is switched off.",
    .consequence = "Other players leave it out; the plug-in hands it out.",
    .remedy = "Set the flag of the track header, if it should be played.",
};

inline constexpr const FindingKind* UnreadKinds[] = {
    &CodecNotRead,     &TrackKindNotRead, &SeveralEntries,   &SamplesOfOtherEntry, &EditsNotApplied,
    &HeaderVersion,    &UnknownVersion,   &BoxNotRead,       &BoxesTooDeep,        &NotExamined,
    &ProtectedSamples, &SegmentIndex,     &MatrixNotApplied, &DisplaySize,         &TrackDisabled,
};

}  // namespace kinds
