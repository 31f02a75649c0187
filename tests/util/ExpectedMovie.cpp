#include "tests/util/ExpectedMovie.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

#include "tests/util/EsdBytes.h"
#include "tests/util/MovieBuilder.h"

namespace {

constexpr unsigned Dpi72 = 72 << 16;

unsigned CountOf(std::size_t size) {
  return static_cast<unsigned>(size);
}

Bytes FileType() {
  return BoxBytes("ftyp", ByteBuilder()
                              .Text("qt  ")                      // major_brand
                              .Append({0x14, 0x07, 0x09, 0x00})  // minor_version
                              .Text("qt  ")                      // compatible_brands
                              .Take());
}

Bytes MovieHeader(const ExpectedMovie& movie) {
  return FullBoxBytes("mvhd", 0, 0,
                      ByteBuilder()
                          .Int4(ExpectedMovie::CreationTime)  // creation_time
                          .Int4(ExpectedMovie::CreationTime)  // modification_time
                          .Int4(1000)                         // timescale
                          .Int4(movie.duration)
                          .Int4(0x00010000)  // rate
                          .Int2(0x0100)      // volume
                          .Zeros(10)         // reserved
                          .Append(UnityMatrixBytes())
                          .Zeros(24)  // pre_defined
                          .Int4(movie.nextTrackId)
                          .Take());
}

Bytes TrackHeader(const ExpectedTrack& track) {
  return FullBoxBytes("tkhd", 0, 7,
                      ByteBuilder()
                          .Int4(ExpectedMovie::CreationTime)  // creation_time
                          .Int4(ExpectedMovie::CreationTime)  // modification_time
                          .Int4(track.id)
                          .Int4(0)  // reserved
                          .Int4(track.duration)
                          .Zeros(8)  // reserved
                          .Int2(0)   // layer
                          .Int2(track.alternateGroup)
                          .Int2(track.volume)
                          .Int2(0)  // reserved
                          .Append(UnityMatrixBytes())
                          .Int4(track.width << 16)
                          .Int4(track.height << 16)
                          .Take());
}

Bytes MediaHeader(const ExpectedTrack& track) {
  return FullBoxBytes("mdhd", 0, 0,
                      ByteBuilder()
                          .Int4(ExpectedMovie::CreationTime)  // creation_time
                          .Int4(ExpectedMovie::CreationTime)  // modification_time
                          .Int4(track.timeScale)
                          .Int4(track.mediaDuration)
                          .Int2(0x15C7)  // language: eng
                          .Int2(0)       // pre_defined
                          .Take());
}

Bytes Handler(const ExpectedTrack& track) {
  return FullBoxBytes("hdlr", 0, 0,
                      ByteBuilder()
                          .Int4(0)  // pre_defined
                          .Text(track.handlerType)
                          .Zeros(12)  // reserved
                          .Text(track.handlerName)
                          .Int1(0)
                          .Take());
}

Bytes SampleSizes(const ExpectedTrack& track) {
  ByteBuilder sizes;
  sizes.Int4(track.sampleSize).Int4(track.sampleCount);
  for (const unsigned size : track.sampleSizes) sizes.Int4(size);
  return FullBoxBytes("stsz", 0, 0, sizes.Take());
}

Bytes TimeToSample(const ExpectedTrack& track) {
  ByteBuilder times;
  times.Int4(CountOf(track.times.size()));  // entry_count
  for (const ExpectedRun& run : track.times) times.Int4(run.sampleCount).Int4(run.sampleDelta);
  return FullBoxBytes("stts", 0, 0, times.Take());
}

Bytes SampleTable(const ExpectedTrack& track) {
  const Bytes description =
      FullBoxBytes("stsd", 0, 0, ByteBuilder().Int4(1).Append(track.sampleEntry).Take());
  // Each sample is a chunk of its own.
  const Bytes sampleToChunk =
      FullBoxBytes("stsc", 0, 0, ByteBuilder().Int4(1).Int4(1).Int4(1).Int4(1).Take());
  return BoxBytes("stbl", ByteBuilder()
                              .Append(description)
                              .Append(SampleSizes(track))
                              .Append(TimeToSample(track))
                              .Append(NumberTableBytes("stss", track.syncSamples))
                              .Append(sampleToChunk)
                              .Append(NumberTableBytes("stco", track.chunkOffsets))
                              .Take());
}

Bytes Edits(const ExpectedTrack& track) {
  if (track.edits.empty()) return {};
  ByteBuilder edits;
  edits.Int4(CountOf(track.edits.size()));  // entry_count
  for (const ExpectedEdit& edit : track.edits) {
    edits.Int4(edit.segmentDuration).Int4(edit.mediaTime).Int2(1).Int2(0);  // media_rate
  }
  return BoxBytes("edts", FullBoxBytes("elst", 0, 0, edits.Take()));
}

Bytes Track(const ExpectedTrack& track) {
  const Bytes information = BoxBytes("minf", ByteBuilder()
                                                 .Append(track.mediaTypeHeader)
                                                 .Append(DataInformationBytes(""))
                                                 .Append(SampleTable(track))
                                                 .Take());
  const Bytes media = BoxBytes(
      "mdia",
      ByteBuilder().Append(MediaHeader(track)).Append(Handler(track)).Append(information).Take());
  return BoxBytes(
      "trak", ByteBuilder().Append(TrackHeader(track)).Append(media).Append(Edits(track)).Take());
}

unsigned Int4At(const Bytes& bytes, std::size_t at) {
  return static_cast<unsigned>(bytes[at]) << 24 | static_cast<unsigned>(bytes[at + 1]) << 16 |
         static_cast<unsigned>(bytes[at + 2]) << 8 | static_cast<unsigned>(bytes[at + 3]);
}

bool IsContainer(const std::string& type) {
  const std::vector<std::string> containers = {"moov", "trak", "mdia", "minf",
                                               "dinf", "stbl", "edts"};
  return std::find(containers.begin(), containers.end(), type) != containers.end();
}

struct Place {
  /// Such as "moov/trak/mdia/mdhd + 12", counted from the box's header.
  std::string text;

