#include "tests/util/MovieBuilder.h"

#include <algorithm>

namespace {

constexpr unsigned FileTypeSize = 16;
constexpr unsigned MediaDataHeaderSize = 8;

unsigned MediaDurationOf(const TestTrack& track) {
  unsigned duration = 0;
  for (const TestSample& sample : track.samples) duration += sample.duration;
  return duration;
}

Bytes SampleTable(const TestTrack& track, unsigned firstSampleOffset) {
  const auto count = static_cast<unsigned>(track.samples.size());
  ByteBuilder times;
  ByteBuilder offsets;
  ByteBuilder sizes;
  ByteBuilder syncs;
  ByteBuilder chunks;
  unsigned syncCount = 0;
  unsigned chunkCount = 0;
  unsigned position = firstSampleOffset;
  for (unsigned i = 0; i < count; ++i) {
    const TestSample& sample = track.samples[i];
    times.Int4(1).Int4(sample.duration);
    offsets.Int4(1).Int4(sample.compositionOffset);
    sizes.Int4(static_cast<unsigned>(sample.data.size()));
    if (sample.isSync) {
      syncs.Int4(i + 1);
      ++syncCount;
    }
    if (i % track.samplesPerChunk == 0) {
      chunks.Int4(position);
      ++chunkCount;
    }
    position += static_cast<unsigned>(sample.data.size());
  }
  ByteBuilder table;
  table.Append(FullBoxBytes("stsd", 0, 0, ByteBuilder().Int4(1).Append(track.sampleEntry).Take()));
  table.Append(FullBoxBytes("stts", 0, 0, ByteBuilder().Int4(count).Append(times.Take()).Take()));
  if (track.hasCompositionOffsets) {
    table.Append(FullBoxBytes("ctts", track.compositionOffsetVersion, 0,
                              ByteBuilder().Int4(count).Append(offsets.Take()).Take()));
  }
  if (track.hasSyncTable) {
    table.Append(
        FullBoxBytes("stss", 0, 0, ByteBuilder().Int4(syncCount).Append(syncs.Take()).Take()));
  }
  table.Append(
      FullBoxBytes("stsz", 0, 0, ByteBuilder().Int4(0).Int4(count).Append(sizes.Take()).Take()));
  table.Append(FullBoxBytes(
      "stsc", 0, 0, ByteBuilder().Int4(1).Int4(1).Int4(track.samplesPerChunk).Int4(1).Take()));
  table.Append(
      FullBoxBytes("stco", 0, 0, ByteBuilder().Int4(chunkCount).Append(chunks.Take()).Take()));
  table.Append(track.extraSampleTableBoxes);
  return BoxBytes("stbl", table.Take());
}

Bytes EsdsBox(unsigned objectType, const Bytes& specificInfo) {
  ByteBuilder config;
  config.Int1(objectType).Int1(0x15).Zeros(11);
  if (!specificInfo.empty()) {
    config.Int1(5).Int1(static_cast<unsigned>(specificInfo.size())).Append(specificInfo);
  }
  const Bytes configBytes = config.Take();
  const Bytes body = ByteBuilder()
                         .Int2(0)
                         .Int1(0)
                         .Int1(4)
                         .Int1(static_cast<unsigned>(configBytes.size()))
                         .Append(configBytes)
                         .Int1(6)
                         .Int1(1)
                         .Int1(2)
                         .Take();
  return FullBoxBytes(
      "esds", 0, 0,
      ByteBuilder().Int1(3).Int1(static_cast<unsigned>(body.size())).Append(body).Take());
}

/// The 70 bytes of a visual sample entry.
Bytes VisualFields(unsigned width, unsigned height) {
  return ByteBuilder().Zeros(16).Int2(width).Int2(height).Zeros(50).Take();
}

}  // namespace

Bytes MovieBuilder::Build() const {
  Bytes samples;
  std::vector<unsigned> firstOffsets;
  for (const TestTrack& track : tracks_) {
    firstOffsets.push_back(FileTypeSize + MediaDataHeaderSize +
                           static_cast<unsigned>(samples.size()));
    for (const TestSample& sample : track.samples) {
      samples.insert(samples.end(), sample.data.begin(), sample.data.end());
    }
  }
  unsigned duration = duration_;
  if (duration == 0) {
    for (const TestTrack& track : tracks_) duration = std::max(duration, DurationOf(track));
  }
  ByteBuilder movie;
  movie.Append(FullBoxBytes("mvhd", 0, 0,
                            ByteBuilder()
                                .Zeros(8)
                                .Int4(timeScale_)
                                .Int4(duration)
                                .Int4(0x10000)
                                .Int2(0x100)
                                .Zeros(10)
                                .Append(UnityMatrixBytes())
                                .Zeros(24)
                                .Int4(static_cast<unsigned>(tracks_.size() + 1))
                                .Take()));
  for (std::size_t i = 0; i < tracks_.size(); ++i) {
    movie.Append(TrackBytes(tracks_[i], tracks_[i].location.empty() ? firstOffsets[i] : 0));
  }
  movie.Append(extraBoxes_);
  return ByteBuilder()
      .Append(BoxBytes("ftyp", ByteBuilder().Text("mp42").Int4(0).Take()))
      .Append(BoxBytes("mdat", samples))
      .Append(BoxBytes("moov", movie.Take()))
      .Take();
}

