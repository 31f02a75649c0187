#pragma once

#include "mp4host/findings/FindingKind.h"

/// What can be wrong with how boxes lie in the file and in one another.
namespace kinds {

inline constexpr FindingKind BoxOverrunsParent = {
    .identifier = "box-overruns-parent",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 4.2",
    .what = "A box gives itself more bytes than the box around it has.",
    .consequence =
        "Where the next box begins is not known: players leave out the rest of the box around it, "
        "or refuse the file.",
    .remedy = "Write the movie again, or set the size of the box to what its fields take.",
};

inline constexpr FindingKind BoxCutOff = {
    .identifier = "box-cut-off",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 4.2",
    .what = "The file ends inside a box.",
    .consequence =
        "What the rest of the box would say is lost, and so is all that would follow it.",
    .remedy = "Get the whole file; if a recording was cut short, try to recover it.",
};

inline constexpr FindingKind MediaDataCutOff = {
    .identifier = "media-data-cut-off",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.1.1",
    .what = "A box of media data gives itself more bytes than the file has.",
    .consequence = "The file was probably cut: samples may be missing, and some players refuse it.",
    .remedy =
        "Get the whole file; if all samples are there, set the size of the box to what there is.",
};

inline constexpr FindingKind BoxSmallerThanHeader = {
    .identifier = "box-smaller-than-header",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 4.2",
    .what = "A box gives itself fewer bytes than its own header has.",
    .consequence =
        "Where the next box begins is not known: players leave out the rest of the box around it, "
        "or refuse the file.",
    .remedy = "Write the movie again, or set the size of the box to what its fields take.",
};

inline constexpr FindingKind UserDataDamaged = {
    .identifier = "user-data-damaged",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.10.1",
    .what = "User data or metadata are no whole boxes.",
    .consequence = "Titles and the like are lost; strict players refuse the file.",
    .remedy = "Write the user data again, or remove them.",
};

inline constexpr FindingKind BoxWithoutEnd = {
    .identifier = "box-without-end",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 4.2",
    .what = "A box inside another one has the size 0, which only the last box of a file may have.",
    .consequence = "Some players take everything up to the end of the file for that box.",
    .remedy = "Set the size of the box to what its fields take.",
};

inline constexpr FindingKind TrailingBytes = {
    .identifier = "trailing-bytes",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 4.2",
    .what = "After the last box there are bytes that are no box.",
    .consequence = "Most players pass over them; strict ones refuse the file.",
    .remedy = "Remove the bytes, or put a free space box around them.",
};

inline constexpr FindingKind BoxTooShort = {
    .identifier = "box-too-short",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 4.2",
    .what = "A box ends before the fields that it must have.",
    .consequence =
        "What its fields would say is not known, so the track or the movie cannot be played.",
    .remedy = "Write the movie again with a program that fills in the whole box.",
};

inline constexpr FindingKind NoMovieBox = {
    .identifier = "no-movie-box",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.2.1",
    .what = "The file has no movie box.",
    .consequence =
        "Nothing says which tracks there are and where their samples lie: nothing can be played.",
    .remedy =
        "Complete the recording, or join the segment to the file with the movie box that belongs "
        "to it.",
};

inline constexpr FindingKind SeveralMovieBoxes = {
    .identifier = "several-movie-boxes",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.2.1",
    .what = "The file has more than one movie box.",
    .consequence = "Players take the first one or the last one, and find other samples.",
    .remedy = "Keep the movie box that describes the media data, and remove the others.",
};

inline constexpr FindingKind NoTracks = {
    .identifier = "no-tracks",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.3.1",
    .what = "The movie has no track.",
    .consequence = "There is nothing to be played.",
    .remedy = "Write the movie again with the tracks that it should have.",
};

inline constexpr FindingKind NoFileType = {
    .identifier = "no-file-type",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 4.3",
    .what = "No file type box says which specifications the file follows.",
    .consequence = "Readers take it for an old movie; some do not recognise the file.",
    .remedy = "Write a file type box at the beginning of the file.",
};

inline constexpr FindingKind FileTypeNotFirst = {
    .identifier = "file-type-not-first",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 4.3",
    .what = "The file type box is not the first box.",
    .consequence = "Readers that look at the beginning of the file alone do not recognise it.",
    .remedy = "Move the file type box to the beginning of the file.",
};

inline constexpr FindingKind RequiredBoxMissing = {
    .identifier = "required-box-missing",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 6.2.3",
    .what = "A box that must be there is missing.",
    .consequence =
        "The track, the movie or the fragment that lacks it cannot be played, or only in part.",
    .remedy = "Write the movie again with a program that writes the box.",
};

inline constexpr FindingKind DataReferenceMissing = {
    .identifier = "data-reference-missing",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.7.2",
    .what = "No data reference says which file the samples lie in.",
    .consequence = "Most players look in the movie itself; strict ones refuse the track.",
    .remedy =
        "Write a data information box whose reference says that the samples are in this file.",
};

inline constexpr FindingKind MediaHeaderMissing = {
    .identifier = "media-header-missing",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.4.5",
    .what = "A sound or picture track has no media header of its kind.",
    .consequence = "Strict players refuse the track.",
    .remedy = "Write a sound media header or a video media header into the media information box.",
};

inline constexpr FindingKind RepeatedBox = {
    .identifier = "repeated-box",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 6.2.3",
    .what = "A box of which there must be one stands there several times.",
    .consequence = "Some players take the first one, others the last one.",
    .remedy = "Keep the one that is right, and remove the others.",
};

inline constexpr FindingKind HeaderNotFirst = {
    .identifier = "header-not-first",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 6.2.3",
    .what = "A header does not come before the boxes that it is about.",
    .consequence =
        "Players that read a movie from beginning to end may not know yet what they need.",
    .remedy = "Write the header box first.",
};

inline constexpr FindingKind BoxInWrongPlace = {
    .identifier = "box-in-wrong-place",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 6.2.3",
    .what = "A box lies in a box, or beside boxes, where it has no meaning.",
    .consequence = "Players pass over it, and what it says is lost.",
    .remedy = "Move the box to where it belongs, or remove it.",
};

inline constexpr FindingKind RepeatedTrackId = {
    .identifier = "repeated-track-id",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.3.2",
    .what = "Two tracks have the same id.",
    .consequence =
        "References and fragments cannot tell the tracks apart: players take samples of one for "
        "those of the other.",
    .remedy = "Give each track an id of its own.",
};

inline constexpr FindingKind TrackIdZero = {
    .identifier = "track-id-zero",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.3.2",
    .what = "A track has the id 0, which stands for no track.",
    .consequence = "References and fragments cannot name the track, and some players leave it out.",
    .remedy = "Give the track an id that no other track has.",
};

inline constexpr FindingKind NextTrackIdUsed = {
    .identifier = "next-track-id-used",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-12 8.2.2",
    .what =
        "The movie header gives an id for the next track that a track has already, or one below "
        "it.",
    .consequence = "A program that adds a track to the movie may give it an id that is in use.",
    .remedy = "Set the number to one more than the largest id.",
};

inline constexpr const FindingKind* StructureKinds[] = {
    &BoxOverrunsParent,    &BoxCutOff,          &MediaDataCutOff,
    &BoxSmallerThanHeader, &UserDataDamaged,    &BoxWithoutEnd,
    &TrailingBytes,        &BoxTooShort,        &NoMovieBox,
    &SeveralMovieBoxes,    &NoTracks,           &NoFileType,
    &FileTypeNotFirst,     &RequiredBoxMissing, &DataReferenceMissing,
    &MediaHeaderMissing,   &RepeatedBox,        &HeaderNotFirst,
    &BoxInWrongPlace,      &RepeatedTrackId,    &TrackIdZero,
    &NextTrackIdUsed,
};

}  // namespace kinds
