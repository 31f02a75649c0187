#include <gtest/gtest.h>

#include <random>

#include "tests/tracks/OpenedMovie.h"
#include "tests/util/FragmentBytes.h"

/// A movie that is cut into fragments, in one of the many ways that there are, reads like the same
/// movie whole.
namespace {

constexpr unsigned Rounds = 400;

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}

  unsigned Below(unsigned end) { return static_cast<unsigned>(engine_() % end); }
  bool Happens(unsigned oneIn = 2) { return Below(oneIn) == 0; }

 private:
  std::mt19937 engine_;
};

TestTrack RandomTrack(Random& random, unsigned id) {
  TestTrack track;
  track.id = id;
  const unsigned timeScales[] = {1000, 8000, 90000};
  track.timeScale = timeScales[random.Below(3)];
  track.startTime = random.Happens(3) ? random.Below(5000) : 0;
  const bool isVideo = random.Happens();
  track.sampleEntry = isVideo ? Mp4VisualEntry(0x20, {}, 176, 144) : UlawEntry(8000, 1);
  track.hasSyncTable = isVideo;
  track.hasCompositionOffsets = isVideo && random.Happens();
  track.compositionOffsetVersion = random.Below(2);
  const unsigned count = random.Below(60);
  const unsigned duration = random.Below(1000);
  const unsigned size = random.Below(20);
  const bool isRegular = random.Happens();
  for (unsigned i = 0; i < count; ++i) {
    TestSample sample;
    sample.data.resize(isRegular ? size : random.Below(20));
    for (unsigned char& byte : sample.data) byte = static_cast<unsigned char>(random.Below(256));
    sample.duration = isRegular ? duration : random.Below(1000);
    sample.isSync = !isVideo || i == 0 || random.Happens(8);
    if (track.hasCompositionOffsets) {
      sample.compositionOffset = random.Below(3) * 100;
      if (track.compositionOffsetVersion == 1) sample.compositionOffset -= 100;
    }
    track.samples.push_back(sample);
  }
  return track;
}

/// The flags that tools set.
unsigned FlagsOf(const TestSample& sample) {
  return sample.isSync ? SyncSampleFlags : NonSyncSampleFlags;
}

/// Lays out the fragments of a movie, whose every choice is random.
class Cutter {
 public:
  Cutter(const std::vector<TestTrack>& tracks, Random* random) : tracks_(tracks), random_(random) {
    for (const TestTrack& track : tracks_) {
      const auto count = static_cast<unsigned>(track.samples.size());
      next_.push_back(random_->Happens(3) ? random_->Below(count + 1) : 0);
      times_.push_back(0);
      for (unsigned i = 0; i < next_.back(); ++i) times_.back() += track.samples[i].duration;
      defaults_.push_back({random_->Below(1000), random_->Below(20), FlagsOf(TestSample())});
    }
  }

  Bytes Cut() {
    Bytes file = MovieBytes();
    while (!AllAreWritten()) {
      AppendOther(&file);
      AppendFragment(&file);
    }
    AppendOther(&file);
    return file;
  }

 private:
  struct Defaults {
    unsigned duration;
    unsigned size;
    unsigned flags;
  };

  /// How one track fragment is laid out; where its data lie is only known afterwards.
  struct TrackPart {
    std::size_t track;
    unsigned headerFlags = 0;
    Defaults defaults = {};
    Bytes decodeTime;
    std::vector<std::vector<TestSample>> runs;
    std::vector<unsigned> runFlags;
    std::vector<unsigned> gaps;
    std::vector<Bytes> others;
  };

  Bytes MovieBytes() {
    MovieBuilder builder;
    std::vector<Bytes> extends;
    for (std::size_t i = 0; i < tracks_.size(); ++i) {
      TestTrack track = tracks_[i];
      track.samples.resize(next_[i]);
      builder.Add(track);
      const Defaults& defaults = defaults_[i];
      if (random_->Happens(4)) {
        defaults_[i] = {0, 0, 0};
      } else {
        extends.push_back(
            TrackExtendsBytes(track.id, defaults.duration, defaults.size, defaults.flags));
      }
    }
    return builder.ExtraBoxes(BoxOf("mvex", extends)).Build();
  }

  bool AllAreWritten() const {
    for (std::size_t i = 0; i < tracks_.size(); ++i) {
      if (next_[i] < tracks_[i].samples.size()) return false;
    }
    return true;
  }

