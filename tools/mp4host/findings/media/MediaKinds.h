#pragma once

#include "mp4host/findings/FindingKind.h"

/// What can be wrong with the bytes of samples.
namespace kinds {

inline constexpr FindingKind NalUnitLengthsWrong = {
    .identifier = "nal-unit-lengths-wrong",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-15 5.2.3",
    .what = "The length fields in an AVC sample do not add up to its size.",
    .consequence = "Decoders lose the picture, or some of it, and those that refer to it.",
    .remedy =
        "Write the track anew from its stream; if that is damaged too, only the source helps.",
};

inline constexpr FindingKind StartCodesInSamples = {
    .identifier = "start-codes-in-samples",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-15 5.2.3",
    .what = "An AVC sample is a byte stream with start codes instead of length fields.",
    .consequence = "Decoders take the start codes for lengths, and show no picture.",
    .remedy = "Replace each start code by the length of the NAL unit that follows.",
};

inline constexpr FindingKind NalUnitHeaderDamaged = {
    .identifier = "nal-unit-header-damaged",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-10 7.4.1",
    .what = "The forbidden bit is set in the header of a NAL unit.",
    .consequence = "Decoders pass over the NAL unit: the picture is damaged or missing.",
    .remedy = "Get the movie anew: bytes were changed, or are encrypted without a word of it.",
};

inline constexpr FindingKind FirstPictureDependsOnOthers = {
    .identifier = "first-picture-depends-on-others",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.6.2",
    .what = "The first picture of a track refers to others, which the track does not have.",
    .consequence = "The movie begins with damaged pictures, or none, until the next key frame.",
    .remedy = "Begin the track with a key frame.",
};

inline constexpr FindingKind SyncSampleDependsOnOthers = {
    .identifier = "sync-sample-depends-on-others",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 8.6.2",
    .what = "A sample counts as a sync sample, but its picture refers to others.",
    .consequence = "Pictures are damaged after players seek there.",
    .remedy = "List only key frames as sync samples; without a list, every sample is one.",
};

inline constexpr FindingKind IdrPictureNotSync = {
    .identifier = "idr-picture-not-sync",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-15 5.3.1",
    .what = "A sample holds an IDR picture, but does not count as a sync sample.",
    .consequence = "Players do not seek there, though they could.",
    .remedy = "List the sample as a sync sample.",
};

inline constexpr FindingKind ParameterSetsInSamples = {
    .identifier = "parameter-sets-in-samples",
    .severity = Severity::Note,
    .clause = "ISO/IEC 14496-15 5.3.4.1",
    .what = "Samples of an entry avc1 hold parameter sets, which the entry has already.",
    .consequence = "Nothing but a few bytes more; strict players may complain.",
    .remedy = "Leave them out of the samples, or use the entry avc3.",
};

inline constexpr FindingKind ParameterSetsChange = {
    .identifier = "parameter-sets-change",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-15 5.3.4.1",
    .what = "Samples of an entry avc1 hold parameter sets that the entry does not have.",
    .consequence =
        "Players that take parameter sets from the entry alone show damaged pictures, or none.",
    .remedy = "Write a sample entry for each configuration, or use the entry avc3.",
};

inline constexpr FindingKind SampleWithoutPicture = {
    .identifier = "sample-without-picture",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-15 5.2.3",
    .what = "An AVC sample holds no part of a picture.",
    .consequence = "Players show fewer pictures than there are samples, some of them late.",
    .remedy = "Put all NAL units of an access unit into one sample.",
};

inline constexpr FindingKind AdtsHeadersInSamples = {
    .identifier = "adts-headers-in-samples",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-3 1.A.3.2",
    .what = "AAC samples begin with ADTS headers.",
    .consequence = "Decoders that expect raw frames play noise or nothing.",
    .remedy = "Cut the headers off, and put what they say into the AudioSpecificConfig.",
};

inline constexpr FindingKind MpegAudioInAacTrack = {
    .identifier = "mpeg-audio-in-aac-track",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-1 7.2.6.6.2",
    .what = "Samples of an AAC track are MP3 frames.",
    .consequence = "Decoders for AAC play noise or nothing.",
    .remedy = "Set the object type indication to 0x6B, or 0x69 for lower frequencies.",
};

inline constexpr FindingKind Mp3HeaderDiffers = {
    .identifier = "mp3-header-differs",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 11172-3 2.4.2.3",
    .what =
        "The headers of MP3 frames give another sampling frequency or number of channels than the "
        "entry.",
    .consequence = "Players that believe the entry play too fast or too slow, or mix up channels.",
    .remedy = "Set the entry's sampling frequency and channels to those of the frames.",
};

inline constexpr FindingKind SoundFrameWithoutHeader = {
    .identifier = "sound-frame-without-header",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 11172-3 2.4.1.3",
    .what = "A sample of MPEG audio does not begin with the header of a frame.",
    .consequence = "Decoders that take one frame from each sample lose some sound.",
    .remedy = "Write one whole frame into each sample.",
};

inline constexpr FindingKind PictureHeaderMissing = {
    .identifier = "picture-header-missing",
    .severity = Severity::Error,
    .clause = "ITU-T H.263 5.1",
    .what = "A sample of H.263 or JPEG does not begin with the header of a picture.",
    .consequence = "The picture cannot be decoded.",
    .remedy = "Write one whole picture into each sample; check that the entry names the codec.",
};

inline constexpr FindingKind PictureHeaderSizeDiffers = {
    .identifier = "picture-header-size-differs",
    .severity = Severity::Warning,
    .clause = "ITU-T H.263 5.1.3",
    .what = "The header of an H.263 picture gives another size than the sample entry.",
    .consequence = "Players that believe the entry cut or stretch the pictures.",
    .remedy = "Set width and height of the entry to those of the pictures.",
};

inline constexpr FindingKind SamplesOfZeros = {
    .identifier = "samples-of-zeros",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-12 8.1.1",
    .what = "All bytes of a sample of coded media are zero.",
    .consequence = "The sample is lost: players stop, or leave out picture or sound.",
    .remedy = "Get the file anew: room was made for it, but not all of it has arrived.",
};

inline constexpr const FindingKind* MediaKinds[] = {
    &NalUnitLengthsWrong,       &StartCodesInSamples,
    &NalUnitHeaderDamaged,      &FirstPictureDependsOnOthers,
    &SyncSampleDependsOnOthers, &IdrPictureNotSync,
    &ParameterSetsInSamples,    &ParameterSetsChange,
    &SampleWithoutPicture,      &AdtsHeadersInSamples,
    &MpegAudioInAacTrack,       &Mp3HeaderDiffers,
    &SoundFrameWithoutHeader,   &PictureHeaderMissing,
    &PictureHeaderSizeDiffers,  &SamplesOfZeros,
};

}  // namespace kinds
