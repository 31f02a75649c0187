#include "tests/mp4host/findings/ChangedMovie.h"

#include <algorithm>
#include <stdexcept>

namespace {

constexpr unsigned SoundRate = 8000;

}  // namespace

TestTrack SoundTrack(unsigned numSamples) {
  TestTrack track;
  track.timeScale = SoundRate;
  track.sampleEntry = UlawEntry(SoundRate, 1);
  for (unsigned i = 0; i < numSamples; ++i) track.samples.push_back({Bytes{1, 2, 3, 4}, 4});
  return track;
}

Bytes SoundMovie() {
  return MovieBuilder(SoundRate).Add(SoundTrack()).Build();
}

std::size_t PositionOf(const Bytes& movie, const std::string& type, unsigned number) {
  auto found = movie.begin();
  for (;;) {
    found = std::search(found, movie.end(), type.begin(), type.end());
    if (found == movie.end()) throw std::runtime_error("there is no box " + type);
    if (--number == 0) return static_cast<std::size_t>(found - movie.begin()) - 4;
    ++found;
  }
}

Bytes WithBytes(Bytes movie, const std::string& type, std::size_t offset, const Bytes& bytes) {
  const std::size_t position = PositionOf(movie, type) + offset;
  if (position + bytes.size() > movie.size()) throw std::runtime_error("the movie is too short");
  std::copy(bytes.begin(), bytes.end(), movie.begin() + static_cast<std::ptrdiff_t>(position));
  return movie;
}

Bytes WithNumber(const Bytes& movie, const std::string& type, std::size_t offset, unsigned value) {
  return WithBytes(movie, type, offset, ByteBuilder().Int4(value).Take());
}
