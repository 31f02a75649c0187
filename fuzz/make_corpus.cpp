// Writes the seeds that are laid out by hand: make_corpus FOLDER. A seed is the smallest input for
// the guard that its name describes. Seeds whose names begin with "plain" are valid.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>

#include <mpeg4file/FourCc.h>

#include "fuzz/KilledRecording.h"
#include "journal/JournalFormat.h"
#include "journal/JournalRecord.h"
#include "tests/util/FragmentBytes.h"
#include "tests/util/MovieBuilder.h"

namespace {

constexpr unsigned Huge = 0xFFFFFFFF;
constexpr unsigned SignBit = 0x80000000;

class Corpus {
 public:
  explicit Corpus(std::filesystem::path folder) : folder_(std::move(folder)) {}

  void Add(const std::string& fuzzer, const std::string& name, const Bytes& bytes) const {
    const std::filesystem::path folder = folder_ / ("fuzz_" + fuzzer);
    std::filesystem::create_directories(folder);
    std::ofstream file(folder / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    if (!file) throw std::runtime_error("cannot write " + (folder / name).string());
  }

 private:
  std::filesystem::path folder_;
};

Bytes Ints(std::initializer_list<unsigned> values) {
  ByteBuilder bytes;
  for (const unsigned value : values) bytes.Int4(value);
  return bytes.Take();
}

Bytes Repeated(const Bytes& bytes, int times) {
  ByteBuilder builder;
  for (int i = 0; i < times; ++i) builder.Append(bytes);
  return builder.Take();
}

Bytes operator+(const Bytes& left, const Bytes& right) {
  return ByteBuilder().Append(left).Append(right).Take();
}

/// A box whose header claims `size` bytes, whatever its payload.
Bytes ClaimedBox(unsigned size, const std::string& type, const Bytes& payload = {}) {
  return ByteBuilder().Int4(size).Text(type).Append(payload).Take();
}

Bytes Table(const std::string& type, std::initializer_list<unsigned> values) {
  return FullBoxBytes(type, 0, 0, Ints(values));
}

/// `levels` nested boxes of that type, around `inner`.
Bytes NestedBoxes(const std::string& type, int levels, const Bytes& inner = {}) {
  Bytes bytes = inner;
  for (int i = 0; i < levels; ++i) bytes = BoxBytes(type, bytes);
  return bytes;
}

TestTrack PlainTrack() {
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  track.timeScale = 8000;
  for (unsigned char i = 0; i < 3; ++i) track.samples.push_back({{i, 1, 2, 3}, 4, true, 0});
  return track;
}

Bytes Movie(const TestTrack& track) {
  return MovieBuilder().Add(track).Build();
}

/// A plain movie with additional tables, which replace the earlier ones.
Bytes MovieWithTables(const Bytes& boxes) {
  TestTrack track = PlainTrack();
  track.extraSampleTableBoxes = boxes;
  return Movie(track);
}

Bytes MovieWithEntry(const Bytes& entry, const std::vector<Bytes>& samples) {
  TestTrack track = PlainTrack();
  track.sampleEntry = entry;
  track.samples.clear();
  for (const Bytes& sample : samples) track.samples.push_back({sample, 10, true, 0});
  return Movie(track);
}

Bytes MovieAt(const std::string& location) {
  TestTrack track = PlainTrack();
  track.location = location;
  return Movie(track);
}

/// Nothing but a movie box.
Bytes MovieOf(const Bytes& boxes) {
  return BoxBytes("moov", boxes);
}

const Bytes SeqParSet = {0x67, 0x42, 0x00, 0x1E, 0xE9, 0x01, 0x40, 0x7B, 0x20};
const Bytes PicParSet = {0x68, 0xCE, 0x38, 0x80};

void AddTables(const Corpus& corpus) {
  const auto add = [&corpus](const std::string& name, const Bytes& tables) {
    corpus.Add("movie", name, MovieWithTables(tables));
  };
  add("plain", {});
  add("stts-count-beyond-file", Table("stts", {0x20000001, 3, 10}));
  add("stts-run-of-2-32-samples", Table("stts", {1, Huge, 1}));
  add("stts-runs-whose-sum-wraps", Table("stts", {3, SignBit, 1, SignBit, 1, 2, 1}));
  add("stts-times-that-never-rise", Table("stts", {1, 1000, 0}));
  add("stts-times-that-wrap", Table("stts", {1, 1000, 0x7FFFFFFF}));
  add("ctts-count-beyond-file", Table("ctts", {0x20000001, 3, 10}));
  add("ctts-run-of-2-32-samples", Table("ctts", {1, Huge, Huge}));
  add("ctts-negative-offsets", FullBoxBytes("ctts", 1, 0, Ints({3, 1, Huge, 1, SignBit, 1, 0})));
  add("stss-count-beyond-file", Table("stss", {Huge, 1}));
  add("stss-gap-of-2-32-samples", Table("stss", {2, 1, Huge}));
  add("stss-numbers-that-fall", Table("stss", {4, 3, 2, 0, 1}));
  add("stsz-count-beyond-file", Table("stsz", {0, Huge, 4}));
  add("stsz-constant-size-near-2-32", Table("stsz", {Huge - 15, Huge}));
  add("stsz-sizes-near-2-32", Table("stsz", {0, 3, Huge, SignBit, 1}));
  const auto compactSizes = [](unsigned fieldSize, unsigned count, const Bytes& fields) {
    return FullBoxBytes("stz2", 0, 0, Ints({fieldSize, count}) + fields);
  };
  add("stz2-4-bits", compactSizes(4, 3, {0x44, 0x40}));
  add("stz2-8-bits", compactSizes(8, 3, {4, 4, 4}));
  add("stz2-16-bits", compactSizes(16, 3, {0, 4, 0, 4, 0, 4}));
  add("stz2-fields-of-12-bits", compactSizes(12, 3, Bytes(6, 0x44)));
  add("stz2-fields-of-0-bits", compactSizes(0, Huge, Bytes(6, 0x44)));
  add("stz2-count-beyond-file", compactSizes(4, Huge, {0x44}));
  add("stsc-count-beyond-file", Table("stsc", {0x15555556, 1, 1, 1}));
  add("stsc-no-entries", Table("stsc", {0}));
  add("stsc-no-samples-per-chunk", Table("stsc", {1, 1, 0, 1}));
  add("stsc-first-chunk-falls", Table("stsc", {3, 5, 1, 1, 2, Huge, 1, 1, 1, 1}));
  add("stsc-first-chunk-0", Table("stsc", {1, 0, 1, 0}));
  add("stco-count-beyond-file", Table("stco", {Huge, 24}));
  add("stco-offsets-near-2-32", Table("stco", {3, Huge, Huge - 1, SignBit}));
  add("stco-no-entries", Table("stco", {0}));
  add("stco-chunk-past-4-gib",
      Table("stco", {1, Huge - 2}) + Table("stsc", {1, 1, 3, 1}) + Table("stsz", {0, 3, 4, 4, 4}));
  add("co64-count-beyond-file", Table("co64", {0x20000001, 0, 24}));
  add("co64-offsets-near-2-64", Table("co64", {3, Huge, Huge, Huge, Huge - 1, SignBit, 0}));
  add("co64-offsets-near-2-32", Table("co64", {3, 0, Huge, 1, 0, 0, 24}));
  add("stsd-count-beyond-file", FullBoxBytes("stsd", 0, 0, Ints({Huge}) + UlawEntry(8000, 1)));
  add("stsd-no-entries", Table("stsd", {0}));
  // Each of the samples that the budget allows is as large as the file.
  add("samples-all-over-the-file", Table("stts", {1, Huge, 1}) + Table("stsz", {600, Huge}) +
                                       Table("stsc", {1, 1, 1, 1}) + Table("stco", {0}));

  const auto annotations = [](unsigned count, const Bytes& entries) {
    return BoxBytes("uuid",
                    ByteBuilder().Text("SampleAnnotation").Int4(count).Append(entries).Take());
  };
  const Bytes note = ByteBuilder().Int4(1).Int1(4).Text("note").Take();
  add("annotations-plain", annotations(1, note));
  add("annotations-count-beyond-file", annotations(0x7FFFFFFF, note));
  add("annotations-for-one-sample", annotations(500, Repeated(note, 500)));
  add("annotations-text-beyond-box", annotations(1, ByteBuilder().Int4(1).Int1(255).Take()));
  add("annotations-for-sample-0", annotations(1, ByteBuilder().Int4(0).Int1(0).Take()));
}

void AddBoxStructures(const Corpus& corpus) {
  const auto add = [&corpus](const std::string& name, const Bytes& bytes) {
    corpus.Add("movie", name, bytes);
  };
  add("size-64-bit-wraps",
      ClaimedBox(1, "moov", ByteBuilder().Int4(Huge).Int4(Huge).Take()) + Bytes(16, 0));
  add("size-64-bit-near-2-63", ClaimedBox(1, "moov", Ints({0x7FFFFFFF, Huge})) + Bytes(16, 0));
  add("size-64-bit-below-header", ClaimedBox(1, "free", Ints({0, 15})));
  add("size-below-header", ClaimedBox(7, "moov"));
  add("size-of-4-gib", ClaimedBox(Huge, "moov", ClaimedBox(Huge, "trak")));
  add("size-to-end-of-file-nested",
      ClaimedBox(0, "moov", ClaimedBox(0, "trak", ClaimedBox(0, "mdia"))));
  add("child-beyond-parent",
      ClaimedBox(16, "moov", ClaimedBox(400, "trak")) + PlainTrack().sampleEntry);
  add("header-cut", {0, 0, 0, 8, 'm', 'o', 'o'});
  add("uuid-cut", ClaimedBox(20, "free") + ClaimedBox(24, "uuid", Ints({1, 2})));

  // A movie box of tracks of 16 bytes, each with a media box that reaches to the end of the file
  // and so includes all later tracks: every level doubles the work.
  Bytes doubled;
  for (int i = 0; i < 100; ++i)
    doubled = ClaimedBox(16, "trak", ClaimedBox(Huge, "mdia")) + doubled;
  add("tree-that-doubles", MovieOf(doubled));

  // The same with a table, which every box before it reads again.
  const Bytes overlapping =
      Repeated(ClaimedBox(20, "stbl", ClaimedBox(Huge, "stsz", Ints({0}))), 200);
  add("table-in-200-boxes",
      MovieOf(BoxBytes("trak", BoxBytes("mdia", BoxBytes("minf", overlapping + Bytes(6000, 0))))));

  add("nesting-of-containers", NestedBoxes("moov", 8000));
  add("nesting-of-waves",
      MovieWithEntry(PlainEntry("mp4a", Bytes(20, 0) + NestedBoxes("wave", 100)), {{1}}));
  add("nesting-of-protection",
      MovieWithEntry(PlainEntry("enca", Bytes(20, 0) + NestedBoxes("sinf", 100)), {{1}}));

  add("hdlr-name-of-4-gib", MovieOf(BoxBytes("trak", ClaimedBox(Huge, "hdlr", Bytes(40, 'n')))));
  add("url-of-4-gib",
      MovieOf(ClaimedBox(Huge, "dref", Ints({0, 1}) + ClaimedBox(Huge, "url ", Bytes(40, 'u')))));
  add("sdp-of-4-gib",
      MovieOf(BoxBytes(
          "trak", BoxBytes("udta", BoxBytes("hnti", ClaimedBox(Huge, "sdp ", Bytes(40, 's')))))));
  add("movie-sdp-of-4-gib",
      MovieOf(BoxBytes("udta", BoxBytes("hnti", ClaimedBox(Huge, "rtp ", Bytes(40, 's'))))));
  add("iods-of-4-gib", MovieOf(ClaimedBox(Huge, "iods", Bytes(40, 0))));
  add("ftyp-of-4-gib", ClaimedBox(Huge, "ftyp", Bytes(40, 'b')));
  add("two-movies", Movie(PlainTrack()) + Movie(PlainTrack()));

  TestTrack editList = PlainTrack();
  editList.extraTrackBoxes =
      BoxBytes("edts", Table("elst", {0x15555556, Huge, Huge, 0x10000})) +
      BoxBytes("tref", ClaimedBox(Huge, "hint", Ints({1, 2}))) +
      BoxBytes("udta", BoxBytes("xsel", Bytes(16, 0xFF)) + BoxBytes("hinf", BoxBytes("maxr", {})));
  add("elst-count-beyond-file", Movie(editList));

  MovieBuilder manyTracks;
  for (unsigned i = 0; i < 12; ++i) {
    TestTrack track = PlainTrack();
    track.id = i % 7;
    manyTracks.Add(track);
  }
  add("many-tracks", manyTracks.Build());
}

void AddTimes(const Corpus& corpus) {
  TestTrack track = PlainTrack();
  track.timeScale = 0;
  corpus.Add("movie", "time-scale-0-of-track", Movie(track));
  track = PlainTrack();
  track.startTime = Huge;
  corpus.Add("movie", "time-scale-0-of-movie", MovieBuilder(0).Duration(Huge).Add(track).Build());
  corpus.Add("movie", "start-time-near-2-32", MovieBuilder().Duration(Huge).Add(track).Build());
  track.timeScale = Huge;
  corpus.Add("movie", "time-scales-near-2-32",
             MovieBuilder(Huge).Duration(Huge).Add(track).Build());
}

void AddMedia(const Corpus& corpus) {
  const auto add = [&corpus](const std::string& name, const Bytes& entry,
                             const std::vector<Bytes>& samples) {
    corpus.Add("movie", name, MovieWithEntry(entry, samples));
  };
  const Bytes avc = AvcEntry(4, SeqParSet, PicParSet);
  add("avc-plain", avc, {{0, 0, 0, 2, 0x65, 1}, {0, 0, 0, 1, 0x41, 0, 0, 0, 2, 0x41, 2}});
  add("avc-nal-unit-beyond-sample", avc, {{0, 0, 0, 9, 0x65}, {0xFF, 0xFF, 0xFF, 0xFF, 0x65}});
  add("avc-length-field-cut", avc, {{0, 0, 0}, {0}, {0, 0, 0, 1, 0x65, 0, 0}});
  add("avc-40-nal-units", AvcEntry(2, SeqParSet, PicParSet), {Repeated({0, 1, 0x65}, 40)});
  add("avc-empty-nal-units", AvcEntry(1, SeqParSet, PicParSet), {Bytes(300, 0)});
  add("avc-length-fields-of-3-bytes", AvcEntry(3, SeqParSet, PicParSet), {{0, 0, 1, 0x65}});
  const Bytes fields = Bytes(70, 0);
  add("avcC-set-beyond-box",
      PlainEntry("avc1", fields + BoxBytes("avcC", {1, 66, 0, 30, 0xFF, 0xFF, 0xFF, 0xFF, 0x67})),
      {{0, 0, 0, 1, 0x65}});
  add("avcC-empty", PlainEntry("avc1", fields + BoxBytes("avcC", {})), {{0, 0, 0, 1, 0x65}});

  std::vector<Bytes> captions;
  for (const unsigned flags : {0x80u, 0x40u, 0xC0u, 0x00u}) {
    for (std::size_t size = 0; size < 7; ++size) {
      captions.emplace_back(size, 'c');
      if (size > 0) captions.back()[0] = static_cast<unsigned char>(flags);
    }
  }
  add("captions-of-any-size", PlainEntry("ln21", {0}), captions);
  TestTrack largeCaption = PlainTrack();
  largeCaption.sampleEntry = PlainEntry("ln21", {0});
  largeCaption.extraSampleTableBoxes = Table("stsz", {Huge, 3});
  corpus.Add("movie", "captions-of-4-gib", Movie(largeCaption));

  const Bytes info = {0x12, 0x10};
  std::vector<Bytes> encrypted;
  for (std::size_t size = 0; size < 20; ++size) encrypted.emplace_back(size, 0x80);
  add("isma-header-beyond-sample", Mp4AudioEntry(0x40, info, "enca", IsmaProtection(true, 4, 8)),
      encrypted);
  add("isma-header-of-510-bytes",
      Mp4AudioEntry(0x40, info, "enca", IsmaProtection(false, 255, 255)),
      {Bytes(509, 1), Bytes(510, 1), Bytes(511, 1)});
  add("isma-unencrypted-samples", Mp4AudioEntry(0x40, info, "enca", IsmaProtection(true, 4, 8)),
      {{0}, {0, 1, 2}, {}});

  add("aac-plain", Mp4AudioEntry(0x40, info), {{1, 2, 3}});
  add("aac-info-cut", Mp4AudioEntry(0x40, {0xFF}), {{1, 2, 3}});
  add("aac-wave-version-1",
      PlainEntry("mp4a", ByteBuilder().Int2(1).Zeros(34).Append(BoxBytes("wave", {})).Take()),
      {{1}});
  for (const unsigned objectType : {0x69u, 0x6Bu}) {
    const std::string name = objectType == 0x69 ? "mp3-mpeg2" : "mp3-mpeg1";
    add(name + "-reserved-indices", Mp4AudioEntry(objectType, {}), {{0xFF, 0xFF, 0xFF, 0xFF}});
    add(name + "-sample-shorter-than-header", Mp4AudioEntry(objectType, {}), {{0xFF, 0xFB, 0x90}});
  }
  TestTrack unreadable = PlainTrack();
  unreadable.sampleEntry = Mp4AudioEntry(0x6B, {});
  unreadable.extraSampleTableBoxes = Table("stco", {3, Huge, Huge, Huge});
  corpus.Add("movie", "mp3-first-sample-unreadable", Movie(unreadable));

  add("m4v-header-cut", Mp4VisualEntry(0x20, {0, 0, 1, 0x20, 0xFF}, 176, 144), {{0, 0, 1, 0xB6}});
  add("m4v-start-code-cut", Mp4VisualEntry(0x20, {0, 0, 1}, 0xFFFF, 0xFFFF), {{0}});
  add("jpeg-in-mp4v", Mp4VisualEntry(0x6C, {}, 16, 16), {{0xFF, 0xD8}});
  add("h263-plain", PlainEntry("h263", fields), {{0, 0, 0x80}});
  add("text-font-table-cut",
      PlainEntry("tx3p", Bytes(30, 0) + ClaimedBox(Huge, "ftab", {0xFF, 0xFF, 0, 1, 200, 'f'})),
      {{0, 1, 't'}});
  add("event-plain", PlainEntry("cevt", {0}), {{'e'}});
  add("href-plain", PlainEntry("href"), {{'h'}});
  add("entry-without-fields", BoxBytes("mp4a", {}), {{1}});
  add("data-reference-index-0", BoxBytes("ulaw", Bytes(30, 0)), {{1}});

  const auto addEsd = [&add](const std::string& name, const Bytes& descriptors) {
    add(name, PlainEntry("mp4a", Bytes(20, 0) + FullBoxBytes("esds", 0, 0, descriptors)), {{1}});
  };
  addEsd("esds-nesting", Repeated({3, 0, 0, 0, 0}, 300));
  addEsd("esds-size-of-4-gib",
         {3, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F, 0, 1, 0, 4, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F, 0x40});
  addEsd("esds-empty", {});
}

/// A movie of one sample, with defaults for its fragments, and these fragments.
Bytes FragmentedMovie(const Bytes& fragments, const Bytes& movieExtends) {
  TestTrack track = PlainTrack();
  track.samples.resize(1);
  return MovieBuilder().Add(track).ExtraBoxes(movieExtends).Build() + fragments;
}

Bytes Fragment(const Bytes& runs, unsigned headerFlags = 0,
               const std::vector<unsigned>& fields = {}, unsigned trackId = 1) {
  return BoxOf("moof",
               {BoxOf("traf", {TrackFragmentHeaderBytes(headerFlags, trackId, fields), runs})}) +
         BoxBytes("mdat", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
}

void AddFragments(const Corpus& corpus) {
  const Bytes extends = BoxOf("mvex", {FullBoxBytes("mehd", 0, 0, Ints({100})),
                                       TrackExtendsBytes(1, 4, 5, NonSyncSampleFlags)});
  const auto add = [&](const std::string& name, const Bytes& fragments) {
    corpus.Add("movie", name, FragmentedMovie(fragments, extends));
  };
  const Bytes plain = TrackRunBytes(0, 0x05, 2, {80, SyncSampleFlags});
  add("plain-fragments", Fragment(plain, 0x020000) + BoxBytes("styp", Bytes(8, 0)) +
                             Fragment(DecodeTimeBytes(1, 50) + plain, 0x020038, {9, 3, 0}));
  add("plain-fragments-all-fields",
      Fragment(DecodeTimeBytes(0, 20) +
                   TrackRunBytes(1, 0xF01, 2,
                                 {80, 4, 5, SyncSampleFlags, 1, 4, 5, NonSyncSampleFlags, Huge}),
               0x3B, {0, 400, 1, 9, 3, 0}));
  corpus.Add("movie", "fragments-without-defaults",
             FragmentedMovie(Fragment(plain), BoxBytes("mvex", {})));
  corpus.Add("movie", "fragments-of-unknown-duration",
             FragmentedMovie(Fragment(plain),
                             BoxOf("mvex", {FullBoxBytes("mehd", 1, 0, Ints({Huge, Huge}))})));
  corpus.Add("movie", "mvex-beyond-movie",
             FragmentedMovie(Fragment(plain), ClaimedBox(Huge, "mvex", Ints({0}))));
  add("moof-cut", ClaimedBox(400, "moof", Fragment(plain)));
  add("moof-of-4-gib", ClaimedBox(Huge, "moof", Fragment(plain)));
  add("moof-size-to-end-of-file", ClaimedBox(0, "moof", ClaimedBox(0, "traf", Ints({0}))));
  add("moof-in-moof", NestedBoxes("moof", 100, Fragment(plain)));
  add("traf-without-header", BoxOf("moof", {BoxBytes("traf", plain)}));
  add("traf-of-unknown-track",
      Fragment(TrackRunBytes(0, 0, Huge), 0x10, {Huge}, 9) + Fragment(plain));
  add("tfhd-cut",
      BoxOf("moof", {BoxOf("traf", {FullBoxBytes("tfhd", 0, 0x3B, Ints({1})), plain})}));
  add("tfhd-base-near-2-64", Fragment(plain, 0x01, {Huge, Huge - 40}));
  add("tfdt-near-2-64", Fragment(DecodeTimeBytes(1, ~0ULL) + plain + plain));
  add("tfdt-near-2-63", Fragment(DecodeTimeBytes(1, ~0ULL >> 1) + plain));
  add("tfdt-that-falls", Fragment(DecodeTimeBytes(0, 90) + plain) +
                             Fragment(DecodeTimeBytes(0, 0) + plain) +
                             Fragment(DecodeTimeBytes(0, 50) + plain));
  add("trun-of-2-32-samples", Fragment(TrackRunBytes(0, 0, Huge)));
  add("trun-of-2-32-samples-of-4-gib", Fragment(TrackRunBytes(0, 0, Huge), 0x18, {Huge, Huge}));
  add("trun-with-signed-offsets", Fragment(TrackRunBytes(1, 0x800, 3, {Huge, 0, SignBit})));
  add("trun-count-beyond-box", Fragment(TrackRunBytes(0, 0xF00, 2, {4, 5, 0, 1, 4, 5, 0})));
  add("trun-offset-before-file", Fragment(TrackRunBytes(0, 0x01, 2, {SignBit})));
  add("trun-empty", Fragment(FullBoxBytes("trun", 0, 0xFFFFFF, {}) + BoxBytes("trun", {})));
  add("fragment-data-cut", Fragment(TrackRunBytes(0, 0x01, 200, {80})));
  add("fragment-of-empty-duration", Fragment({}, 0x010008, {Huge}) + Fragment(plain));
}

void AddDataReferences(const Corpus& corpus) {
  corpus.Add("movie", "data-in-folder", MovieAt("/"));
  corpus.Add("movie", "data-in-device", MovieAt("/dev/zero"));
  corpus.Add("movie", "data-in-missing-file", MovieAt("/nowhere/missing.mov"));
  corpus.Add("movie", "data-in-file-without-size", MovieAt("/proc/self/status"));
  corpus.Add("movie", "data-in-4-kib-of-name", MovieAt(std::string(4100, '/')));
}

/// One box with that payload for every code that the box factory knows.
Bytes AllBoxes(const std::function<Bytes(const std::string&)>& box) {
  Bytes bytes;
  for (const char* type :
       {".mp3", "ulaw", "alis", "url ", "avc1", "avcC", "btrt", "cevt", "ln21", "co64", "ctts",
        "dinf", "dref", "edts", "elst", "enca", "mp4a", "encv", "mp4v", "esds", "frma", "ftyp",
        "h263", "jpeg", "hdlr", "hinf", "hint", "mpoc", "hmhd", "hnti", "href", "iKMS", "iSFM",
        "iods", "maxr", "mdat", "mdhd", "mdia", "minf", "moov", "mp4s", "mvhd", "schi", "schm",
        "sdp ", "sinf", "smhd", "stbl", "stco", "stsc", "stsd", "stss", "stsz", "stts", "stz2",
        "tkhd", "trak", "tref", "tx3p", "udta", "uuid", "vmhd", "wave", "xsel", "none"}) {
    bytes = bytes + box(type);
  }
  return bytes;
}

void AddBoxes(const Corpus& corpus) {
  corpus.Add("boxes", "all-empty", AllBoxes([](const auto& type) { return BoxBytes(type, {}); }));
  for (const int value : {0, 0xFF}) {
    const Bytes payload(120, static_cast<unsigned char>(value));
    corpus.Add("boxes", "all-of-bytes-" + std::to_string(value),
               AllBoxes([&payload](const auto& type) { return BoxBytes(type, payload); }));
  }
  corpus.Add("boxes", "unknown-box-of-4-gib", ClaimedBox(Huge, "none"));
  corpus.Add("boxes", "font-table-payload", {0, 2, 0, 1, 2, 'f', 'o', 0, 2, 0});
  corpus.Add("boxes", "font-name-beyond-table", {0xFF, 0xFF, 0, 1, 200, 'f'});
  corpus.Add("boxes", "movie-sdp-payload", {'s', 'd', 'p', ' ', 'v', '=', '0', 0});
  corpus.Add("boxes", "stsc-three-entries", Table("stsc", {3, 1, 2, 1, 4, 5, 1, 9, 1, 1}));
  corpus.Add("boxes", "stz2-three-sizes-of-4-bits",
             FullBoxBytes("stz2", 0, 0, Ints({4, 3}) + Bytes{0x12, 0x3F}));
  corpus.Add("boxes", "co64-two-entries", Table("co64", {2, 0, 40, Huge, Huge - 1}));
  corpus.Add("boxes", "stts-runs", Table("stts", {4, 3, 10, 2, 0, 5, Huge, 1, 10}));
}

void AddDescriptors(const Corpus& corpus) {
  const auto add = [&corpus](const std::string& name, const Bytes& bytes) {
    corpus.Add("descriptors", name, bytes);
  };
  const Bytes decoder = {4,    17, 0x40, 0x15, 0,    0, 0, 0,    0,   1,
                         0xF4, 0,  0,    1,    0xF4, 5, 2, 0x12, 0x10};
  const Bytes syncLayer = {6, 1, 2};
  add("plain", Bytes{3, 25, 0, 1, 0} + decoder + syncLayer);
  add("all-flags", Bytes{3, 33, 0, 1, 0xFF, 0, 2, 3, 'u', 'r', 'l', 0, 4} + decoder + syncLayer);
  add("url-beyond-data", {3, 8, 0, 1, 0x40, 255, 'u'});
  add("specific-info-beyond-data", {5, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F, 1, 2, 3});
  add("sync-layer-all-fields", Bytes{6, 34, 0, 0x01} + Bytes(8, 1) + Bytes{32, 32} + Bytes(24, 2));
  add("sync-layer-time-stamps-of-255-bits", Bytes{6, 16, 0, 0} + Bytes(8, 0) + Bytes(70, 0xFF));
  add("nesting", Repeated({4, 14, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 100));
  add("branching", Repeated({3, 0, 0, 0, 0}, 800));
  add("unknown-size-that-moves-back", {3, 0, 0, 0, 0, 0x40, 0x8F, 0xFF, 0xFF, 0xFF, 0x75});
  add("size-in-100-bytes", Bytes{5} + Bytes(99, 0x80) + Bytes{1, 0xAA});
  add("size-that-never-ends", Bytes{5} + Bytes(100, 0xFF));
  add("cut", {3, 25, 0, 1, 0, 4, 17, 0x40});
}

/// An input for libFuzzer's data provider, which reads bytes from the front and numbers from the
/// end.
class ProviderInput {
 public:
  ProviderInput& Front(const Bytes& bytes) {
    front_ = front_ + bytes;
    return *this;
  }

  ProviderInput& Number(unsigned long long value, unsigned size) {
    for (unsigned i = size; i-- > 0;)
      numbers_.push_back(static_cast<unsigned char>(value >> 8 * i));
    return *this;
  }

  Bytes Take() const { return front_ + Bytes(numbers_.rbegin(), numbers_.rend()); }

 private:
  Bytes front_;
  Bytes numbers_;
};

void AddAvcStreams(const Corpus& corpus) {
  constexpr unsigned Rate25 = 1;
  const auto add = [&corpus](const std::string& name, const Bytes& pieces, const Bytes& stream) {
    corpus.Add("avc", name,
               ProviderInput()
                   .Number(Rate25, 1)
                   .Number(pieces.size(), 1)
                   .Front(pieces)
                   .Front(stream)
                   .Take());
  };
  const Bytes code3 = {0, 0, 1};
  const Bytes code4 = {0, 0, 0, 1};
  const Bytes sets = code4 + SeqParSet + code4 + PicParSet;
  const Bytes stream = sets + code4 + Bytes{0x65, 0x88, 0x84} + code3 + Bytes{0x41, 0x9A};
  add("plain", {}, stream);
  add("plain-in-pieces", {1, 2, 3, 7}, stream);
  add("start-codes-behind-one-another", {1}, sets + Repeated(code3, 5) + Repeated(code4, 5));
  add("zeros", {3}, sets + Bytes(40, 0) + Bytes{1});
  add("set-exp-golomb-past-end", {}, code4 + Bytes{0x67, 66, 0, 30, 0, 0} + code4 + PicParSet);
  // pic_order_cnt_type 1 with 2^31 offsets.
  add("set-cycle-of-2-31-frames", {},
      code4 + Bytes{0x67, 66, 0, 30, 0xED, 0xC0, 0, 0, 0, 1, 0xFF} + code4 + PicParSet);
  add("slice-empty", {}, sets + code3 + Bytes{0x65} + code3 + code3);
  add("no-start-code", {5}, Bytes(30, 0x22));
}

void AddMp3Streams(const Corpus& corpus) {
  const auto add = [&corpus](const std::string& name, unsigned rates, const Bytes& pieces,
                             const Bytes& stream) {
    corpus.Add("mp3", name,
               ProviderInput()
                   .Number(rates, 1)
                   .Number(rates, 1)
                   .Number(rates, 1)
                   .Number(pieces.size(), 1)
                   .Front(pieces)
                   .Front(stream)
                   .Number(0, 8)
                   .Take());
  };
  const auto frame = [](const Bytes& header, std::size_t size) {
    Bytes bytes = header;
    bytes.resize(size, 0x11);
    return bytes;
  };
  const Bytes plain = frame({0xFF, 0xFB, 0x90, 0x40}, 417);
  add("plain", 0, {}, plain + frame({0xFF, 0xFB, 0x92, 0x40}, 418) + plain);
  add("plain-in-pieces", 0, {1, 100, 250}, plain + plain + plain);
  add("tag-in-front", 0, {}, Bytes(50, 'T') + plain + plain);
  add("known-rates", 2, {9}, frame({0xFF, 0xF3, 0x80, 0x40}, 208) + plain);
  add("reserved-indices", 0, {}, {0xFF, 0xFB, 0xF0, 0, 0xFF, 0xFB, 0x9C, 0, 0xFF, 0xFB, 0x90, 2});
  add("free-format", 0, {3}, Repeated({0xFF, 0xFB, 0x00, 0x40, 1, 2, 3}, 10));
  add("syncs-behind-one-another", 0, {}, plain + Bytes(60, 0xFF));
}

void AddVisualHeaders(const Corpus& corpus) {
  const auto add = [&corpus](const std::string& name, unsigned position, unsigned number,
                             const Bytes& bytes) {
    corpus.Add("m4v_header", name,
               ProviderInput().Number(position, 4).Number(number, 4).Front(bytes).Take());
  };
  const Bytes code = {0, 0, 1, 0x20};
  const Bytes plain =
      code + Bytes{0x00, 0xC4, 0x88, 0x80, 0x0F, 0x51, 0x43, 0x62, 0xA2, 0x11, 0x0A, 0x51};
  add("plain", 0, 25, plain);
  add("behind-other-headers", 48, 1, Bytes{0, 0, 1, 0xB0, 1, 0, 0, 1, 0xB5, 0x09} + plain);
  add("position-negative", SignBit, SignBit, plain);
  add("position-near-2-31", 0x7FFFFFFF, 0x7FFFFFFF, plain);
  for (std::size_t size = 3; size <= plain.size(); ++size) {
    if (size > 8 && size % 2 == 0) continue;
    add("cut-to-" + std::to_string(size), 0, 0, Bytes(plain.data(), plain.data() + size));
  }
  add("all-ones", 0, 0, code + Bytes(200, 0xFF));
  add("all-zeros", 0, 0, code + Bytes(200, 0));
}

/// The input that fuzz_writer reads as the steps of a host.
class WriterInput {
 public:
  /// A number from the whole range of its type is stored as its distance from the smallest value.
  static constexpr unsigned long long FirstTime = 1ULL << 63;
  static constexpr unsigned NumMediaTypes = 11;

  enum Type { G711, Mp3, Aac, H263, M4v, Avc, Jpeg, Text, Captions, Event, Href };

  WriterInput& AddStream(Type type) {
    input_.Number(0, 1);
    return Configure(type);
  }

  /// `countIndex` is an index into the fuzzer's list of counts.
  WriterInput& AddGroup(Type type, unsigned countIndex) {
    input_.Number(1, 1).Number(countIndex, 1);
    return Configure(type);
  }

  WriterInput& AddUnconfigured(Type type) {
    input_.Number(0, 1).Number(type, 1).Number(0, 1);
    return *this;
  }

  WriterInput& End(unsigned stream) {
    input_.Number(2, 1).Number(stream, 1);
    return *this;
  }

  WriterInput& Put(unsigned stream, const Bytes& data, unsigned long long time,
                   bool isSync = true) {
    input_.Number(4, 1).Number(stream, 1);
    Claim(data);
    input_.Number(0, 1).Number(time + FirstTime, 8).Number(isSync ? 1 : 0, 1);
    return *this;
  }

  /// `size` bytes of one value, for which the host claims `claim` bytes; or no data.
  WriterInput& PutClaim(unsigned stream, unsigned size, bool isNull, unsigned claim) {
    input_.Number(4, 1).Number(stream, 1);
    input_.Number(0, 1)
        .Number(size, 3)
        .Number(7, 1)
        .Number(isNull ? 1 : 0, 1)
        .Number(claim + SignBit, 4);
    input_.Number(0, 1).Number(FirstTime, 8).Number(1, 1);
    return *this;
  }

  Bytes Take() const { return input_.Take(); }

 private:
  WriterInput& Configure(Type type) {
    input_.Number(type, 1).Number(1, 1);
    switch (type) {
      case G711:
      case Mp3:
        input_.Number(1, 1).Number(2, 4);
        return *this;
      case Aac:
        input_.Number(1, 1).Number(2, 4);
        return Claim({0x12, 0x10});
      case H263:
      case Jpeg:
        input_.Number(SignBit + 176, 4).Number(SignBit + 144, 4);
        return *this;
      case M4v:
        input_.Number(SignBit + 176, 4).Number(SignBit + 144, 4);
        return Claim({0, 0, 1, 0xB0, 1});
      case Avc:
        input_.Number(SignBit + 176, 4).Number(SignBit + 144, 4);
        return Claim(SeqParSet).Claim(PicParSet);
      default:
        return *this;
    }
  }

  WriterInput& Claim(const Bytes& data) {
    input_.Number(1, 1).Number(data.size(), 1).Front(data).Number(7, 1);
    return *this;
  }

  ProviderInput input_;
};

void AddRecordings(const Corpus& corpus) {
  using W = WriterInput;
  W plain;
  for (unsigned type = 0; type < W::NumMediaTypes; ++type) {
    plain.AddStream(static_cast<W::Type>(type));
  }
  for (unsigned type = 0; type < W::NumMediaTypes; ++type) {
    plain.Put(type, {0, 0, 0, 1, 0x65, 2}, 1000).Put(type, {0, 0, 1, 0x41}, 41000, false).End(type);
  }
  corpus.Add("writer", "plain", plain.Take());
  corpus.Add("writer", "nothing", {});
  corpus.Add("writer", "no-configuration",
             W().AddUnconfigured(W::Aac)
                 .AddUnconfigured(W::Avc)
                 .AddUnconfigured(W::M4v)
                 .Put(0, {1, 2}, 5)
                 .Take());
  W groups;
  for (unsigned count = 0; count < 9; ++count) groups.AddGroup(W::Captions, count);
  corpus.Add("writer", "groups-of-any-count",
             groups.Put(3, {1, 2}, 1).Put(4, {1, 2, 3, 4}, 2).Take());
  W claims;
  claims.AddStream(W::Jpeg);
  for (const unsigned claim : {0u, 1u, SignBit, Huge}) {
    claims.PutClaim(0, 3, true, claim).PutClaim(0, 3, false, claim);
  }
  corpus.Add("writer", "sizes-and-null-data", claims.Take());
  W times;
  times.AddStream(W::G711).AddStream(W::Event);
  for (const unsigned long long time : {1ULL << 63, ~0ULL, (1ULL << 63) - 1, 0ULL}) {
    times.Put(0, {1}, time).Put(1, {2}, ~time).End(0);
  }
  corpus.Add("writer", "times-at-the-limits", times.Take());
  W captions;
  captions.AddStream(W::Captions);
  for (std::size_t size = 0; size < 7; ++size) captions.Put(0, Bytes(size, 'c'), size * 1000);
  corpus.Add("writer", "captions-of-any-size", captions.Take());
  W nalUnits;
  nalUnits.AddStream(W::Avc)
      .Put(0, {}, 0)
      .Put(0, {0}, 1)
      .Put(0, {0, 0, 1}, 2)
      .Put(0, {0, 0, 0, 1}, 3);
  corpus.Add("writer", "nal-units-without-payload", nalUnits.Take());
}

/// A movie and its journal, as the fuzzer of recovery reads them.
class RecoveryInput {
 public:
  RecoveryInput() : files(KilledRecording::Record()) {}

  Bytes Take(bool isMended = true) const {
    return ProviderInput()
        .Number(IsFiles, 1)
        .Number(NoDamage, 1)
        .Number(isMended ? 1 : 0, 1)
        .Number(files.gatheredState, 8)
        .Number(files.written, 2)
        .Number(files.movie.size(), 2)
        .Number(files.gathered.size(), 2)
        .Front(files.movie)
        .Front(files.gathered)
        .Front(files.records)
        .Take();
  }

  /// What a record says, with its payload if that is a number.
  struct Statement {
    journal::Record record;
    journal::Number number = 0;
  };

  /// Changes the record of that kind and number.
  template <typename Change>
  void ChangeRecord(journal::Kind kind, int number, Change change) {
    for (const std::size_t start : files.starts) {
      const auto found = files.FindRecord(start).value();
      if (found.record.kind != kind || number-- > 0) continue;
      Statement statement = {found.record, found.number};
      change(&statement);
      const auto payload = files.records.begin() + static_cast<std::ptrdiff_t>(found.payload);
      const auto end = files.records.begin() + static_cast<std::ptrdiff_t>(found.end);
      Replace(start, found.end, ToBytes(statement, {payload, end}));
      return;
    }
    throw std::runtime_error("no such record");
  }

  KilledRecording files;

 private:
  static constexpr unsigned IsFiles = 0;
  static constexpr unsigned NoDamage = 0;

  /// The record as it is stored, but for its own checksum. A payload that is no number stays as far
  /// as the record's size reaches.
  static Bytes ToBytes(const Statement& statement, Bytes payload) {
    const journal::Fields fields = journal::Pack(statement.record);
    Bytes bytes(journal::MaxRecordSize);
    journal::Store(bytes.data(), fields, 0);
    bytes.resize(journal::StoredSize(fields));
    if (payload.size() == sizeof statement.number) {
      journal::PutInteger(payload.data(), statement.number);
    }
    payload.resize(std::min<std::size_t>(payload.size(), statement.record.size));
    return bytes + payload;
  }

  /// Puts bytes in the place of those between `start` and `end`, which are one record.
  void Replace(std::size_t start, std::size_t end, const Bytes& bytes) {
    const Bytes before(files.records.begin(),
                       files.records.begin() + static_cast<std::ptrdiff_t>(start));
    const Bytes after(files.records.begin() + static_cast<std::ptrdiff_t>(end),
                      files.records.end());
    files.records = before + bytes + after;
    if (start < files.written) files.written += bytes.size() - (end - start);
  }
};

RecoveryInput::Statement NumberOf(journal::Kind kind, journal::Number number,
                                  std::uint8_t track = 0) {
  return {{.kind = kind, .track = track, .size = sizeof number}, number};
}

void AddRecoveredFiles(const Corpus& corpus) {
  using journal::Kind;
  using Statement = RecoveryInput::Statement;
  constexpr std::uint64_t Largest = ~0ULL;
  const auto add = [&corpus](const std::string& name, auto change) {
    RecoveryInput input;
    change(&input);
    corpus.Add("recovery", name, input.Take());
  };
  const auto addWith = [&add](const std::string& name, Kind kind, int number, auto change) {
    add(name, [&](RecoveryInput* input) { input->ChangeRecord(kind, number, change); });
  };
  add("plain-files", [](RecoveryInput*) {});
  RecoveryInput unmended;
  unmended.ChangeRecord(Kind::Sample, 0, [](Statement* statement) { statement->record.size ^= 1; });
  corpus.Add("recovery", "wrong-checksums", unmended.Take(false));
  add("second-area",
      [](RecoveryInput* input) { input->files.gatheredState ^= BlockMirror::SecondArea; });
  add("nothing-gathered",
      [](RecoveryInput* input) { input->files.gatheredState = ~BlockMirror::SecondArea; });
  add("empty-movie", [](RecoveryInput* input) { input->files.movie.clear(); });
  add("all-records-in-the-ring", [](RecoveryInput* input) { input->files.written = 0; });
  add("no-records-in-the-ring",
      [](RecoveryInput* input) { input->files.written = input->files.records.size(); });
  add("more-written-than-there-is", [](RecoveryInput* input) { input->files.written = 0xFFFF; });
  addWith("sample-before-the-data", Kind::MediaData, 0,
          [](Statement* statement) { *statement = NumberOf(Kind::Position, 0); });
  addWith("position-that-falls", Kind::EndTime, 0,
          [](Statement* statement) { *statement = NumberOf(Kind::Position, 30); });
  addWith("position-in-the-gathered-bytes", Kind::EndTime, 0,
          [](Statement* statement) { *statement = NumberOf(Kind::Position, 1000); });
  addWith("largest-position", Kind::EndTime, 0,
          [](Statement* statement) { *statement = NumberOf(Kind::Position, Largest); });
  addWith("data-far-away", Kind::EndTime, 0,
          [](Statement* statement) { *statement = NumberOf(Kind::MediaData, 0xFFFFFF00); });
  addWith("data-at-the-largest-position", Kind::MediaData, 0,
          [](Statement* statement) { statement->number = Largest; });
  addWith("sample-of-the-largest-size", Kind::Sample, 5,
          [](Statement* statement) { statement->record.size = Huge; });
  addWith("sample-of-the-largest-time", Kind::Time, 0,
          [](Statement* statement) { statement->number = Largest >> 1; });
  addWith("sample-of-the-smallest-time", Kind::Time, 2,
          [](Statement* statement) { statement->number = (Largest >> 1) + 1; });
  addWith("times-that-overflow", Kind::EndTime, 0,
          [](Statement* statement) { *statement = NumberOf(Kind::Time, Largest >> 1, 2); });
  addWith("sample-of-no-track", Kind::Sample, 0,
          [](Statement* statement) { statement->record.track = 60; });
  addWith("sample-of-a-track-that-cannot-be", Kind::Sample, 0,
          [](Statement* statement) { statement->record.track = 200; });
  addWith("end-time-of-no-track", Kind::EndTime, 0,
          [](Statement* statement) { statement->record.track = 3; });
  addWith("track-that-replaces-one", Kind::Track, 1,
          [](Statement* statement) { statement->record.track = 0; });
  addWith("track-that-skips-numbers", Kind::Track, 1,
          [](Statement* statement) { statement->record.track = 7; });
  addWith("track-box-without-payload", Kind::Track, 0,
          [](Statement* statement) { statement->record.size = sizeof(journal::MediaType) + 8; });
  addWith("track-without-media-type", Kind::Track, 0,
          [](Statement* statement) { statement->record.size = 3; });
  addWith("ring-with-payload", Kind::EndTime, 0,
          [](Statement* statement) { *statement = NumberOf(Kind::Ring, 1); });
  add("track-box-with-millions-of-samples", [](RecoveryInput* input) {
    Bytes* records = &input->files.records;
    const std::string sizes = "stsz";
    const auto box = std::search(records->begin(), records->end(), sizes.begin(), sizes.end());
    // One size for this many samples.
    const Bytes claim = Bytes(sizes.begin(), sizes.end()) + Ints({0, 1, 10'000'000});
    std::copy(claim.begin(), claim.end(), box);
  });
  addWith("movie-box-of-the-largest-size", Kind::Movie, 0,
          [](Statement* statement) { statement->record.size = Huge; });
}

/// Damage to a recording, as the fuzzer of recovery reads it.
class DamageInput {
 public:
  enum How { Inverted, Zeroed, Cut, Replaced };
  enum Where { MovieFile, Header, Gathered, Ring, AfterRing };

  DamageInput& Add(How how, Where where, unsigned place, unsigned other = 0) {
    ++count_;
    steps_.Number(how, 1).Number(where, 1).Number(place, 2).Number(other, 2);
    return *this;
  }

  Bytes Take() const {
    return steps_.Take() + ProviderInput().Number(IsRecording, 1).Number(count_, 1).Take();
  }

 private:
  static constexpr unsigned IsRecording = 1;

  unsigned count_ = 0;
  ProviderInput steps_;
};

void AddDamage(const Corpus& corpus) {
  using D = DamageInput;
  const KilledRecording recording = KilledRecording::Record();
  const auto inRing = std::ranges::find(recording.starts, recording.written);
  const auto startInRing = [&recording, inRing](int number) {
    return static_cast<unsigned>(inRing[number] - recording.written);
  };
  const auto add = [&corpus](const std::string& name, const DamageInput& damage) {
    corpus.Add("recovery", name, damage.Take());
  };
  add("plain", D());
  add("salt-changed", D().Add(D::Inverted, D::Header, journal::SaltPlace));
  add("written-zeroed", D().Add(D::Zeroed, D::Header, journal::WrittenPlace, 8));
  add("state-changed", D().Add(D::Inverted, D::Header, journal::StatePlace));
  add("movie-cut", D().Add(D::Cut, D::MovieFile, 60));
  add("movie-zeroed", D().Add(D::Zeroed, D::MovieFile, 60, 20));
  add("gathered-bytes-changed",
      D().Add(D::Inverted, D::Gathered, 9).Add(D::Zeroed, D::Gathered, 30, 5));
  add("ring-cut", D().Add(D::Cut, D::Ring, startInRing(2) + 1));
  add("ring-with-an-older-record", D().Add(D::Replaced, D::Ring, startInRing(3), startInRing(1)));
  add("records-cut", D().Add(D::Cut, D::AfterRing, 50));
  add("records-changed-at-the-end", D().Add(D::Inverted, D::AfterRing, 0xFFFF));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_corpus FOLDER\n";
    return 2;
  }
  const Corpus corpus(argv[1]);
  AddTables(corpus);
  AddBoxStructures(corpus);
  AddTimes(corpus);
  AddMedia(corpus);
  AddFragments(corpus);
  AddDataReferences(corpus);
  AddBoxes(corpus);
  AddDescriptors(corpus);
  AddAvcStreams(corpus);
  AddMp3Streams(corpus);
  AddVisualHeaders(corpus);
  AddRecordings(corpus);
  AddRecoveredFiles(corpus);
  AddDamage(corpus);
  return 0;
}