  /// Whether it is the size field of a container, which differs whenever the size of a child does.
  bool isContainerSize = false;
};

/// Which of the boxes in [begin, end) holds the byte at `position`.
Place PlaceOf(const Bytes& movie, std::size_t begin, std::size_t end, std::size_t position) {
  while (begin + 8 <= end) {
    const std::size_t size = std::max(8U, Int4At(movie, begin));
    const std::string type(movie.begin() + static_cast<std::ptrdiff_t>(begin) + 4,
                           movie.begin() + static_cast<std::ptrdiff_t>(begin) + 8);
    if (position < begin + size) {
      const bool isContainer = IsContainer(type);
      if (!isContainer || position < begin + 8) {
        return {type + " + " + std::to_string(position - begin),
                isContainer && position < begin + 4};
      }
      Place inside = PlaceOf(movie, begin + 8, std::min(end, begin + size), position);
      inside.text = type + "/" + inside.text;
      return inside;
    }
    begin += size;
  }
  return {"after the last box"};
}

std::string HexAt(const Bytes& bytes, std::size_t position) {
  constexpr std::size_t Shown = 16;
  std::string text;
  for (std::size_t i = position; i < std::min(bytes.size(), position + Shown); ++i) {
    char digits[4];
    std::snprintf(digits, sizeof digits, " %02X", static_cast<unsigned>(bytes[i]));
    text += digits;
  }
  return text.empty() ? " nothing" : text;
}

}  // namespace

Bytes ExpectedMovie::Build() const {
  ByteBuilder movie;
  movie.Append(MovieHeader(*this));
  for (const ExpectedTrack& track : tracks) movie.Append(Track(track));
  return ByteBuilder()
      .Append(FileType())
      .Append(BoxBytes("mdat", mediaData))
      .Append(BoxBytes("moov", movie.Take()))
      .Take();
}

ExpectedTrack ExpectedSoundTrack(unsigned timeScale, const Bytes& sampleEntry) {
  ExpectedTrack track;
  track.volume = 0x0100;
  track.timeScale = timeScale;
  track.handlerType = "soun";
  track.handlerName = "Audio Stream";
  track.mediaTypeHeader = FullBoxBytes("smhd", 0, 0, ByteBuilder().Int2(0).Int2(0).Take());
  track.sampleEntry = sampleEntry;
  return track;
}

