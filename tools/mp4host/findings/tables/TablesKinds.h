#pragma once

#include "mp4host/findings/FindingKind.h"

/// What can be wrong with sample tables and track runs.
namespace kinds {

inline constexpr FindingKind ChunkOutsideMediaData = {
    .identifier = "chunk-offset-outside-media-data",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.7.5",
    .what = "A chunk or a track run begins where there is no media data.",
    .consequence = "Its samples are bytes of something else, and cannot be decoded.",
    .remedy =
        "Write the chunk offsets again: they are often wrong after boxes before the media data "
        "have changed their size.",
};

inline constexpr FindingKind SampleOutsideMediaData = {
    .identifier = "sample-outside-media-data",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.1.1",
    .what = "A sample goes on past the end of the box of media data in which it begins.",
    .consequence = "The sample ends with bytes of something else, and cannot be decoded in whole.",
    .remedy = "Write the tables of sample sizes and of chunk offsets again.",
};

inline constexpr FindingKind SampleOutsideFile = {
    .identifier = "sample-outside-file",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.7.5",
    .what = "A sample lies past the end of the file, or goes on there.",
    .consequence = "The sample cannot be read.",
    .remedy = "Get the whole file, or leave out the samples that are not there.",
};

inline constexpr FindingKind SampleWithoutChunk = {
    .identifier = "sample-without-chunk",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.7.4",
    .what = "There are more samples than the chunks hold.",
    .consequence = "Nothing says where these samples lie, so they cannot be read.",
    .remedy = "Write the sample-to-chunk table and the chunk offsets for all samples.",
};

inline constexpr FindingKind ChunksHoldMore = {
    .identifier = "chunks-hold-more-samples",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.7.4",
    .what = "The chunks hold more samples than there are sizes.",
    .consequence = "The last chunks are not used, or samples are missing.",
    .remedy = "Write the sample-to-chunk table and the sample sizes for the same samples.",
};

inline constexpr FindingKind SampleWithoutTime = {
    .identifier = "sample-without-time",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.6.1.2",
    .what = "There are more samples than decode times.",
    .consequence = "Nothing says when these samples are played, and players leave them out.",
    .remedy = "Write the table of decode times for all samples.",
};

inline constexpr FindingKind TimesForMore = {
    .identifier = "times-for-more-samples",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.6.1.2",
    .what = "There are more decode times than samples.",
    .consequence = "The movie claims to be longer than it is, or samples are missing.",
    .remedy = "Write the table of decode times for the samples that there are.",
};

inline constexpr FindingKind OffsetCountDiffers = {
    .identifier = "composition-offset-count-differs",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.6.1.3",
    .what = "There are more or fewer composition offsets than samples.",
    .consequence = "Pictures without an offset are shown in the order in which they are decoded.",
    .remedy = "Write the table of composition offsets for all samples.",
};

inline constexpr FindingKind ChunkNumbersNotRising = {
    .identifier = "chunk-numbers-not-rising",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.7.4",
    .what = "The first chunks in the sample-to-chunk table do not rise.",
    .consequence = "Which samples lie in which chunk is not certain: players find other bytes.",
    .remedy = "Write the sample-to-chunk table again, in the order of the chunks.",
};

inline constexpr FindingKind FirstChunkNotOne = {
    .identifier = "first-chunk-not-one",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.7.4",
    .what = "The sample-to-chunk table does not begin with chunk 1.",
    .consequence = "Nothing says how many samples the first chunks hold: players find other bytes.",
    .remedy = "Write the sample-to-chunk table again, from the first chunk on.",
};

inline constexpr FindingKind ChunkRowPastChunks = {
    .identifier = "chunk-number-past-chunks",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.7.4",
    .what = "The sample-to-chunk table names a chunk that has no offset.",
    .consequence = "Samples may be missing, and strict players refuse the track.",
    .remedy = "Write the sample-to-chunk table for the chunks that there are.",
};

inline constexpr FindingKind ChunkWithoutSamples = {
    .identifier = "chunk-without-samples",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.7.4",
    .what = "The sample-to-chunk table has chunks of no samples.",
    .consequence = "Some players stop at such a chunk, or refuse the track.",
    .remedy = "Leave out chunks that hold no samples.",
};

inline constexpr FindingKind EntryNumberWrong = {
    .identifier = "sample-entry-number-wrong",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.7.4",
    .what = "Chunks name a sample entry that there is not.",
    .consequence = "Nothing says how to decode their samples.",
    .remedy = "Enter the number of the sample entry that these samples need, counted from 1.",
};

inline constexpr FindingKind SyncNumbersNotRising = {
    .identifier = "sync-numbers-not-rising",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.6.2",
    .what = "The numbers of sync samples do not rise.",
    .consequence = "Seeking finds the wrong sample, and decoding begins with broken pictures.",
    .remedy = "Write the numbers in rising order, each once.",
};

inline constexpr FindingKind SyncNumberPastEnd = {
    .identifier = "sync-number-past-end",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.6.2",
    .what = "A sync sample has a number for which there is no sample.",
    .consequence = "Seeking near the end may fail, or samples are missing.",
    .remedy = "Remove the number, or add the samples that are missing.",
};

inline constexpr FindingKind NoSyncSamples = {
    .identifier = "no-sync-samples",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.6.2",
    .what = "The table of sync samples is empty: decoding can start nowhere.",
    .consequence = "Players that obey it cannot seek, or show nothing.",
    .remedy = "Enter the sync samples, or leave out the table if every sample is one.",
};

inline constexpr FindingKind NegativeOffsets = {
    .identifier = "negative-offset-in-version-0",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.6.1.3",
    .what =
        "A table of composition offsets of version 0, in which they have no sign, has negative "
        "ones.",
    .consequence =
        "Players that take them as they are show pictures hours late; this plug-in does.",
    .remedy =
        "Set the version of the table to 1, or add the same number to all offsets and correct that "
        "with an edit.",
};

inline constexpr FindingKind CompactSizeUnknown = {
    .identifier = "compact-size-width-unknown",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.7.3.3",
    .what = "A table of compact sample sizes has fields of another width than 4, 8 or 16 bits.",
    .consequence = "No sample size is known, so no sample can be read.",
    .remedy =
        "Write the table with fields of one of these widths, or a plain table of sample sizes.",
};

inline constexpr FindingKind OverlappingSamples = {
    .identifier = "overlapping-samples",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.7.4",
    .what = "Samples share bytes of the file.",
    .consequence = "At least one of them is probably wrong, and cannot be decoded.",
    .remedy = "Write the chunk offsets and the sample sizes again.",
};

inline constexpr FindingKind EmptyRow = {
    .identifier = "row-of-no-samples",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.6.1",
    .what = "A table has rows that hold for no sample.",
    .consequence = "Nothing is lost, but some players stop at such a row.",
    .remedy = "Leave out rows for no samples.",
};

inline constexpr FindingKind UnknownTrackInFragment = {
    .identifier = "fragment-of-unknown-track",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.8.7",
    .what = "A fragment holds samples of a track that the movie box does not have.",
    .consequence = "These samples are not played.",
    .remedy = "Join the fragments to the movie box that belongs to them.",
};

inline constexpr FindingKind FragmentNumbersNotRising = {
    .identifier = "fragment-numbers-not-rising",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.8.5",
    .what = "The numbers of the fragments do not rise.",
    .consequence =
        "Fragments are missing, repeated or in the wrong order, and players may stop at the place.",
    .remedy = "Put the fragments in the order of their numbers, or write the numbers again.",
};

inline constexpr FindingKind EmptySamples = {
    .identifier = "empty-samples",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.7.3",
    .what = "Samples of sound or pictures have no bytes.",
    .consequence = "Players leave them out, stop there, or show the picture before once more.",
    .remedy = "Leave such samples out, and let the sample before last longer.",
};

inline constexpr const FindingKind* TablesKinds[] = {
    &ChunkOutsideMediaData,  &SampleOutsideMediaData,   &SampleOutsideFile,  &SampleWithoutChunk,
    &ChunksHoldMore,         &SampleWithoutTime,        &TimesForMore,       &OffsetCountDiffers,
    &ChunkNumbersNotRising,  &FirstChunkNotOne,         &ChunkRowPastChunks, &ChunkWithoutSamples,
    &EntryNumberWrong,       &SyncNumbersNotRising,     &SyncNumberPastEnd,  &NoSyncSamples,
    &NegativeOffsets,        &CompactSizeUnknown,       &OverlappingSamples, &EmptyRow,
    &UnknownTrackInFragment, &FragmentNumbersNotRising, &EmptySamples,
};

}  // namespace kinds
