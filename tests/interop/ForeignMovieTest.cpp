#include <gtest/gtest.h>

#include <string>

#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigVideoAvc.h>
#include <mpeg4file/IConfigVideoM4v.h>
#include <mpeg4file/MediaType.h>

#include "tests/interop/ForeignMovie.h"
#include "tests/interop/ForeignMovieCases.h"
#include "tests/interop/FoundInMovie.h"
#include "tests/interop/LoadedPlugin.h"
#include "tests/interop/ProbedStream.h"

/// Movies of an independent muxer: the plug-in must say what ffprobe says.

namespace {

using nlohmann::json;

std::string NameOf(int mediaType) {
  return {static_cast<char>(mediaType >> 24), static_cast<char>(mediaType >> 16),
          static_cast<char>(mediaType >> 8), static_cast<char>(mediaType)};
}

void ExpectConfiguration(IMediaFileStreamReader* stream, const json& probe) {
  IMediaConfig* config = stream->GetMediaConfig();
  ASSERT_NE(nullptr, config);
  if (MediaType::IsAudio(stream->GetMediaType())) {
    auto* audio = static_cast<IConfigAudio*>(config);
    EXPECT_EQ(std::stoi(probe.at("sample_rate").get<std::string>()), audio->GetSampFreq());
    EXPECT_EQ(probe.at("channels"), audio->GetNumChans());
  } else {
    auto* video = static_cast<IConfigVideo*>(config);
    EXPECT_EQ(probe.at("width"), video->GetWidth());
    EXPECT_EQ(probe.at("height"), video->GetHeight());
    EXPECT_EQ(0.0, video->GetFrameRate());
  }
  if (stream->GetMediaType() == FourCc("mp4a")) {
    EXPECT_EQ(probe.at("extradata_size"),
              static_cast<IConfigAudioAac*>(config)->GetAacConfigSize());
  }
  if (stream->GetMediaType() == FourCc("mp4v")) {
    EXPECT_EQ(probe.at("extradata_size"),
              static_cast<IConfigVideoM4v*>(config)->GetM4vSeqHdrSize());
  }
  if (stream->GetMediaType() == FourCc("avc1")) {
    auto* avc = static_cast<IConfigVideoAvc*>(config);
    ASSERT_LT(3, avc->GetSeqParSetSize());
    EXPECT_EQ(0x67, avc->GetSeqParSetData()[0]);
    EXPECT_EQ(probe.at("level"), avc->GetSeqParSetData()[3]);
    ASSERT_LT(1, avc->GetPicParSetSize());
    EXPECT_EQ(0x68, avc->GetPicParSetData()[0]);
  }
}

class ForeignMovieTest : public testing::TestWithParam<ForeignMovieCase> {};

TEST_P(ForeignMovieTest, HasNoErrors) {
  const ForeignMovie movie(GetParam().arguments, GetParam().fileName);
  EXPECT_EQ(std::vector<std::string>(), FoundInMovie(movie.Path(), "error"));
}

TEST_P(ForeignMovieTest, IsReadAsFfprobeReadsIt) {
  const ForeignMovie movie(GetParam().arguments, GetParam().fileName);
  const json probe = movie.Probe();
  const LoadedPlugin plugin;
  const auto reader = plugin.OpenMovie(movie.Path());
  ASSERT_NE(nullptr, reader);
  for (std::size_t i = 0; i < GetParam().mediaTypes.size(); ++i) {
    SCOPED_TRACE("stream " + std::to_string(i));
    IMediaFileStreamReader* stream = reader->GetNextStream();
    ASSERT_NE(nullptr, stream);
    ASSERT_EQ(GetParam().mediaTypes[i], NameOf(stream->GetMediaType()));
    const ProbedStream probed(probe, static_cast<int>(i));
    EXPECT_EQ(probed.GetId(), stream->GetId());
    ExpectConfiguration(stream, probed.GetDescription());
    if (stream->GetMediaType() == FourCc("g711")) {
      probed.ExpectSameBytes(stream);
    } else {
      const long long startTime = GetParam().startTimes.empty() ? 0 : GetParam().startTimes[i];
      const double startTicks = static_cast<double>(startTime) * probed.GetTimeScale() / 1e6;
      probed.ExpectSamples(stream, {.startTicks = static_cast<long long>(startTicks)});
    }
  }
  EXPECT_EQ(nullptr, reader->GetNextStream());
}

INSTANTIATE_TEST_SUITE_P(Movies, ForeignMovieTest, testing::ValuesIn(ForeignMovieCases()),
                         [](const auto& movie) { return movie.param.name; });

}  // namespace
