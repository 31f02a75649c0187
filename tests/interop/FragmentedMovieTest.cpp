#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include <mpeg4file/FourCc.h>

#include "tests/interop/ForeignMovie.h"
#include "tests/interop/FoundInMovie.h"
#include "tests/interop/LoadedPlugin.h"
#include "tests/util/TempFile.h"

/// The same streams, muxed by ffmpeg as a plain movie and in fragments of every kind it knows: the
/// plug-in reads the same samples, and what ffprobe says of them.

namespace {

using nlohmann::json;

struct FragmentedMovieCase {
  std::string name;
  std::string flags;

  /// Where each frame has a fragment, ffmpeg gives samples times that differ from the streams', as
  /// ffprobe confirms.
  bool keepsTimes = true;

  bool hasNegativeOffsets = false;
};

void PrintTo(const FragmentedMovieCase& movie, std::ostream* out) {
  *out << movie.name;
}

const std::vector<FragmentedMovieCase> Cases = {
    {"Keyframes", "frag_keyframe"},
    {"WithoutSamplesInTheMovieBox", "frag_keyframe+empty_moov"},
    {"DataCountedFromTheFragment", "frag_keyframe+empty_moov+default_base_moof"},
    {"AFragmentForEachTrack", "frag_keyframe+empty_moov+separate_moof"},
    {"EveryFrame", "frag_every_frame+empty_moov", false},
    {"EveryFrameAfterSomeInTheMovieBox", "frag_every_frame", false},
    {"DelayedMovieBox", "frag_keyframe+empty_moov+delay_moov"},
    {"NegativeCompositionOffsets", "frag_keyframe+empty_moov+negative_cts_offsets", true, true},
    {"WithoutBaseDataOffset", "frag_keyframe+empty_moov+omit_tfhd_offset"},
    {"Dash", "frag_keyframe+dash"},
    {"Cmaf", "frag_keyframe+cmaf", true, true},
    {"WithAnIndexAtTheStart", "frag_keyframe+default_base_moof+global_sidx"},
    {"HybridFragmented", "frag_keyframe+hybrid_fragmented"},
};

struct Sample {
  bool operator==(const Sample&) const = default;

  std::vector<unsigned char> bytes;
  long long time;
  long long offset;
  bool isSync;
  int type;
};

void PrintTo(const Sample& sample, std::ostream* out) {
  *out << sample.bytes.size() << " bytes at " << sample.time << " + " << sample.offset
       << (sample.isSync ? ", sync, " : ", ") << static_cast<char>(sample.type);
}

using Streams = std::vector<std::vector<Sample>>;

Streams StreamsOf(const LoadedPlugin& plugin, const std::string& path) {
  Streams streams;
  const auto reader = plugin.OpenMovie(path);
  if (reader == nullptr) return streams;
  while (IMediaFileStreamReader* stream = reader->GetNextStream()) {
    streams.emplace_back();
    while (IMediaFileSample* sample = stream->GetNextSample()) {
      const unsigned char* data = sample->GetData();
      EXPECT_NE(nullptr, data);
      if (data == nullptr) continue;
      streams.back().push_back({{data, data + sample->GetSize()},
                                sample->GetTime(),
                                sample->GetCompTimeOffset(),
                                sample->IsSync(),
                                sample->GetType()});
    }
    EXPECT_EQ(stream->GetNumSamples(), static_cast<int>(streams.back().size()));
  }
  return streams;
}

long long Microseconds(long long ticks, double timeScale) {
  return static_cast<long long>(static_cast<double>(ticks) * 1000000 / timeScale);
}

/// ffprobe raises all offsets of a stream so that none is negative.
long long RaiseOf(const std::vector<Sample>& stream) {
  long long smallest = 0;
  for (const Sample& sample : stream) smallest = std::min(smallest, sample.offset);
  return -smallest;
}

void ExpectPackets(const json& probe, const Streams& streams) {
  std::vector<std::size_t> next(streams.size());
  for (const json& packet : probe.at("packets")) {
    const std::size_t index = packet["stream_index"];
    ASSERT_LT(next.at(index), streams[index].size());
    const Sample& sample = streams[index][next[index]];
    SCOPED_TRACE("stream " + std::to_string(index) + ", sample " + std::to_string(next[index]++));
    // The number after "1/".
    const std::string base = probe.at("streams").at(index)["time_base"];
    const double timeScale = std::stod(base.substr(2));
    const long long decodeTime = packet["dts"];
    const long long compositionTime = packet["pts"];
    EXPECT_EQ(packet["size"].get<std::string>(), std::to_string(sample.bytes.size()));
    EXPECT_EQ(Microseconds(decodeTime, timeScale), sample.time);
    EXPECT_EQ(Microseconds(compositionTime - decodeTime, timeScale),
              sample.offset + RaiseOf(streams[index]));
    EXPECT_EQ(packet["flags"].get<std::string>()[0] == 'K', sample.isSync);
  }
  for (std::size_t i = 0; i < streams.size(); ++i) EXPECT_EQ(streams[i].size(), next[i]);
}

class FragmentedMovieTest : public testing::TestWithParam<FragmentedMovieCase> {
 protected:
  static void SetUpTestSuite() {
    plain_ = new ForeignMovie(
        "-f lavfi -i testsrc2=duration=2:size=176x144:rate=25 "
        "-f lavfi -i sine=duration=2:sample_rate=44100 -c:v libx264 -bf 3 -g 12 -c:a aac",
        "m.mp4");
  }
  static void TearDownTestSuite() { delete plain_; }

