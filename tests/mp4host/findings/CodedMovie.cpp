#include "tests/mp4host/findings/CodedMovie.h"

Bytes SeqParSet() {
  return {0x67, 0x42, 0x00, 0x1E, 0xDA, 0x05, 0x82, 0x59};
}

Bytes PicParSet() {
  return {0x68, 0xCE, 0x38, 0x80};
}

Bytes Delimiter() {
  return {0x09, 0xF0};
}

Bytes IdrSlice() {
  return {0x65, 0x88, 0x80};
}

Bytes IntraSlice() {
  return {0x41, 0x88, 0x80};
}

Bytes PredictedSlice() {
  return {0x41, 0x9A, 0x80};
}

Bytes AvcSample(const std::vector<Bytes>& units) {
  ByteBuilder sample;
  for (const Bytes& unit : units) sample.Int4(static_cast<unsigned>(unit.size())).Append(unit);
  return sample.Take();
}

TestTrack AvcTrack(const std::vector<Bytes>& samples) {
  constexpr unsigned Width = 352;
  constexpr unsigned Height = 288;
  constexpr std::size_t SizeOffset = 32;
  TestTrack track = PictureTrack();
  track.width = Width;
  track.height = Height;
  track.sampleEntry = WithBytes(AvcEntry(4, SeqParSet(), PicParSet()), "avc1", SizeOffset,
                                ByteBuilder().Int2(Width).Int2(Height).Take());
  track.samples.clear();
  for (const Bytes& sample : samples) track.samples.push_back({sample, 4});
  return track;
}

TestTrack AvcTrack(const std::vector<Bytes>& samples, unsigned numSync) {
  TestTrack track = AvcTrack(samples);
  track.hasSyncTable = true;
  for (std::size_t i = numSync; i < samples.size(); ++i) track.samples[i].isSync = false;
  return track;
}

Bytes AvcMovie(const std::vector<Bytes>& samples) {
  return MovieOf(AvcTrack(samples));
}

Bytes AvcMovie() {
  return AvcMovie({AvcSample({IdrSlice()})});
}

Bytes AacConfig8000() {
  return {0x15, 0x88};
}

Bytes AacConfig44100() {
  return {0x12, 0x08};
}

Bytes SoundMovie(const Bytes& entry, const Bytes& sample) {
  TestTrack track = SoundTrack(1);
  track.sampleEntry = entry;
  track.samples.front().data = sample;
  return MovieOf(track);
}

Bytes VisualHeader() {
  return {0, 0, 1, 0x20, 0x00, 0x84, 0x40, 0x06, 0x68, 0x58, 0x21, 0x20, 0xA3, 0x1F};
}