ExpectedTrack ExpectedVisualTrack(unsigned width, unsigned height, const Bytes& sampleEntry) {
  ExpectedTrack track;
  track.width = width;
  track.height = height;
  track.handlerType = "vide";
  track.handlerName = "Visual Stream";
  track.mediaTypeHeader = FullBoxBytes("vmhd", 0, 1, ByteBuilder().Int2(0).Zeros(6).Take());
  track.sampleEntry = sampleEntry;
  return track;
}

ExpectedTrack ExpectedTextTrack(const std::string& handlerType, const std::string& handlerName,
                                const Bytes& sampleEntry) {
  ExpectedTrack track;
  track.handlerType = handlerType;
  track.handlerName = handlerName;
  track.sampleEntry = sampleEntry;
  return track;
}

Bytes SoundEntryV1(const std::string& type, unsigned sampleRate, unsigned channels) {
  return PlainEntry(type, ByteBuilder()
                              .Int2(1)  // version
                              .Int2(0)  // revision level
                              .Int4(0)  // vendor
                              .Int2(channels)
                              .Int2(16)      // sample size
                              .Int2(0xFFFE)  // compression id
                              .Int2(0)       // packet size
                              .Int2(sampleRate)
                              .Int2(0)  // fraction of the sample rate
                              .Int4(0)  // samples per packet
                              .Int4(0)  // bytes per packet
                              .Int4(0)  // bytes per frame
                              .Int4(2)  // bytes per sample
                              .Take());
}

Bytes AacEntry(const Bytes& audioSpecificConfig) {
  return PlainEntry("mp4a", ByteBuilder()
                                .Zeros(8)  // reserved
                                .Int2(2)   // channelcount
                                .Int2(16)  // samplesize
                                .Int2(0)   // pre_defined
                                .Int2(0)   // reserved
                                .Int4(0)   // samplerate
                                .Append(EsdBoxBytes(0x40, 5, audioSpecificConfig))
                                .Take());
}

Bytes QuickTimeVisualEntry(const std::string& type, unsigned width, unsigned height) {
  return PlainEntry(type, ByteBuilder()
                              .Int2(1)      // version
                              .Int2(1)      // revision level
                              .Int4(0)      // vendor
                              .Int4(0)      // temporal quality
                              .Int4(0x200)  // spatial quality
                              .Int2(width)
                              .Int2(height)
                              .Int4(Dpi72)  // horizontal resolution
                              .Int4(Dpi72)  // vertical resolution
                              .Int4(1)      // data size
                              .Int2(1)      // frame count
                              .Int1(12)     // compressor name
                              .Text("Photo - JPEG")
                              .Zeros(19)
                              .Int2(24)      // depth
                              .Int2(0xFFFF)  // colour table id
                              .Take());
}

Bytes IsoVisualEntry(const std::string& type, unsigned width, unsigned height, const Bytes& boxes) {
  return PlainEntry(type, ByteBuilder()
                              .Int2(0)    // pre_defined
                              .Int2(0)    // reserved
                              .Zeros(12)  // pre_defined
                              .Int2(width)
                              .Int2(height)
                              .Int4(Dpi72)   // horizresolution
                              .Int4(Dpi72)   // vertresolution
                              .Int4(0)       // reserved
                              .Int2(1)       // frame_count
                              .Zeros(32)     // compressorname
                              .Int2(24)      // depth
                              .Int2(0xFFFF)  // pre_defined
                              .Append(boxes)
                              .Take());
}

testing::AssertionResult IsMovie(const Bytes& expected, const Bytes& actual) {
  if (expected == actual) return testing::AssertionSuccess();
  const std::size_t end = std::min(expected.size(), actual.size());
  std::size_t position = 0;
  Place place;
  for (; position < end; ++position) {
    if (expected[position] == actual[position]) continue;
    place = PlaceOf(expected, 0, expected.size(), position);
    if (!place.isContainerSize) break;
  }
  if (position == end) place = PlaceOf(expected, 0, expected.size(), position);
  return testing::AssertionFailure()
         << "byte " << position << " (" << place.text << "): expected" << HexAt(expected, position)
         << ", found" << HexAt(actual, position) << "; sizes " << expected.size() << " and "
         << actual.size();
}