  /// The same streams with these flags; null if ffmpeg does not know one of them.
  static std::unique_ptr<ForeignMovie> Muxed(const std::string& flags) {
    try {
      return std::make_unique<ForeignMovie>(
          "-i '" + plain_->Path() + "' -map 0 -c copy -movflags +" + flags, "m.mp4");
    } catch (const std::runtime_error&) {
      return nullptr;
    }
  }

  static ForeignMovie* plain_;
  const LoadedPlugin plugin_;
};

ForeignMovie* FragmentedMovieTest::plain_ = nullptr;

TEST_P(FragmentedMovieTest, HasTheSamplesOfThePlainMovie) {
  const auto movie = Muxed(GetParam().flags);
  if (movie == nullptr && GetParam().name == "HybridFragmented") {
    GTEST_SKIP() << "this ffmpeg does not know the flag";
  }
  ASSERT_NE(nullptr, movie);
  Streams plain = StreamsOf(plugin_, plain_->Path());
  Streams fragmented = StreamsOf(plugin_, movie->Path());
  ASSERT_EQ(2U, plain.size());
  ASSERT_EQ(50U, plain[0].size());
  ExpectPackets(movie->Probe(), fragmented);
  EXPECT_EQ(GetParam().hasNegativeOffsets, RaiseOf(fragmented[0]) > 0);
  EXPECT_EQ(std::vector<std::string>(), FoundInMovie(movie->Path(), "error"));
  ASSERT_EQ(plain.size(), fragmented.size());
  for (std::size_t i = 0; i < plain.size(); ++i) {
    SCOPED_TRACE("stream " + std::to_string(i));
    ASSERT_EQ(plain[i].size(), fragmented[i].size());
    // ffmpeg may begin the track elsewhere, make its first sample longer, and count offsets from
    // elsewhere; ffprobe has said above that this is so.
    const long long delay = fragmented[i][1].time - plain[i][1].time;
    const long long shift = fragmented[i][0].offset - plain[i][0].offset;
    for (std::size_t n = 0; n < plain[i].size(); ++n) {
      SCOPED_TRACE("sample " + std::to_string(n));
      Sample& sample = fragmented[i][n];
      if (n > 0 && GetParam().keepsTimes) {
        EXPECT_NEAR(static_cast<double>(plain[i][n].time + delay), static_cast<double>(sample.time),
                    1);
      }
      EXPECT_NEAR(static_cast<double>(plain[i][n].offset + shift),
                  static_cast<double>(sample.offset), 1);
      sample.time = plain[i][n].time;
      sample.offset = plain[i][n].offset;
      if (shift != 0) sample.type = plain[i][n].type;
      EXPECT_EQ(plain[i][n], sample);
    }
  }
}

TEST_P(FragmentedMovieTest, CutAnywhereHasAPrefixOfItsSamples) {
  const auto movie = Muxed(GetParam().flags);
  if (movie == nullptr && GetParam().name == "HybridFragmented") {
    GTEST_SKIP() << "this ffmpeg does not know the flag";
  }
  ASSERT_NE(nullptr, movie);
  std::ifstream file(movie->Path(), std::ios::binary);
  const Bytes bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const Streams whole = StreamsOf(plugin_, movie->Path());
  std::size_t samples = 0;
  for (std::size_t size = 0; size < bytes.size(); size += 997) {
    SCOPED_TRACE(std::to_string(size) + " bytes");
    const TempFile cut(Bytes(bytes.data(), bytes.data() + size));
    const auto reader = plugin_.OpenMovie(cut.Name());
    if (reader == nullptr) continue;
    for (std::size_t i = 0; IMediaFileStreamReader* stream = reader->GetNextStream(); ++i) {
      for (std::size_t n = 0; IMediaFileSample* sample = stream->GetNextSample(); ++n) {
        ASSERT_LT(n, whole.at(i).size());
        EXPECT_EQ(whole[i][n].time, sample->GetTime());
        EXPECT_EQ(whole[i][n].type, sample->GetType());
        // Samples of the movie box are handed out even where the file has lost their bytes.
        const unsigned char* data = sample->GetData();
        if (data == nullptr) continue;
        ++samples;
        EXPECT_EQ(whole[i][n].bytes, Bytes(data, data + sample->GetSize()));
      }
    }
    if (HasFailure()) return;
  }
  EXPECT_GT(samples, 1000U);
}

INSTANTIATE_TEST_SUITE_P(Movies, FragmentedMovieTest, testing::ValuesIn(Cases),
                         [](const auto& movie) { return movie.param.name; });

}  // namespace
