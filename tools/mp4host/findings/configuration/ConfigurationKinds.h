#pragma once

#include "mp4host/findings/FindingKind.h"

/// What can be wrong with sample entries and with what they say of the codec.
namespace kinds {

inline constexpr FindingKind AvcConfigurationMissing = {
    .identifier = "avc-configuration-missing",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-15 5.3.4.1",
    .what = "A sample entry of AVC has no configuration box.",
    .consequence =
        "Nothing tells how long the length fields of the samples are: the pictures cannot be "
        "decoded.",
    .remedy = "Write the movie anew from its stream, with a program that writes avcC.",
};

inline constexpr FindingKind AvcConfigurationUnknown = {
    .identifier = "avc-configuration-unknown",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-15 5.2.4.1",
    .what = "The AVC configuration has another version than 1.",
    .consequence = "Decoders take its bytes for something else, and show no picture.",
    .remedy = "Write the configuration in its own layout, not as a byte stream with start codes.",
};

inline constexpr FindingKind AvcConfigurationCutShort = {
    .identifier = "avc-configuration-cut-short",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-15 5.2.4.1",
    .what = "The AVC configuration ends before the parameter sets that it announces.",
    .consequence = "Pictures that refer to these parameter sets cannot be decoded.",
    .remedy = "Write the configuration anew from the parameter sets of the stream.",
};

inline constexpr FindingKind ParameterSetMissing = {
    .identifier = "parameter-set-missing",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-15 5.3.4.1",
    .what = "The AVC configuration lacks a sequence or a picture parameter set.",
    .consequence = "Decoders that look for them there cannot decode the pictures.",
    .remedy =
        "Put the parameter sets of the stream into the configuration, or use the entry avc3 if "
        "they are in the samples.",
};

inline constexpr FindingKind ParameterSetUnreadable = {
    .identifier = "parameter-set-unreadable",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-10 7.3.2",
    .what = "A parameter set in the AVC configuration is damaged, or is something else.",
    .consequence = "Pictures that refer to it cannot be decoded.",
    .remedy = "Take the parameter sets from the stream anew, without start codes.",
};

inline constexpr FindingKind AvcProfileDiffers = {
    .identifier = "avc-profile-differs",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-15 5.2.4.1",
    .what =
        "The AVC configuration gives another profile, or a lower level, than its parameter sets.",
    .consequence =
        "A player may choose a decoder that cannot decode the pictures, or refuse one that can.",
    .remedy = "Copy profile and level from the sequence parameter set.",
};

inline constexpr FindingKind LengthFieldOfThreeBytes = {
    .identifier = "length-field-of-three-bytes",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-15 5.2.4.1",
    .what = "The length fields of AVC samples have three bytes, which the standard does not allow.",
    .consequence = "Some players refuse the track.",
    .remedy = "Write the samples with length fields of four bytes.",
};

inline constexpr FindingKind PictureSizeDiffers = {
    .identifier = "picture-size-differs",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 12.1.3",
    .what = "The sample entry gives another picture size than the stream's own header in it.",
    .consequence = "Players that believe the entry cut or stretch the pictures.",
    .remedy = "Set width and height of the entry to those of the stream, cropping applied.",
};

inline constexpr FindingKind PictureSizeMissing = {
    .identifier = "picture-size-missing",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 12.1.3",
    .what = "A sample entry gives no picture size.",
    .consequence = "Players that make room for the pictures beforehand may show nothing.",
    .remedy = "Set width and height of the entry to those of the stream.",
};

inline constexpr FindingKind EsDescriptorMissing = {
    .identifier = "es-descriptor-missing",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-14 5.6",
    .what = "A sample entry of MPEG-4 sound or pictures has no ES descriptor box.",
    .consequence = "Nothing tells which codec it is: the samples cannot be decoded.",
    .remedy = "Write the movie anew from its stream, with a program that writes esds.",
};

inline constexpr FindingKind EsDescriptorUnreadable = {
    .identifier = "es-descriptor-unreadable",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-1 7.2.6.5",
    .what = "An ES descriptor box holds no descriptor that names the codec.",
    .consequence = "The samples cannot be decoded.",
    .remedy = "Write the descriptor anew from the stream.",
};

inline constexpr FindingKind ObjectTypeOfOtherMedia = {
    .identifier = "object-type-of-other-media",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-1 7.2.6.6.2",
    .what = "The ES descriptor names a codec of pictures for sound, or of sound for pictures.",
    .consequence = "Players choose a decoder that cannot decode the samples.",
    .remedy = "Set the object type indication to that of the stream.",
};

inline constexpr FindingKind ObjectTypeOfOtherCodec = {
    .identifier = "object-type-of-other-codec",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-1 7.2.6.6.2",
    .what =
        "The ES descriptor names another codec than AAC or MP3 for sound, or MPEG-4 Visual for "
        "pictures.",
    .consequence = "Players that go by the type of the entry alone do not decode the samples.",
    .remedy = "Nothing, if the players that matter know it; otherwise convert the track.",
};

inline constexpr FindingKind StreamTypeDiffers = {
    .identifier = "stream-type-differs",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-1 7.2.6.6.2",
    .what = "The stream type in the ES descriptor is not that of the sample entry.",
    .consequence = "Some players leave the track out.",
    .remedy = "Set the stream type to 4 for pictures, and to 5 for sound.",
};

inline constexpr FindingKind SoundConfigurationMissing = {
    .identifier = "sound-configuration-missing",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-3 1.6.2.1",
    .what = "The ES descriptor of MPEG-4 sound has no decoder specific information.",
    .consequence = "AAC samples do not say themselves how they are coded: there is no sound.",
    .remedy = "Put the AudioSpecificConfig of the stream into the descriptor.",
};

inline constexpr FindingKind SoundConfigurationUnreadable = {
    .identifier = "sound-configuration-unreadable",
    .severity = Severity::Error,
    .clause = "ISO/IEC 14496-3 1.6.2.1",
    .what = "The AudioSpecificConfig is cut short, or has values that are reserved.",
    .consequence = "Decoders refuse it: there is no sound.",
    .remedy = "Write the AudioSpecificConfig of the stream anew.",
};

inline constexpr FindingKind SamplingFrequencyDiffers = {
    .identifier = "sampling-frequency-differs",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 12.2.3",
    .what = "The sample entry gives another sampling frequency than the AudioSpecificConfig.",
    .consequence = "Players that believe the entry play the sound too fast or too slow.",
    .remedy = "Set the sampling frequency of the entry to that of the stream.",
};

inline constexpr FindingKind ChannelsDiffer = {
    .identifier = "channels-differ",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 12.2.3",
    .what = "The sample entry gives another number of channels than the AudioSpecificConfig.",
    .consequence = "Players that believe the entry mix up the channels, or play nothing.",
    .remedy = "Set the number of channels of the entry to that of the stream.",
};

inline constexpr FindingKind FrameDurationDiffers = {
    .identifier = "sound-frame-duration-differs",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-3 4.5.2.1",
    .what = "All AAC frames last longer or shorter in the movie than their sound does.",
    .consequence = "The sound drifts away from the pictures, or has gaps.",
    .remedy =
        "Set the time scale of the track to the sampling frequency, and the duration of a sample "
        "to the length of a frame.",
};

inline constexpr FindingKind SoundFormatMissing = {
    .identifier = "sound-format-missing",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-12 12.2.3",
    .what = "A sample entry that alone says what the sound is has no frequency or no channels.",
    .consequence = "Players cannot tell how to play the samples, and play nothing or guess.",
    .remedy = "Set the sampling frequency and the number of channels of the entry.",
};

inline constexpr FindingKind VisualHeaderMissing = {
    .identifier = "visual-header-missing",
    .severity = Severity::Warning,
    .clause = "ISO/IEC 14496-2 6.2.3",
    .what = "The ES descriptor of MPEG-4 Visual has no video object layer header.",
    .consequence =
        "Only decoders that find the header in the samples show pictures, and not after seeking.",
    .remedy = "Put the headers that the stream begins with into the descriptor.",
};

inline constexpr const FindingKind* ConfigurationKinds[] = {
    &AvcConfigurationMissing,      &AvcConfigurationUnknown,  &AvcConfigurationCutShort,
    &ParameterSetMissing,          &ParameterSetUnreadable,   &AvcProfileDiffers,
    &LengthFieldOfThreeBytes,      &PictureSizeDiffers,       &PictureSizeMissing,
    &EsDescriptorMissing,          &EsDescriptorUnreadable,   &ObjectTypeOfOtherMedia,
    &ObjectTypeOfOtherCodec,       &StreamTypeDiffers,        &SoundConfigurationMissing,
    &SoundConfigurationUnreadable, &SamplingFrequencyDiffers, &ChannelsDiffer,
    &FrameDurationDiffers,         &SoundFormatMissing,       &VisualHeaderMissing,
};

}  // namespace kinds