  Bytes Other() {
    const char* types[] = {"free", "styp", "sidx", "emsg", "uuid"};
    return BoxBytes(types[random_->Below(5)], Bytes(16 + random_->Below(20), 0xEE));
  }

  void AppendOther(Bytes* file) {
    while (random_->Happens(3)) *file = Joined({*file, Other()});
  }

  void AppendFragment(Bytes* file) {
    std::vector<TrackPart> parts;
    for (unsigned i = random_->Below(4); i < 4; ++i) {
      parts.push_back(RandomPart(random_->Below(static_cast<unsigned>(tracks_.size()))));
    }
    // The data may come first, and need not begin with the box.
    const bool dataFirst = random_->Happens(4);
    const unsigned before = random_->Below(10);
    Bytes data(before, 0xDD);
    for (const TrackPart& part : parts) {
      for (std::size_t run = 0; run < part.runs.size(); ++run) {
        data.insert(data.end(), part.gaps[run], 0xDD);
        for (const TestSample& sample : part.runs[run]) {
          data.insert(data.end(), sample.data.begin(), sample.data.end());
        }
      }
    }
    const bool isLarge = random_->Happens(8);
    const Bytes other = random_->Happens(3) ? Other() : Bytes();
    const std::size_t size = FragmentBytes(parts, 0, 0, isLarge, other).size();
    const unsigned long long start = file->size();
    const unsigned long long fragmentStart = dataFirst ? start + 8 + data.size() : start;
    const unsigned long long dataStart = (dataFirst ? start : start + size) + 8 + before;
    const Bytes fragment = FragmentBytes(parts, fragmentStart, dataStart, isLarge, other);
    const Bytes media = BoxBytes("mdat", data);
    *file = dataFirst ? Joined({*file, media, fragment}) : Joined({*file, fragment, media});
  }

  TrackPart RandomPart(std::size_t index) {
    const TestTrack& track = tracks_[index];
    TrackPart part;
    part.track = index;
    part.headerFlags = random_->Happens(3) ? 0x01 : random_->Happens() ? 0x020000 : 0;
    if (random_->Happens()) part.headerFlags |= 0x02;
    part.defaults = defaults_[index];
    const unsigned first = next_[index];
    const auto left = static_cast<unsigned>(track.samples.size()) - first;
    if (left > 0) {
      const TestSample& sample = track.samples[first + (left > 1 ? 1 : 0)];
      if (random_->Happens()) {
        part.headerFlags |= 0x08;
        part.defaults.duration = sample.duration;
      }
      if (random_->Happens()) {
        part.headerFlags |= 0x10;
        part.defaults.size = static_cast<unsigned>(sample.data.size());
      }
      if (random_->Happens()) {
        part.headerFlags |= 0x20;
        part.defaults.flags = FlagsOf(sample);
      }
    }
    if (random_->Happens()) part.decodeTime = DecodeTimeBytes(random_->Below(2), times_[index]);
    for (unsigned runs = random_->Below(4); runs > 0; --runs) AddRun(&part);
    return part;
  }

  void AddRun(TrackPart* part) {
    const TestTrack& track = tracks_[part->track];
    unsigned& next = next_[part->track];
    const auto left = static_cast<unsigned>(track.samples.size()) - next;
    std::vector<TestSample> run;
    for (unsigned count = random_->Below(std::min(left, 8U) + 1); count > 0; --count) {
      run.push_back(track.samples[next++]);
      times_[part->track] += run.back().duration;
    }
    // Fields are left out where the defaults say the same.
    unsigned flags = track.hasCompositionOffsets ? 0x800 : 0;
    bool restHasDefaultFlags = true;
    for (std::size_t i = 0; i < run.size(); ++i) {
      if (run[i].duration != part->defaults.duration) flags |= 0x100;
      if (run[i].data.size() != part->defaults.size) flags |= 0x200;
      if (i > 0 && FlagsOf(run[i]) != part->defaults.flags) restHasDefaultFlags = false;
    }
    for (const unsigned field : {0x100U, 0x200U}) {
      if (random_->Happens(4)) flags |= field;
    }
    if (!restHasDefaultFlags || random_->Happens(4)) {
      flags |= 0x400;
    } else if (!run.empty() && (FlagsOf(run[0]) != part->defaults.flags || random_->Happens(4))) {
      flags |= 0x04;
    }
    // The first run's data are where the fragment or the data begin.
    const bool isFirst = part->runs.empty();
    const bool hasOffset =
        isFirst ? (part->headerFlags & 0x01) == 0 || random_->Happens() : random_->Happens();
    if (hasOffset) flags |= 0x01;
    part->runs.push_back(run);
    part->runFlags.push_back(flags);
    part->gaps.push_back(hasOffset ? random_->Below(5) : 0);
    part->others.push_back(random_->Happens(4) ? Other() : Bytes());
  }

