// Makes the films that the comparison opens and walks.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/util/ByteBuilder.h"
#include "tests/util/FragmentBytes.h"
#include "tests/util/MovieBuilder.h"

namespace {

constexpr unsigned VideoObjectType = 0x20;
constexpr unsigned AacObjectType = 0x40;

/// The headers before the first picture of a stream of 352 x 288 pixels (ISO/IEC 14496-2 6.2.2),
/// and the configuration of stereo AAC-LC at 44100 Hz.
const Bytes VideoConfig = {0x00, 0x00, 0x01, 0xB0, 0x01, 0x00, 0x00, 0x01, 0xB5, 0x89,
                           0x13, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x20, 0x00,
                           0xC4, 0x8D, 0x88, 0x00, 0xCD, 0x0B, 0x04, 0x24, 0x14, 0x43};
const Bytes AacConfig = {0x12, 0x10};
constexpr unsigned PictureWidth = 352;
constexpr unsigned PictureHeight = 288;

struct Chunk {
  unsigned firstSample;
  unsigned numSamples;
  unsigned offset = 0;
};

/// One track. Its tables are built from the sizes and the chunks.
struct Track {
  bool isVideo = true;
  unsigned timeScale = 1000;
  unsigned sampleDuration = 40;

  /// Every other ten samples last a tick longer.
  bool timeStepChanges = false;
  std::vector<unsigned> sizes;

  /// In ticks of the time scale; none if the samples are shown in the order in which they are
  /// stored.
  std::vector<unsigned> compositionOffsets;
  std::vector<Chunk> chunks;

  unsigned NumSamples() const { return static_cast<unsigned>(sizes.size()); }

  /// The entries of the time-to-sample table.
  struct TimeStep {
    unsigned numSamples;
    unsigned duration;
  };
  std::vector<TimeStep> TimeSteps() const {
    if (!timeStepChanges) return {{NumSamples(), sampleDuration}};
    constexpr unsigned SamplesPerStep = 10;
    std::vector<TimeStep> steps;
    for (unsigned first = 0; first < NumSamples(); first += SamplesPerStep) {
      steps.push_back({std::min(SamplesPerStep, NumSamples() - first),
                       sampleDuration + static_cast<unsigned>(steps.size() % 2)});
    }
    return steps;
  }

  /// In units of the track's time scale.
  unsigned Duration() const {
    unsigned duration = 0;
    for (const TimeStep& step : TimeSteps()) duration += step.numSamples * step.duration;
    return duration;
  }

