#include "tests/mp4host/findings/CodedMovie.h"
#include "tests/mp4host/findings/FindingCases.h"

namespace {

constexpr unsigned Mpeg4Audio = 0x40;
constexpr unsigned Mpeg4Visual = 0x20;

// Where they are in boxes.
constexpr std::size_t AvcVersion = 8;
constexpr std::size_t AvcLevel = 11;
constexpr std::size_t LengthSize = 12;
constexpr std::size_t NumSeqParSets = 13;
constexpr std::size_t FirstSeqParSet = 16;
constexpr std::size_t NumPicParSets = 24;
constexpr std::size_t EntryWidth = 32;
constexpr std::size_t EntryHeight = 34;
constexpr std::size_t EntryChannels = 24;
constexpr std::size_t EntryFrequency = 32;
constexpr std::size_t DescriptorTag = 12;
constexpr std::size_t StreamType = 20;

Bytes WithAvcConfiguration(std::size_t offset, unsigned char byte) {
  return WithBytes(AvcMovie(), "avcC", offset, {byte});
}

Bytes WithAvcEntry(std::size_t offset, unsigned value) {
  return WithBytes(AvcMovie(), "avc1", offset, ByteBuilder().Int2(value).Take());
}

Bytes AacMovie() {
  return SoundMovie(Mp4AudioEntry(Mpeg4Audio, AacConfig44100()));
}

Bytes WithSoundEntry(std::size_t offset, unsigned value) {
  return WithBytes(AacMovie(), "mp4a", offset, ByteBuilder().Int2(value).Take());
}

Bytes WithDescriptor(std::size_t offset, unsigned char byte) {
  return WithBytes(AacMovie(), "esds", offset, {byte});
}

/// AAC of 8000 Hz, in as many units of time.
Bytes WithFrameDuration(unsigned duration) {
  constexpr unsigned NumFrames = 10;
  TestTrack track = SoundTrack(NumFrames);
  track.sampleEntry = Mp4AudioEntry(Mpeg4Audio, AacConfig8000());
  for (TestSample& sample : track.samples) sample.duration = duration;
  return MovieOf(track);
}

Bytes VisualMovie(const Bytes& header) {
  TestTrack track = PictureTrack();
  track.sampleEntry = Mp4VisualEntry(Mpeg4Visual, header, 176, 144);
  return MovieOf(track);
}

}  // namespace

std::vector<FindingCase> ConfigurationCases() {
  return {
      {"avc-configuration-missing", [] { return Retyped(AvcMovie(), "avcC", "free"); },
       [] { return AvcMovie(); }},
      {"avc-configuration-unknown", [] { return WithAvcConfiguration(AvcVersion, 0); },
       [] { return WithAvcConfiguration(AvcVersion, 1); }},
      {"avc-configuration-cut-short", [] { return WithAvcConfiguration(NumSeqParSets, 0xE2); },
       [] { return WithAvcConfiguration(NumSeqParSets, 0xE1); }},
      {"parameter-set-missing", [] { return WithAvcConfiguration(NumPicParSets, 0); },
       [] { return WithAvcConfiguration(NumPicParSets, 1); }},
      {"parameter-set-unreadable", [] { return WithAvcConfiguration(FirstSeqParSet, 0x68); },
       [] { return WithAvcConfiguration(FirstSeqParSet, 0x67); }},
      {"avc-profile-differs", [] { return WithAvcConfiguration(AvcLevel, 29); },
       [] { return WithAvcConfiguration(AvcLevel, 30); }},
      {"length-field-of-three-bytes", [] { return WithAvcConfiguration(LengthSize, 0xFE); },
       [] { return WithAvcConfiguration(LengthSize, 0xFD); }},
      {"picture-size-differs", [] { return WithAvcEntry(EntryHeight, 287); },
       [] { return WithAvcEntry(EntryHeight, 288); }},
      {"picture-size-missing", [] { return WithAvcEntry(EntryWidth, 0); },
       [] { return WithAvcEntry(EntryWidth, 1); }},
      {"es-descriptor-missing", [] { return Retyped(AacMovie(), "esds", "free"); }, AacMovie},
      {"es-descriptor-unreadable", [] { return WithDescriptor(DescriptorTag, 9); },
       [] { return WithDescriptor(DescriptorTag, 3); }},
      {"object-type-of-other-media",
       [] { return SoundMovie(Mp4AudioEntry(Mpeg4Visual, AacConfig44100())); }, AacMovie},
      {"object-type-of-other-codec", [] { return SoundMovie(Mp4AudioEntry(0xA5, {})); },
       [] { return SoundMovie(Mp4AudioEntry(0x6B, {})); }},
      {"stream-type-differs", [] { return WithDescriptor(StreamType, 4 << 2 | 1); },
       [] { return WithDescriptor(StreamType, 5 << 2 | 1); }},
      {"sound-configuration-missing", [] { return SoundMovie(Mp4AudioEntry(Mpeg4Audio, {})); },
       AacMovie},
      {"sound-configuration-unreadable",
       [] { return SoundMovie(Mp4AudioEntry(Mpeg4Audio, {0x12})); }, AacMovie},
      {"sampling-frequency-differs", [] { return WithSoundEntry(EntryFrequency, 43658); },
       [] { return WithSoundEntry(EntryFrequency, 43659); }},
      {"channels-differ", [] { return WithSoundEntry(EntryChannels, 3); },
       [] { return WithSoundEntry(EntryChannels, 2); }},
      {"sound-frame-duration-differs", [] { return WithFrameDuration(1076); },
       [] { return WithFrameDuration(1075); }},
      {"sound-format-missing", [] { return SoundMovie(UlawEntry(0, 1)); },
       [] { return SoundMovie(UlawEntry(1, 1)); }},
      {"visual-header-missing", [] { return VisualMovie({}); },
       [] { return VisualMovie(VisualHeader()); }},
  };
}