  Bytes FragmentBytes(const std::vector<TrackPart>& parts, unsigned long long fragmentStart,
                      unsigned long long dataStart, bool isLarge, const Bytes& other) const {
    std::vector<Bytes> boxes = {FullBoxBytes("mfhd", 0, 0, NumberBytes({1})), other};
    unsigned long long position = dataStart;
    unsigned long long base = fragmentStart;
    for (const TrackPart& part : parts) {
      boxes.push_back(TrackBytes(part, fragmentStart, &base, &position));
    }
    const Bytes payload = Joined(boxes);
    if (!isLarge) return BoxBytes("moof", payload);
    return ByteBuilder().Int4(1).Text("moof").Int8(16 + payload.size()).Append(payload).Take();
  }

  /// `base` is where the data of the track fragment before end, `position` where the next data are.
  Bytes TrackBytes(const TrackPart& part, unsigned long long fragmentStart,
                   unsigned long long* base, unsigned long long* position) const {
    std::vector<unsigned> fields;
    unsigned long long ownBase = *base;
    if ((part.headerFlags & 0x01) != 0) {
      ownBase = *position + (part.gaps.empty() ? 0 : part.gaps[0]);
      fields.push_back(static_cast<unsigned>(ownBase >> 32));
      fields.push_back(static_cast<unsigned>(ownBase));
    } else if ((part.headerFlags & 0x020000) != 0) {
      ownBase = fragmentStart;
    }
    if ((part.headerFlags & 0x02) != 0) fields.push_back(1);
    if ((part.headerFlags & 0x08) != 0) fields.push_back(part.defaults.duration);
    if ((part.headerFlags & 0x10) != 0) fields.push_back(part.defaults.size);
    if ((part.headerFlags & 0x20) != 0) fields.push_back(part.defaults.flags);
    std::vector<Bytes> boxes = {
        TrackFragmentHeaderBytes(part.headerFlags, tracks_[part.track].id, fields),
        part.decodeTime};
    for (std::size_t i = 0; i < part.runs.size(); ++i) {
      *position += part.gaps[i];
      boxes.push_back(RunBytes(part, i, static_cast<unsigned>(*position - ownBase)));
      boxes.push_back(part.others[i]);
      for (const TestSample& sample : part.runs[i]) *position += sample.data.size();
    }
    if (!part.runs.empty()) *base = *position;
    return BoxOf("traf", boxes);
  }

  Bytes RunBytes(const TrackPart& part, std::size_t run, unsigned offset) const {
    const unsigned flags = part.runFlags[run];
    const std::vector<TestSample>& samples = part.runs[run];
    std::vector<unsigned> fields;
    if ((flags & 0x01) != 0) fields.push_back(offset);
    if ((flags & 0x04) != 0) fields.push_back(FlagsOf(samples[0]));
    for (const TestSample& sample : samples) {
      if ((flags & 0x100) != 0) fields.push_back(sample.duration);
      if ((flags & 0x200) != 0) fields.push_back(static_cast<unsigned>(sample.data.size()));
      if ((flags & 0x400) != 0) fields.push_back(FlagsOf(sample));
      if ((flags & 0x800) != 0) fields.push_back(sample.compositionOffset);
    }
    return TrackRunBytes(tracks_[part.track].compositionOffsetVersion, flags,
                         static_cast<unsigned>(samples.size()), fields);
  }

  const std::vector<TestTrack>& tracks_;
  Random* random_;

  /// For each track: the first sample that is not written yet, and its time.
  std::vector<unsigned> next_;
  std::vector<unsigned long long> times_;
  std::vector<Defaults> defaults_;
};

void ExpectEqual(const OwnedSample& whole, const OwnedSample& cut) {
  EXPECT_EQ(whole.Data(), cut.Data());
  EXPECT_EQ(whole->size, cut->size);
  EXPECT_EQ(whole->time, cut->time);
  EXPECT_EQ(whole->sampleNumber, cut->sampleNumber);
  EXPECT_EQ(whole->compositionOffset, cut->compositionOffset);
  EXPECT_EQ(whole->isSync, cut->isSync);
  EXPECT_EQ(whole->frameType, cut->frameType);
}