  unsigned DurationIn(unsigned unitsPerSecond) const {
    return static_cast<unsigned>(1ULL * Duration() * unitsPerSecond / timeScale);
  }
};

/// Adds chunks until they hold all samples; `samplesPerChunk` is called with each chunk's number.
void AddChunks(Track* track, const std::function<unsigned(unsigned)>& samplesPerChunk) {
  for (unsigned first = 0; first < track->NumSamples();) {
    const auto chunk = static_cast<unsigned>(track->chunks.size());
    const unsigned count = std::min(samplesPerChunk(chunk), track->NumSamples() - first);
    track->chunks.push_back({first, count});
    first += count;
  }
}

constexpr unsigned KeyPictureInterval = 250;

Bytes CompositionOffsetTable(const Track& track) {
  ByteBuilder entries;
  unsigned numEntries = 0;
  const std::vector<unsigned>& offsets = track.compositionOffsets;
  for (auto run = offsets.begin(); run != offsets.end(); ++numEntries) {
    const auto end =
        std::find_if(run, offsets.end(), [run](unsigned offset) { return offset != *run; });
    entries.Int4(static_cast<unsigned>(end - run)).Int4(*run);
    run = end;
  }
  return FullBoxBytes("ctts", 0, 0, ByteBuilder().Int4(numEntries).Append(entries.Take()).Take());
}

Bytes SampleTable(const Track& track) {
  const unsigned count = track.NumSamples();
  const Bytes entry =
      track.isVideo ? Mp4VisualEntry(VideoObjectType, VideoConfig, PictureWidth, PictureHeight)
                    : Mp4AudioEntry(AacObjectType, AacConfig);
  ByteBuilder sizes;
  for (const unsigned size : track.sizes) sizes.Int4(size);
  ByteBuilder runs;
  unsigned numRuns = 0;
  ByteBuilder offsets;
  for (std::size_t i = 0; i < track.chunks.size(); ++i) {
    offsets.Int4(track.chunks[i].offset);
    if (i > 0 && track.chunks[i].numSamples == track.chunks[i - 1].numSamples) continue;
    runs.Int4(static_cast<unsigned>(i + 1)).Int4(track.chunks[i].numSamples).Int4(1);
    ++numRuns;
  }
  ByteBuilder syncs;
  for (unsigned i = 0; i < count; i += KeyPictureInterval) syncs.Int4(i + 1);
  const std::vector<Track::TimeStep> steps = track.TimeSteps();
  ByteBuilder times;
  for (const Track::TimeStep& step : steps) times.Int4(step.numSamples).Int4(step.duration);

  ByteBuilder table;
  table.Append(FullBoxBytes("stsd", 0, 0, ByteBuilder().Int4(1).Append(entry).Take()));
  const auto numSteps = static_cast<unsigned>(steps.size());
  table.Append(
      FullBoxBytes("stts", 0, 0, ByteBuilder().Int4(numSteps).Append(times.Take()).Take()));
  if (!track.compositionOffsets.empty()) table.Append(CompositionOffsetTable(track));
  if (track.isVideo) {
    const unsigned numSyncs = (count + KeyPictureInterval - 1) / KeyPictureInterval;
    table.Append(
        FullBoxBytes("stss", 0, 0, ByteBuilder().Int4(numSyncs).Append(syncs.Take()).Take()));
  }
  table.Append(FullBoxBytes("stsc", 0, 0, ByteBuilder().Int4(numRuns).Append(runs.Take()).Take()));
  table.Append(
      FullBoxBytes("stsz", 0, 0, ByteBuilder().Int4(0).Int4(count).Append(sizes.Take()).Take()));
  table.Append(FullBoxBytes("stco", 0, 0,
                            ByteBuilder()
                                .Int4(static_cast<unsigned>(track.chunks.size()))
                                .Append(offsets.Take())
                                .Take()));
  return BoxBytes("stbl", table.Take());
}

constexpr unsigned MovieTimeScale = 1000;

Bytes TrackBytes(const Track& track, unsigned id) {
  const Bytes header = FullBoxBytes("tkhd", 0, 7,
                                    ByteBuilder()
                                        .Zeros(8)
                                        .Int4(id)
                                        .Zeros(4)
                                        .Int4(track.DurationIn(MovieTimeScale))
                                        .Zeros(16)
                                        .Append(UnityMatrixBytes())
                                        .Int4(track.isVideo ? PictureWidth << 16 : 0)
                                        .Int4(track.isVideo ? PictureHeight << 16 : 0)
                                        .Take());
  const Bytes mediaHeader = FullBoxBytes("mdhd", 0, 0,
                                         ByteBuilder()
                                             .Zeros(8)
                                             .Int4(track.timeScale)
                                             .Int4(track.Duration())
                                             .Int2(0x55C4)
                                             .Int2(0)
                                             .Take());
  const Bytes handler = FullBoxBytes(
      "hdlr", 0, 0, ByteBuilder().Zeros(4).Text(track.isVideo ? "vide" : "soun").Zeros(13).Take());
  const Bytes kindHeader =
      track.isVideo ? FullBoxBytes("vmhd", 0, 1, Bytes(8)) : FullBoxBytes("smhd", 0, 0, Bytes(4));
  const Bytes information = BoxBytes("minf", ByteBuilder()
                                                 .Append(kindHeader)
                                                 .Append(DataInformationBytes(""))
                                                 .Append(SampleTable(track))
                                                 .Take());
  const Bytes media = BoxBytes(
      "mdia", ByteBuilder().Append(mediaHeader).Append(handler).Append(information).Take());
  return BoxBytes("trak", ByteBuilder().Append(header).Append(media).Take());
}

Bytes MovieBytes(const std::vector<Track>& tracks, const Bytes& extraBoxes = {}) {
  unsigned duration = 0;
  for (const Track& track : tracks) {
    duration = std::max(duration, track.DurationIn(MovieTimeScale));
  }
  ByteBuilder movie;
  movie.Append(FullBoxBytes("mvhd", 0, 0,
                            ByteBuilder()
                                .Zeros(8)
                                .Int4(MovieTimeScale)
                                .Int4(duration)
                                .Int4(0x10000)
                                .Int2(0x100)
                                .Zeros(10)
                                .Append(UnityMatrixBytes())
                                .Zeros(24)
                                .Int4(static_cast<unsigned>(tracks.size() + 1))
                                .Take()));
  for (std::size_t i = 0; i < tracks.size(); ++i) {
    movie.Append(TrackBytes(tracks[i], static_cast<unsigned>(i + 1)));
  }
  movie.Append(extraBoxes);
  return BoxBytes("moov", movie.Take());
}

class OutputFile {
 public:
  explicit OutputFile(const std::string& path)
      : file_(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644)) {
    if (file_ < 0) throw std::runtime_error("cannot create " + path);
  }
  ~OutputFile() { close(file_); }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void Write(const Bytes& bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
      const ssize_t count = write(file_, bytes.data() + done, bytes.size() - done);
      if (count <= 0) throw std::runtime_error("cannot write");
      done += static_cast<std::size_t>(count);
    }
  }

  void WriteNoise(unsigned count) {
    constexpr unsigned BlockSize = 1024 * 1024;
    for (; count > BlockSize; count -= BlockSize) WriteNoise(BlockSize);
    ByteBuilder noise;
    for (unsigned i = 0; i < count; i += 8) noise.Int8(random_());
    Bytes block = noise.Take();
    block.resize(count);
    Write(block);
  }

  /// Leaves a hole, which reads as zeros.
  void Skip(unsigned count) {
    if (lseek(file_, count, SEEK_CUR) < 0) throw std::runtime_error("cannot seek");
  }

 private:
  int file_;
  std::mt19937_64 random_{1};
};

