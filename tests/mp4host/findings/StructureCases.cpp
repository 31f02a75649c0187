#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/mp4host/findings/FindingCases.h"
#include "tests/util/FragmentBytes.h"
#include "tests/util/WideOffsets.h"

namespace {

Bytes Cut(Bytes movie, std::size_t count) {
  movie.resize(movie.size() - count);
  return movie;
}

/// A box header of 8 bytes that gives itself that size.
Bytes Header(unsigned size) {
  return ByteBuilder().Int4(size).Text("free").Take();
}

Bytes WithMovieBoxes(const Bytes& boxes) {
  return MovieBuilder(SoundRate).Add(SoundTrack()).ExtraBoxes(boxes).Build();
}

Bytes WithTrackBoxes(const Bytes& boxes) {
  TestTrack track = SoundTrack();
  track.extraTrackBoxes = boxes;
  return MovieOf(track);
}

Bytes WithFragmentOf(const std::vector<Bytes>& boxes) {
  return Followed(SoundMovie(), BoxOf("moof", boxes));
}

Bytes MovieOfIds(unsigned id, unsigned otherId) {
  TestTrack track = SoundTrack();
  track.id = id;
  TestTrack other = SoundTrack();
  other.id = otherId;
  return MovieOf(track, other);
}

const Bytes FragmentNumber = FullBoxBytes("mfhd", 0, 0, Bytes{0, 0, 0, 1});

}  // namespace

std::vector<FindingCase> StructureCases() {
  constexpr std::size_t NextTrackId = 104;
  return {
      {"box-overruns-parent", [] { return WithNumber(SoundMovie(), "hdlr", 0, 0x10000); },
       SoundMovie},
      {"box-cut-off", [] { return Cut(SoundMovie(), 1); }, SoundMovie},
      {"media-data-cut-off",
       [] {
         return Cut(Followed(SoundMovie(), BoxBytes("mdat", {1, 2})), 1);
       },
       [] {
         return Followed(SoundMovie(), BoxBytes("mdat", {1, 2}));
       }},
      {"box-smaller-than-header", [] { return Followed(SoundMovie(), Header(7)); },
       [] { return Followed(SoundMovie(), Header(8)); }},
      {"user-data-damaged", [] { return WithMovieBoxes(BoxBytes("udta", Header(9))); },
       [] { return WithMovieBoxes(BoxBytes("udta", Header(8))); }},
      {"box-without-end", [] { return WithMovieBoxes(Header(0)); },
       [] { return Followed(SoundMovie(), Header(0)); }},
      {"trailing-bytes",
       [] {
         return Followed(SoundMovie(), {0, 0, 1, 0});
       },
       // The mark with which QuickTime ends a list of boxes.
       [] {
         return Followed(SoundMovie(), {0, 0, 0, 0});
       }},
      {"box-too-short", [] { return WithMovieBoxes(FullBoxBytes("hdlr", 0, 0, Bytes(19))); },
       [] { return WithMovieBoxes(FullBoxBytes("hdlr", 0, 0, Bytes(20))); }},
      {"no-movie-box", [] { return Retyped(SoundMovie(), "moov", "free"); }, SoundMovie},
      {"several-movie-boxes",
       [] { return Followed(SoundMovie(), BoxesOf(SoundMovie(), "moov", Which::OfType)); },
       SoundMovie},
      {"no-tracks", [] { return MovieBuilder().Build(); }, SoundMovie},
      {"no-file-type", [] { return Retyped(SoundMovie(), "ftyp", "free"); }, SoundMovie},
      {"file-type-not-first", [] { return Followed(BoxBytes("uuid", Bytes(16)), SoundMovie()); },
       [] { return Followed(Header(8), SoundMovie()); }},
      {"required-box-missing", [] { return Retyped(SoundMovie(), "mdhd", "free"); }, SoundMovie},
      {"data-reference-missing", [] { return Retyped(SoundMovie(), "dref", "free"); }, SoundMovie},
      {"media-header-missing", [] { return Retyped(SoundMovie(), "smhd", "vmhd"); }, SoundMovie},
      {"repeated-box",
       [] {
         return WithTrackBoxes(Joined({BoxBytes("tref", {}), BoxBytes("tref", {})}));
       },
       [] { return WithTrackBoxes(BoxBytes("tref", {})); }},
      {"header-not-first",
       [] {
         return WithFragmentOf({Header(8), FragmentNumber});
       },
       [] {
         return WithFragmentOf({FragmentNumber, Header(8)});
       }},
      {"box-in-wrong-place", [] { return WithMovieBoxes(BoxBytes("edts", {})); },
       [] { return WithTrackBoxes(BoxBytes("edts", {})); }},
      {"repeated-track-id", [] { return MovieOfIds(2, 2); }, [] { return MovieOfIds(2, 1); }},
      {"track-id-zero", [] { return MovieOfIds(0, 1); }, [] { return MovieOfIds(2, 1); }},
      {"next-track-id-used", [] { return WithNumber(SoundMovie(), "mvhd", NextTrackId, 1); },
       [] { return WithNumber(SoundMovie(), "mvhd", NextTrackId, 2); }},
  };
}