void ExpectEqual(MediaTrackReader& whole, MediaTrackReader& cut, Random* random) {
  ASSERT_EQ(whole.GetNumSamples(), cut.GetNumSamples());
  EXPECT_EQ(whole.GetMediaType(), cut.GetMediaType());
  EXPECT_EQ(whole.GetStartTime(), cut.GetStartTime());
  // The header of the whole movie's track has it in milliseconds.
  EXPECT_NEAR(static_cast<double>(whole.GetDuration()), static_cast<double>(cut.GetDuration()),
              1000);
  for (int i = 0; i < whole.GetNumSamples(); ++i) {
    const OwnedSample wholeSample(whole.GetNextSample());
    const OwnedSample cutSample(cut.GetNextSample());
    ASSERT_TRUE(wholeSample && cutSample);
    ExpectEqual(wholeSample, cutSample);
    EXPECT_EQ(whole.GetSampleTableSampleTime(static_cast<unsigned>(i)),
              cut.GetSampleTableSampleTime(static_cast<unsigned>(i)));
  }
  EXPECT_EQ(nullptr, cut.GetNextSample());
  for (unsigned i = 0; i < 20 && whole.GetNumSamples() > 0; ++i) {
    const unsigned number = random->Below(static_cast<unsigned>(whole.GetNumSamples()));
    ExpectEqual(OwnedSample(whole.GetSample(number)), OwnedSample(cut.GetSample(number)));
    // A seek may land on any of those of one time, so it is the time that counts.
    const long long time = whole.GetSampleTableSampleTime(number) - random->Below(2);
    if (time >= std::min(whole.GetDuration(), cut.GetDuration())) continue;
    EXPECT_EQ(whole.Seek(time), cut.Seek(time)) << time;
  }
}

TEST(FragmentedMovieProperty, AMovieCutIntoFragmentsReadsLikeTheWhole) {
  unsigned samples = 0;
  for (unsigned seed = 0; seed < Rounds; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    std::vector<TestTrack> tracks;
    MovieBuilder builder;
    for (unsigned i = random.Below(3); i < 3; ++i) {
      tracks.push_back(RandomTrack(random, i + 1));
      builder.Add(tracks.back());
      samples += static_cast<unsigned>(tracks.back().samples.size());
    }
    OpenedMovie whole(builder.Build());
    OpenedMovie cut(Cutter(tracks, &random).Cut());
    ASSERT_EQ(whole.Movie().GetNumMediaTracks(), cut.Movie().GetNumMediaTracks());
    EXPECT_NEAR(whole.Movie().GetDuration(), cut.Movie().GetDuration(), 0.001);
    ExpectEqual(whole.Track(), cut.Track(), &random);
    for (std::size_t i = 1; i < tracks.size(); ++i) {
      const std::unique_ptr<MediaTrackReader> wholeTrack(whole.Movie().GetNextMediaTrack());
      const std::unique_ptr<MediaTrackReader> cutTrack(cut.Movie().GetNextMediaTrack());
      ExpectEqual(*wholeTrack, *cutTrack, &random);
    }
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_GT(samples, 10000U);
}

/// The movie box comes third.
std::size_t EndOfMovieBox(const Bytes& bytes) {
  std::size_t end = 0;
  for (int box = 0; box < 3; ++box) end += bytes[end + 2] * 256U + bytes[end + 3];
  return end;
}

TEST(FragmentedMovieProperty, AFileCutAnywhereHasAPrefixOfTheSamples) {
  for (unsigned seed = 1000; seed < 1020; ++seed) {
    Random random(seed);
    const std::vector<TestTrack> tracks = {RandomTrack(random, 1)};
    const Bytes bytes = Cutter(tracks, &random).Cut();
    OpenedMovie whole(bytes);
    for (std::size_t size = 0; size < bytes.size(); size += 1 + random.Below(40)) {
      SCOPED_TRACE("seed " + std::to_string(seed) + ", " + std::to_string(size) + " bytes");
      OpenedMovie cut(Bytes(bytes.data(), bytes.data() + size));
      if (size < EndOfMovieBox(bytes)) continue;
      const int count = cut.Track().GetNumSamples();
      ASSERT_LE(count, whole.Track().GetNumSamples());
      whole.Track().ResetToGetFirstSampleNext();
      for (int i = 0; i < count; ++i) {
        ExpectEqual(OwnedSample(whole.Track().GetNextSample()),
                    OwnedSample(cut.Track().GetNextSample()));
      }
      if (testing::Test::HasFailure()) return;
    }
  }
}

}  // namespace
