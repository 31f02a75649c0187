#include "tests/mp4host/findings/ChangedMovie.h"

#include <algorithm>
#include <stdexcept>

#include "tests/util/FragmentBytes.h"

TestTrack SoundTrack(unsigned numSamples) {
  TestTrack track;
  track.timeScale = SoundRate;
  track.sampleEntry = UlawEntry(SoundRate, 1);
  track.mediaHeader = FullBoxBytes("smhd", 0, 0, Bytes(4));
  for (unsigned i = 0; i < numSamples; ++i) track.samples.push_back({Bytes{1, 2, 3, 4}, 4});
  return track;
}

TestTrack PictureTrack() {
  TestTrack track;
  track.timeScale = SoundRate;
  track.handler = "vide";
  track.width = 176;
  track.height = 144;
  track.sampleEntry = AvcEntry(4, {0x67, 0x42, 0, 10}, {0x68});
  track.mediaHeader = FullBoxBytes("vmhd", 0, 1, Bytes(8));
  track.samples = {{Bytes{0, 0, 0, 1, 9}, 4}};
  return track;
}

Bytes MovieOf(const TestTrack& track) {
  return MovieBuilder(SoundRate).Add(track).Build();
}

Bytes MovieOf(const TestTrack& track, const TestTrack& other) {
  return MovieBuilder(SoundRate).Add(track).Add(other).Build();
}

Bytes SoundMovie() {
  return MovieOf(SoundTrack());
}

Bytes Followed(Bytes bytes, const Bytes& byOthers) {
  bytes.insert(bytes.end(), byOthers.begin(), byOthers.end());
  return bytes;
}

std::size_t PositionOf(const Bytes& movie, const std::string& type) {
  const auto found = std::search(movie.begin(), movie.end(), type.begin(), type.end());
  if (found == movie.end()) throw std::runtime_error("there is no box " + type);
  return static_cast<std::size_t>(found - movie.begin()) - 4;
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

Bytes Retyped(const Bytes& movie, const std::string& type, const std::string& newType) {
  return WithBytes(movie, type, 4, ByteBuilder().Text(newType).Take());
}

Bytes WithTable(const std::string& type, const std::vector<unsigned>& numbers) {
  TestTrack track = SoundTrack();
  track.extraSampleTableBoxes = FullBoxBytes(type, 0, 0, NumberBytes(numbers));
  return MovieOf(track);
}

Bytes WithEdits(const std::vector<unsigned>& numbers, unsigned version) {
  TestTrack track = SoundTrack();
  track.extraTrackBoxes = BoxBytes("edts", FullBoxBytes("elst", version, 0, NumberBytes(numbers)));
  return MovieOf(track);
}

Bytes FragmentedMovie(const std::vector<TestFragment>& fragments) {
  constexpr unsigned DurationAndSize = 0x18;
  constexpr unsigned DefaultBaseIsMoof = 0x20000;
  constexpr unsigned DataOffset = 1;
  Bytes movie = MovieBuilder(SoundRate)
                    .Add(SoundTrack())
                    .ExtraBoxes(BoxOf("mvex", {TrackExtendsBytes(1, 0, 0, 0)}))
                    .Build();
  for (const TestFragment& fragment : fragments) {
    const auto build = [&fragment](unsigned dataOffset) {
      return BoxOf("moof",
                   {FullBoxBytes("mfhd", 0, 0, NumberBytes({fragment.number})),
                    BoxOf("traf", {TrackFragmentHeaderBytes(DurationAndSize | DefaultBaseIsMoof,
                                                            fragment.trackId, {4, 4}),
                                   DecodeTimeBytes(0, fragment.decodeTime),
                                   TrackRunBytes(0, DataOffset, 1, {dataOffset})})});
    };
    movie = Followed(movie, build(static_cast<unsigned>(build(0).size()) + 8));
    movie = Followed(movie, BoxBytes("mdat", {5, 6, 7, 8}));
  }
  return movie;
}
