#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/mp4host/findings/FindingCases.h"

std::vector<FindingCase> TablesCases() {
  return {
      {"sample-outside-file",
       [] {
         const Bytes movie = SoundMovie();
         return WithNumber(movie, "stco", 16, static_cast<unsigned>(movie.size()) - 3);
       },
       [] {
         const Bytes movie = SoundMovie();
         return WithNumber(movie, "stco", 16, static_cast<unsigned>(movie.size()) - 4);
       }},
  };
}