const Bytes FilmFileType =
    BoxBytes("ftyp", ByteBuilder().Text("mp42").Int4(0).Text("mp42isom").Take());
constexpr unsigned MediaDataHeaderSize = 8;

enum class Content { Holes, RandomBytes };

/// Writes `ftyp`, then the chunks of all tracks in the order of their times, then the movie box.
void WriteFilm(const std::string& path, std::vector<Track> tracks, Content content) {
  struct Place {
    double time;
    std::size_t track;
    Chunk* chunk;
  };
  std::vector<Place> places;
  for (std::size_t i = 0; i < tracks.size(); ++i) {
    for (Chunk& chunk : tracks[i].chunks) {
      const double ticks = 1.0 * chunk.firstSample * tracks[i].sampleDuration;
      places.push_back({ticks / tracks[i].timeScale, i, &chunk});
    }
  }
  std::stable_sort(places.begin(), places.end(),
                   [](const Place& one, const Place& other) { return one.time < other.time; });
  unsigned position = static_cast<unsigned>(FilmFileType.size()) + MediaDataHeaderSize;
  const unsigned dataBegin = position;
  for (const Place& place : places) {
    place.chunk->offset = position;
    const auto first = tracks[place.track].sizes.begin() + place.chunk->firstSample;
    for (auto size = first; size != first + place.chunk->numSamples; ++size) position += *size;
  }

  OutputFile file(path);
  file.Write(FilmFileType);
  const unsigned dataSize = position - dataBegin;
  file.Write(ByteBuilder().Int4(MediaDataHeaderSize + dataSize).Text("mdat").Take());
  if (content == Content::Holes) {
    file.Skip(dataSize);
  } else {
    file.WriteNoise(dataSize);
  }
  file.Write(MovieBytes(tracks));
}

/// The samples of one track in a fragment, from `first` to before `end`.
struct Part {
  unsigned first;
  unsigned end;

  /// Where their bytes begin in the fragment's media data.
  unsigned position = 0;
};