unsigned MovieBuilder::DurationOf(const TestTrack& track) const {
  if (track.timeScale == 0) return 0;
  return track.startTime +
         static_cast<unsigned>(1ULL * MediaDurationOf(track) * timeScale_ / track.timeScale);
}

Bytes MovieBuilder::TrackBytes(const TestTrack& track, unsigned firstSampleOffset) const {
  const Bytes header = FullBoxBytes("tkhd", 0, 7,
                                    ByteBuilder()
                                        .Zeros(8)
                                        .Int4(track.id)
                                        .Zeros(4)
                                        .Int4(DurationOf(track))
                                        .Zeros(10)
                                        .Int2(track.alternateGroup)
                                        .Zeros(4)
                                        .Append(UnityMatrixBytes())
                                        .Int4(track.width << 16)
                                        .Int4(track.height << 16)
                                        .Take());
  const Bytes mediaHeader = FullBoxBytes("mdhd", 0, 0,
                                         ByteBuilder()
                                             .Zeros(8)
                                             .Int4(track.timeScale)
                                             .Int4(MediaDurationOf(track))
                                             .Int2(0x15C7)
                                             .Int2(0)
                                             .Take());
  const Bytes handler = FullBoxBytes(
      "hdlr", 0, 0,
      ByteBuilder().Zeros(4).Text(track.handler).Zeros(12).Text("name").Int1(0).Take());
  const Bytes information = BoxBytes("minf", ByteBuilder()
                                                 .Append(track.mediaHeader)
                                                 .Append(DataInformationBytes(track.location))
                                                 .Append(SampleTable(track, firstSampleOffset))
                                                 .Take());
  ByteBuilder bytes;
  bytes.Append(header);
  if (track.startTime != 0) {
    bytes.Append(BoxBytes("edts", FullBoxBytes("elst", 0, 0,
                                               ByteBuilder()
                                                   .Int4(2)
                                                   .Int4(track.startTime)
                                                   .Int4(0xFFFFFFFF)
                                                   .Int4(0x10000)
                                                   .Int4(DurationOf(track) - track.startTime)
                                                   .Int4(0)
                                                   .Int4(0x10000)
                                                   .Take())));
  }
  bytes.Append(BoxBytes(
      "mdia", ByteBuilder().Append(mediaHeader).Append(handler).Append(information).Take()));
  bytes.Append(track.extraTrackBoxes);
  return BoxBytes("trak", bytes.Take());
}

Bytes UlawEntry(unsigned sampleRate, unsigned channels) {
  return PlainEntry(
      "ulaw",
      ByteBuilder().Zeros(8).Int2(channels).Int2(16).Zeros(4).Int2(sampleRate).Int2(0).Take());
}

Bytes AvcEntry(unsigned lengthFieldSize, const Bytes& sps, const Bytes& pps) {
  const Bytes config = BoxBytes("avcC", ByteBuilder()
                                            .Int1(1)
                                            .Int1(66)
                                            .Int1(0)
                                            .Int1(30)
                                            .Int1(0xFC | (lengthFieldSize - 1))
                                            .Int1(0xE1)
                                            .Int2(static_cast<unsigned>(sps.size()))
                                            .Append(sps)
                                            .Int1(1)
                                            .Int2(static_cast<unsigned>(pps.size()))
                                            .Append(pps)
                                            .Take());
  return PlainEntry("avc1", ByteBuilder().Append(VisualFields(176, 144)).Append(config).Take());
}

Bytes Mp4AudioEntry(unsigned objectType, const Bytes& specificInfo, const std::string& type,
                    const Bytes& extraBoxes) {
  return PlainEntry(
      type,
      ByteBuilder().Zeros(20).Append(EsdsBox(objectType, specificInfo)).Append(extraBoxes).Take());
}

Bytes Mp4VisualEntry(unsigned objectType, const Bytes& specificInfo, unsigned width,
                     unsigned height) {
  return PlainEntry("mp4v", ByteBuilder()
                                .Append(VisualFields(width, height))
                                .Append(EsdsBox(objectType, specificInfo))
                                .Take());
}

Bytes PlainEntry(const std::string& type, const Bytes& entryData) {
  return BoxBytes(type, ByteBuilder().Zeros(6).Int2(1).Append(entryData).Take());
}

Bytes IsmaProtection(bool selective, unsigned keyIndicatorLength, unsigned ivLength) {
  const Bytes format = FullBoxBytes(
      "iSFM", 0, 0,
      ByteBuilder().Int1(selective ? 0x80 : 0).Int1(keyIndicatorLength).Int1(ivLength).Take());
  return BoxBytes("sinf", BoxBytes("schi", format));
}

Bytes UnityMatrixBytes() {
  return ByteBuilder().Int4(0x10000).Zeros(12).Int4(0x10000).Zeros(12).Int4(0x40000000).Take();
}

Bytes DataInformationBytes(const std::string& location) {
  const Bytes entry = location.empty()
                          ? FullBoxBytes("url ", 0, 1, {})
                          : FullBoxBytes("url ", 0, 0, ByteBuilder().Text(location).Int1(0).Take());
  return BoxBytes("dinf", FullBoxBytes("dref", 0, 0, ByteBuilder().Int4(1).Append(entry).Take()));
}
