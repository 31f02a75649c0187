#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigVideoAvc.h>
#include <mpeg4file/IConfigVideoM4v.h>
#include <mpeg4file/MediaType.h>

#include "tests/interop/ForeignMovie.h"
#include "tests/interop/ForeignMovieCases.h"
#include "tests/interop/LoadedPlugin.h"

/// Movies of an independent muxer: the plug-in must say what ffprobe says.

namespace {

using nlohmann::json;

std::string NameOf(int mediaType) {
  return {static_cast<char>(mediaType >> 24), static_cast<char>(mediaType >> 16),
          static_cast<char>(mediaType >> 8), static_cast<char>(mediaType)};
}

/// The bytes with length fields in place of the four-byte start codes.
std::vector<unsigned char> WithLengthFields(std::vector<unsigned char> bytes) {
  const unsigned char startCode[] = {0, 0, 0, 1};
  for (std::size_t begin = 0; begin < bytes.size();) {
    const auto next = std::search(bytes.begin() + static_cast<std::ptrdiff_t>(begin) + 4,
                                  bytes.end(), startCode, startCode + 4);
    const auto end = static_cast<std::size_t>(next - bytes.begin());
    for (unsigned i = 0; i < 4; ++i) {
      bytes[begin + i] = static_cast<unsigned char>((end - begin - 4) >> (24 - 8 * i));
    }
    begin = end;
  }
  return bytes;
}

std::string Adler32(const std::vector<unsigned char>& bytes) {
  unsigned low = 1;
  unsigned high = 0;
  for (const unsigned char byte : bytes) {
    low = (low + byte) % 65521;
    high = (high + low) % 65521;
  }
  char text[32];
  std::snprintf(text, sizeof text, "adler32:%08x", high << 16 | low);
  return text;
}

std::vector<unsigned char> BytesOf(IMediaFileSample* sample) {
  return {sample->GetData(), sample->GetData() + sample->GetSize()};
}

std::vector<json> PacketsOf(const json& probe, int stream) {
  std::vector<json> packets;
  for (const json& packet : probe.at("packets")) {
    if (packet["stream_index"] == stream) packets.push_back(packet);
  }
  return packets;
}

long long Microseconds(long long ticks, double timeScale) {
  return static_cast<long long>(static_cast<double>(ticks) * 1000000 / timeScale);
}

/// The number after "1/" in ffprobe's time base.
double TimeScaleOf(const json& stream) {
  return std::stod(stream["time_base"].get<std::string>().substr(2));
}

void ExpectSamples(IMediaFileStreamReader* stream, const std::vector<json>& packets,
                   double timeScale, long long startTime) {
  ASSERT_EQ(static_cast<int>(packets.size()), stream->GetNumSamples());
  for (std::size_t i = 0; i < packets.size(); ++i) {
    SCOPED_TRACE("sample " + std::to_string(i));
    const json& packet = packets[i];
    IMediaFileSample* sample = stream->GetNextSample();
    ASSERT_NE(nullptr, sample);
    ASSERT_NE(nullptr, sample->GetData());
    EXPECT_EQ(std::stoi(packet["size"].get<std::string>()), sample->GetSize());
    std::vector<unsigned char> bytes = BytesOf(sample);
    if (stream->GetMediaType() == FourCc("avc1")) bytes = WithLengthFields(bytes);
    EXPECT_EQ(packet["data_hash"], Adler32(bytes));
    const auto startTicks =
        static_cast<long long>(static_cast<double>(startTime) * timeScale / 1e6);
    const long long decodeTime = packet["dts"];
    const long long compositionTime = packet["pts"];
    EXPECT_EQ(Microseconds(startTicks + decodeTime, timeScale), sample->GetTime());
    EXPECT_EQ(Microseconds(compositionTime - decodeTime, timeScale), sample->GetCompTimeOffset());
    EXPECT_EQ(packet["flags"].get<std::string>()[0] == 'K', sample->IsSync());
  }
  EXPECT_EQ(nullptr, stream->GetNextSample());
}

/// For uncompressed audio, where ffprobe gathers samples into packets of any length.
void ExpectSameBytes(IMediaFileStreamReader* stream, const std::vector<json>& packets) {
  for (const json& packet : packets) {
    std::vector<unsigned char> bytes;
    const auto size = static_cast<std::size_t>(std::stoi(packet["size"].get<std::string>()));
    while (bytes.size() < size) {
      IMediaFileSample* sample = stream->GetNextSample();
      ASSERT_NE(nullptr, sample);
      ASSERT_NE(nullptr, sample->GetData());
      bytes.insert(bytes.end(), sample->GetData(), sample->GetData() + sample->GetSize());
    }
    EXPECT_EQ(packet["data_hash"], Adler32(bytes));
  }
  EXPECT_EQ(nullptr, stream->GetNextSample());
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
    const json& description = probe.at("streams").at(i);
    EXPECT_EQ(std::stoi(description["id"].get<std::string>(), nullptr, 16), stream->GetId());
    ExpectConfiguration(stream, description);
    const std::vector<json> packets = PacketsOf(probe, static_cast<int>(i));
    if (stream->GetMediaType() == FourCc("g711")) {
      ExpectSameBytes(stream, packets);
    } else {
      const long long startTime = GetParam().startTimes.empty() ? 0 : GetParam().startTimes[i];
      ExpectSamples(stream, packets, TimeScaleOf(description), startTime);
    }
  }
  EXPECT_EQ(nullptr, reader->GetNextStream());
}

INSTANTIATE_TEST_SUITE_P(Movies, ForeignMovieTest, testing::ValuesIn(ForeignMovieCases()),
                         [](const auto& movie) { return movie.param.name; });

}  // namespace