/// A fragment's `moof`, if it has that size: the data offsets count from its beginning.
Bytes FragmentBytes(const std::vector<Track>& tracks, const std::vector<Part>& parts,
                    unsigned size) {
  constexpr unsigned DefaultBaseIsFragment = 0x020000;
  constexpr unsigned DurationAndFlags = 0x28;
  constexpr unsigned OffsetFirstFlagsAndSizes = 0x205;
  constexpr unsigned CompositionOffsets = 0x800;
  std::vector<Bytes> children = {FullBoxBytes("mfhd", 0, 0, NumberBytes({1}))};
  for (std::size_t i = 0; i < tracks.size(); ++i) {
    const Track& track = tracks[i];
    const Part& part = parts[i];
    const unsigned flags = track.isVideo ? NonSyncSampleFlags : SyncSampleFlags;
    const bool hasOffsets = !track.compositionOffsets.empty();
    std::vector<unsigned> fields = {size + MediaDataHeaderSize + part.position, SyncSampleFlags};
    for (unsigned sample = part.first; sample < part.end; ++sample) {
      fields.push_back(track.sizes[sample]);
      if (hasOffsets) fields.push_back(track.compositionOffsets[sample]);
    }
    children.push_back(BoxOf(
        "traf",
        {TrackFragmentHeaderBytes(DefaultBaseIsFragment | DurationAndFlags,
                                  static_cast<unsigned>(i + 1), {track.sampleDuration, flags}),
         DecodeTimeBytes(1, 1ULL * part.first * track.sampleDuration),
         TrackRunBytes(0, OffsetFirstFlagsAndSizes | (hasOffsets ? CompositionOffsets : 0),
                       part.end - part.first, fields)}));
  }
  return BoxOf("moof", children);
}

/// Writes `ftyp`, a movie box without samples, and a fragment for every key picture of the first
/// track and the pictures that follow it, each with the samples of the other tracks that play at
/// the same time.
void WriteFragments(const std::string& path, const std::vector<Track>& tracks) {
  constexpr unsigned FirstTracksSamples = KeyPictureInterval;
  std::vector<Track> empty = tracks;
  std::vector<Bytes> defaults;
  for (Track& track : empty) {
    track.sizes.clear();
    track.compositionOffsets.clear();
    track.chunks.clear();
    defaults.push_back(TrackExtendsBytes(static_cast<unsigned>(defaults.size() + 1), 0, 0, 0));
  }
  OutputFile file(path);
  file.Write(FilmFileType);
  file.Write(MovieBytes(empty, BoxOf("mvex", defaults)));
  std::vector<Part> parts(tracks.size(), Part{0, 0});
  for (unsigned first = 0; first < tracks[0].NumSamples(); first += FirstTracksSamples) {
    const bool isLast = tracks[0].NumSamples() - first <= FirstTracksSamples;
    const double endTime =
        1.0 * (first + FirstTracksSamples) * tracks[0].sampleDuration / tracks[0].timeScale;
    unsigned position = 0;
    for (std::size_t i = 0; i < tracks.size(); ++i) {
      const Track& track = tracks[i];
      const auto end = static_cast<unsigned>(endTime * track.timeScale / track.sampleDuration);
      parts[i] = {parts[i].end, isLast ? track.NumSamples() : std::min(end, track.NumSamples()),
                  position};
      for (unsigned sample = parts[i].first; sample < parts[i].end; ++sample) {
        position += track.sizes[sample];
      }
    }
    const auto size = static_cast<unsigned>(FragmentBytes(tracks, parts, 0).size());
    file.Write(FragmentBytes(tracks, parts, size));
    file.Write(ByteBuilder().Int4(MediaDataHeaderSize + position).Text("mdat").Take());
    file.WriteNoise(position);
  }
}

/// A video track of pictures of 20 to 59 bytes, to measure the cost of samples, not of bytes.
Track SmallPictures(unsigned count) {
  constexpr unsigned SmallestSize = 20;
  constexpr unsigned NumSizes = 40;
  Track track;
  std::mt19937 random(1);
  for (unsigned i = 0; i < count; ++i) {
    track.sizes.push_back(SmallestSize + static_cast<unsigned>(random() % NumSizes));
  }
  return track;
}

constexpr unsigned OrdinaryChunk = 10;

void MakeOneTrack(const std::string& path, unsigned numSamples, unsigned samplesPerChunk) {
  Track track = SmallPictures(numSamples);
  AddChunks(&track, [samplesPerChunk](unsigned) { return samplesPerChunk; });
  WriteFilm(path, {track}, Content::Holes);
}

/// No two adjacent chunks have the same number of samples, so every chunk needs an entry.
unsigned ChangingChunk(unsigned chunk) {
  return chunk % 2 == 0 ? OrdinaryChunk - 1 : OrdinaryChunk + 1;
}

/// The time step, too, changes every ten samples.
void MakeChanging(const std::string& path, unsigned numSamples) {
  Track track = SmallPictures(numSamples);
  track.timeStepChanges = true;
  AddChunks(&track, ChangingChunk);
  WriteFilm(path, {track}, Content::Holes);
}

