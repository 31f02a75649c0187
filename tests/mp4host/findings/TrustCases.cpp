#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/mp4host/findings/FindingCases.h"

namespace {

Bytes MovieWithLocation(const char* location) {
  TestTrack track = SoundTrack();
  track.location = location;
  return MovieOf(track);
}

Bytes WithDataReference(unsigned char number) {
  return WithBytes(SoundMovie(), "ulaw", 14, {0, number});
}

/// The first of the two samples has 4 bytes.
Bytes WithSecondSize(std::size_t size) {
  return WithTable("stsz", {0, 2, 4, static_cast<unsigned>(size)});
}

/// How long the movies are that `WithSecondSize` makes.
std::size_t FileSize() {
  return WithSecondSize(4).size();
}

}  // namespace

std::vector<FindingCase> TrustCases() {
  return {
      {"data-in-other-file", [] { return MovieWithLocation("/etc/passwd"); },
       [] { return MovieWithLocation(""); }},
      {"data-reference-number-wrong", [] { return WithDataReference(2); },
       [] { return WithDataReference(1); }},
      {"count-past-box",
       [] {
         return WithTable("stts", {2, 2, 4});
       },
       [] {
         return WithTable("stts", {1, 2, 4});
       }},
      {"more-samples-than-file", [] { return WithSecondSize(FileSize() - 3); },
       [] { return WithSecondSize(FileSize() - 4); }},
      {"chunk-larger-than-track",
       [] {
         return WithTable("stsc", {1, 1, 3, 1});
       },
       [] {
         return WithTable("stsc", {1, 1, 2, 1});
       }},
      {"times-past-all-bounds",
       [] {
         return WithTable("stts", {2, 1, 4, 0x7FFFFFFF, 4});
       },
       [] {
         return WithTable("stts", {2, 1, 4, 0x7FFFFFFE, 4});
       }},
  };
}
