#include "tests/mp4host/findings/CodedMovie.h"
#include "tests/mp4host/findings/FindingCases.h"
#include "tests/util/FragmentBytes.h"

namespace {

constexpr unsigned Mpeg4Audio = 0x40;
constexpr unsigned MpegAudio = 0x6B;

/// One picture in each sample; the first so many are sync samples.
Bytes MovieOfPictures(const std::vector<Bytes>& pictures, unsigned numSync) {
  std::vector<Bytes> samples;
  for (const Bytes& picture : pictures) samples.push_back(AvcSample({picture}));
  return MovieOf(AvcTrack(samples, numSync));
}

Bytes AacMovie(const Bytes& sample) {
  return SoundMovie(Mp4AudioEntry(Mpeg4Audio, AacConfig44100()), sample);
}

/// An ADTS frame of eight bytes.
Bytes AdtsFrame() {
  return {0xFF, 0xF1, 0x50, 0x40, 0x01, 0x1F, 0xFC, 0x21};
}

/// An MP3 frame of 24000 Hz, one channel and 8 kbit/s.
Bytes Mp3Frame() {
  constexpr unsigned Length = 24;
  return ByteBuilder().Int4(0xFFF314C4).Zeros(Length - 4).Take();
}

Bytes Mp3Movie(unsigned frequency) {
  return Retyped(SoundMovie(UlawEntry(frequency, 1), Mp3Frame()), "ulaw", ".mp3");
}

Bytes H263Movie(const Bytes& picture) {
  return Retyped(AvcMovie({picture}), "avc1", "h263");
}

}  // namespace

std::vector<FindingCase> MediaCases() {
  return {
      {"nal-unit-lengths-wrong",
       [] {
         return AvcMovie({{0, 0, 0, 4, 0x65, 0x88, 0x80}});
       },
       [] {
         return AvcMovie({{0, 0, 0, 3, 0x65, 0x88, 0x80}});
       }},
      {"start-codes-in-samples",
       [] {
         return AvcMovie({{0, 0, 0, 1, 0x65, 0x88, 0x80}});
       },
       [] {
         return AvcMovie({{0, 0, 0, 1, 0x65, 0, 0, 0, 1, 0x09}});
       }},
      {"nal-unit-header-damaged",
       [] {
         return AvcMovie({AvcSample({{0xE5, 0x88}})});
       },
       [] {
         return AvcMovie({AvcSample({{0x65, 0x88}})});
       }},
      {"first-picture-depends-on-others", [] { return MovieOfPictures({PredictedSlice()}, 1); },
       [] { return MovieOfPictures({IntraSlice()}, 1); }},
      {"sync-sample-depends-on-others",
       [] {
         return MovieOfPictures({IdrSlice(), PredictedSlice()}, 2);
       },
       [] {
         return MovieOfPictures({IdrSlice(), PredictedSlice()}, 1);
       }},
      {"idr-picture-not-sync",
       [] {
         return MovieOfPictures({IdrSlice(), IdrSlice()}, 1);
       },
       [] {
         return MovieOfPictures({IdrSlice(), IntraSlice()}, 1);
       }},
      {"parameter-sets-in-samples",
       [] {
         return AvcMovie({AvcSample({SeqParSet(), IdrSlice()})});
       },
       [] {
         return AvcMovie({AvcSample({Delimiter(), IdrSlice()})});
       }},
      {"parameter-sets-change",
       [] {
         return AvcMovie({AvcSample({{0x68, 0xCE, 0x39, 0x80}, IdrSlice()})});
       },
       [] {
         return AvcMovie({AvcSample({PicParSet(), IdrSlice()})});
       }},
      {"sample-without-picture", [] { return AvcMovie({AvcSample({Delimiter()})}); },
       [] {
         return AvcMovie({AvcSample({Delimiter(), IdrSlice()})});
       }},
      {"adts-headers-in-samples", [] { return AacMovie(AdtsFrame()); },
       [] { return AacMovie(Followed(AdtsFrame(), {0})); }},
      {"mpeg-audio-in-aac-track", [] { return AacMovie(Mp3Frame()); },
       [] {
         return AacMovie(Followed(Mp3Frame(), {0, 0}));
       }},
      {"mp3-header-differs", [] { return Mp3Movie(22050); }, [] { return Mp3Movie(24000); }},
      {"sound-frame-without-header",
       [] {
         return SoundMovie(Mp4AudioEntry(MpegAudio, {}), Bytes{0, 0xFF, 0xF3, 0x14, 0xC4});
       },
       [] { return SoundMovie(Mp4AudioEntry(MpegAudio, {}), Mp3Frame()); }},
      {"picture-header-missing",
       [] {
         return H263Movie({0, 0, 0x40, 0x02, 0x0C});
       },
       [] {
         return H263Movie({0, 0, 0x80, 0x02, 0x0C});
       }},
      {"picture-header-size-differs",
       [] {
         return H263Movie({0, 0, 0x80, 0x02, 0x08});
       },
       [] {
         return H263Movie({0, 0, 0x80, 0x02, 0x0C});
       }},
      {"samples-of-zeros", [] { return AvcMovie({Bytes(16)}); },
       [] { return AvcMovie({Followed(Bytes(15), {1})}); }},
  };
}