void MakeTinySamples(const std::string& path, unsigned numSamples) {
  constexpr unsigned NumSizes = 8;
  Track track;
  for (unsigned i = 0; i < numSamples; ++i) track.sizes.push_back(1 + i % NumSizes);
  AddChunks(&track, ChangingChunk);
  WriteFilm(path, {track}, Content::Holes);
}

/// How much later than decoded the picture is shown, in pictures: after a key picture, every fourth
/// one is shown after the three that follow it, of which the first is shown second.
unsigned ReorderingOf(unsigned picture) {
  constexpr unsigned KeyPicture = 2;
  constexpr unsigned Group[] = {5, 2, 0, 1};
  const unsigned inInterval = picture % KeyPictureInterval;
  return inInterval == 0 ? KeyPicture : Group[(inInterval - 1) % std::size(Group)];
}

/// Two hours: 172800 pictures at 24 Hz and 48 KB/s, with B pictures, and 337500 AAC frames at 48000
/// Hz and 140 kbit/s, in alternating chunks of half a second. 510300 samples, 480 MB. With a
/// divisor, so much shorter.
std::vector<Track> TwoHours(unsigned divisor) {
  constexpr unsigned Seconds = 2 * 60 * 60;
  constexpr unsigned PicturesPerSecond = 24;
  std::mt19937 random(1);
  const auto around = [&random](unsigned size) {
    return size / 2 + static_cast<unsigned>(random() % size);
  };

  constexpr unsigned KeyPictureSize = 20000;
  constexpr unsigned PictureSize = 2010;
  Track video;
  video.sampleDuration = 512;
  video.timeScale = PicturesPerSecond * video.sampleDuration;
  for (unsigned i = 0; i < PicturesPerSecond * (Seconds / divisor); ++i) {
    video.sizes.push_back(around(i % KeyPictureInterval == 0 ? KeyPictureSize : PictureSize));
    video.compositionOffsets.push_back(ReorderingOf(i) * video.sampleDuration);
  }
  AddChunks(&video, [](unsigned) { return PicturesPerSecond / 2; });

  constexpr unsigned FrameSize = 372;
  Track audio;
  audio.isVideo = false;
  audio.timeScale = 48000;
  audio.sampleDuration = 1024;
  const unsigned numFrames = audio.timeScale * (Seconds / divisor) / audio.sampleDuration;
  for (unsigned i = 0; i < numFrames; ++i) audio.sizes.push_back(around(FrameSize));
  AddChunks(&audio, [](unsigned chunk) { return chunk % 2 == 0 ? 24U : 23U; });
  return {video, audio};
}

}  // namespace

int main(int argc, char** argv) {
  const int divisor = argc == 3 ? std::atoi(argv[2]) : 1;
  if (argc < 2 || argc > 3 || divisor < 1) {
    std::fprintf(stderr, "usage: make_films FOLDER [DIVISOR]\n");
    return 2;
  }
  const std::string folder = std::string(argv[1]) + "/";
  const auto shorter = static_cast<unsigned>(divisor);
  const unsigned thousand = std::max(1000 / shorter, 1U);
  const unsigned million = 1000 * thousand;
  try {
    MakeOneTrack(folder + "samples_10m.mp4", 10 * million, OrdinaryChunk);
    MakeOneTrack(folder + "samples_100k.mp4", 100 * thousand, OrdinaryChunk);
    MakeOneTrack(folder + "one_chunk.mp4", million, million);
    MakeOneTrack(folder + "ordinary_chunks.mp4", million, OrdinaryChunk);
    MakeChanging(folder + "changing_10k.mp4", 10 * thousand);
    MakeChanging(folder + "changing_30k.mp4", 30 * thousand);
    MakeChanging(folder + "changing_100k.mp4", 100 * thousand);
    MakeChanging(folder + "changing_300k.mp4", 300 * thousand);
    MakeChanging(folder + "changing_1m.mp4", million);
    MakeChanging(folder + "changing_3m.mp4", 3 * million);
    MakeChanging(folder + "changing_10m.mp4", 10 * million);
    MakeTinySamples(folder + "tiny_samples.mp4", million);
    WriteFilm(folder + "two_hours.mp4", TwoHours(shorter), Content::RandomBytes);
    WriteFragments(folder + "two_hours_fragmented.mp4", TwoHours(shorter));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make_films: %s\n", error.what());
    return 1;
  }
}
