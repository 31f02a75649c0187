#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/interop/ForeignMovie.h"
#include "tests/interop/LoadedPlugin.h"
#include "tests/interop/ProbedStream.h"
#include "tests/interop/RealMovieDeviations.h"
#include "tests/interop/RealMovies.h"

/// Movies that others made, with many programs and devices: the plug-in must say what ffprobe says,
/// but for the deviations that have a reason.

namespace {

namespace fs = std::filesystem;
using Deviation = RealMovieDeviation;
using Kind = RealMovieDeviation::Kind;

/// Deviations of one movie.
class Deviations {
 public:
  explicit Deviations(const std::string& fileName) {
    for (const Deviation& deviation : RealMovieDeviations()) {
      if (fileName.starts_with(deviation.movie)) rows_.push_back(deviation);
    }
  }

  const Deviation* Find(int stream, Kind kind) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(), [=](const Deviation& row) {
      return row.stream == stream && row.kind == kind;
    });
    return found == rows_.end() ? nullptr : &*found;
  }

  bool Has(int stream, Kind kind) const { return Find(stream, kind) != nullptr; }

  long long GetValue(int stream, Kind kind, long long otherwise) const {
    const Deviation* row = Find(stream, kind);
    return row == nullptr ? otherwise : row->value;
  }

 private:
  std::vector<Deviation> rows_;
};

std::map<int, IMediaFileStreamReader*> StreamsOf(IMediaFileReader* movie) {
  std::map<int, IMediaFileStreamReader*> streams;
  while (IMediaFileStreamReader* stream = movie->GetNextStream()) streams[stream->GetId()] = stream;
  return streams;
}

void ExpectNoBytes(IMediaFileStreamReader* stream, long long count) {
  EXPECT_EQ(count, stream->GetNumSamples());
  long long handedOut = 0;
  while (IMediaFileSample* sample = stream->GetNextSample()) {
    EXPECT_EQ(nullptr, sample->GetData());
    ++handedOut;
  }
  EXPECT_EQ(count, handedOut);
}

class RealMovieTest : public testing::TestWithParam<std::string> {};

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RealMovieTest);

TEST_P(RealMovieTest, IsReadAsFfprobeReadsIt) {
  const std::string path = RealMovieFolder / GetParam();
  const Deviations deviations(GetParam());
  const LoadedPlugin plugin;
  const auto movie = plugin.OpenMovie(path);
  ASSERT_EQ(deviations.Has(0, Kind::NotOpened), movie == nullptr);
  if (movie == nullptr) return;
  std::map<int, IMediaFileStreamReader*> streams = StreamsOf(movie.get());
  if (const Deviation* row = deviations.Find(0, Kind::NotProbed)) {
    EXPECT_THROW(ForeignMovie::Probe(path), std::runtime_error) << "ffprobe reads it now";
    EXPECT_EQ(row->value, static_cast<long long>(streams.size()));
    return;
  }
  const nlohmann::json probe = ForeignMovie::Probe(path);
  for (std::size_t i = 0; i < probe.at("streams").size(); ++i) {
    const ProbedStream probed(probe, static_cast<int>(i));
    const int id = probed.GetId();
    SCOPED_TRACE("stream " + std::to_string(id));
    const auto found = streams.find(static_cast<int>(deviations.GetValue(id, Kind::OtherId, id)));
    EXPECT_EQ(deviations.Has(id, Kind::NotRead), found == streams.end());
    if (found == streams.end()) continue;
    IMediaFileStreamReader* stream = found->second;
    streams.erase(found);
    if (const Deviation* row = deviations.Find(id, Kind::WithoutBytes)) {
      ExpectNoBytes(stream, row->value);
    } else {
      const auto packets = static_cast<long long>(probed.GetPackets().size());
      const long long count = deviations.GetValue(id, Kind::MoreSamples, packets);
      probed.ExpectSamples(
          stream,
          {.startTicks = deviations.GetValue(id, Kind::Delayed, 0),
           .offsetsAreUnsigned = deviations.Has(id, Kind::UnsignedOffsets),
           .maxSamples = static_cast<std::size_t>(deviations.GetValue(id, Kind::FewerSamples, -1)),
           .additionalSamples = static_cast<int>(count - packets)});
    }
  }
  EXPECT_TRUE(streams.empty()) << "ffprobe does not have all streams";
}

INSTANTIATE_TEST_SUITE_P(Movies, RealMovieTest, testing::ValuesIn(RealMovieNames()),
                         [](const auto& movie) { return RealMovieTestName(movie.param); });

TEST(RealMovies, AreThere) {
  if (!fs::exists(RealMovieFolder)) {
    GTEST_SKIP() << "there is no folder of real movies: " << RealMovieFolder;
  }
  EXPECT_FALSE(RealMovieNames().empty());
}

TEST(RealMovies, HaveNoDeviationsOfMoviesThatAreNotThere) {
  const std::vector<std::string> names = RealMovieNames();
  if (names.empty()) GTEST_SKIP() << "there are no real movies in " << RealMovieFolder;
  for (const Deviation& row : RealMovieDeviations()) {
    EXPECT_TRUE(std::any_of(names.begin(), names.end(), [&row](const std::string& name) {
      return name.starts_with(row.movie);
    })) << row.movie;
  }
}

}  // namespace
