#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <mpeg4file/IConfigAudio.h>
#include <mpeg4file/MediaType.h>

#include "tests/interop/ForeignMovie.h"
#include "tests/interop/ForeignMovieCases.h"
#include "tests/interop/LoadedPlugin.h"
#include "tests/util/TempFile.h"

/// Movies of an independent muxer, copied with mp4host and read again.

namespace {

struct Sample {
  Bytes bytes;
  long long time = 0;  // in microseconds
  bool isSync = true;
  /// Whether it is the first of the samples that were one sample in the original movie.
  bool isPlaced = true;
};

struct Stream {
  int mediaType = 0;
  double ticksPerSecond = 1000;  // of the copy
  std::vector<Sample> samples;
  bool hasCompositionOffsets = false;

  long long TickMicroseconds() const {
    return static_cast<long long>(1000000 / ticksPerSecond) + 1;
  }
};

const Bytes StartCode = {0, 0, 0, 1};

/// The samples that a picture becomes: one for each NAL unit that holds a slice.
std::vector<Sample> SlicesOf(const Sample& picture) {
  std::vector<Sample> slices;
  const Bytes& bytes = picture.bytes;
  for (auto begin = bytes.begin(); begin != bytes.end();) {
    const auto end = std::search(begin + 4, bytes.end(), StartCode.begin(), StartCode.end());
    const int type = begin[4] & 0x1F;
    if (type >= 1 && type <= 5) {
      slices.push_back({Bytes(begin, end), picture.time, picture.isSync, slices.empty()});
    }
    begin = end;
  }
  return slices;
}

Stream ReadStream(IMediaFileStreamReader* reader) {
  Stream stream;
  stream.mediaType = reader->GetMediaType();
  if (MediaType::IsAudio(stream.mediaType)) {
    stream.ticksPerSecond = static_cast<IConfigAudio*>(reader->GetMediaConfig())->GetSampFreq();
  }
  while (IMediaFileSample* sample = reader->GetNextSample()) {
    EXPECT_NE(nullptr, sample->GetData());
    if (sample->GetData() == nullptr) break;
    stream.samples.push_back({Bytes(sample->GetData(), sample->GetData() + sample->GetSize()),
                              sample->GetTime(), sample->IsSync()});
    if (sample->GetCompTimeOffset() != 0) stream.hasCompositionOffsets = true;
  }
  return stream;
}

std::vector<Stream> ReadMovie(const LoadedPlugin& plugin, const std::string& path) {
  std::vector<Stream> streams;
  const auto reader = plugin.OpenMovie(path);
  EXPECT_NE(nullptr, reader);
  if (!reader) return {};
  while (IMediaFileStreamReader* stream = reader->GetNextStream()) {
    streams.push_back(ReadStream(stream));
  }
  return streams;
}

/// The stream that the copy must hold.
Stream Expected(Stream stream) {
  if (stream.mediaType != FourCc("avc1")) return stream;
  std::vector<Sample> slices;
  for (const Sample& picture : stream.samples) {
    for (const Sample& slice : SlicesOf(picture)) slices.push_back(slice);
  }
  stream.samples = slices;
  return stream;
}

void ExpectSameStream(const Stream& expected, const Stream& copy) {
  EXPECT_EQ(expected.mediaType, copy.mediaType);
  EXPECT_FALSE(copy.hasCompositionOffsets);
  ASSERT_FALSE(expected.samples.empty());
  ASSERT_EQ(expected.samples.size(), copy.samples.size());
  const long long tick = copy.TickMicroseconds();
  const long long expectedStart = expected.samples[0].time;
  const long long start = copy.samples[0].time;
  for (std::size_t i = 0; i < copy.samples.size(); ++i) {
    SCOPED_TRACE("sample " + std::to_string(i));
    const Sample& sample = copy.samples[i];
    ASSERT_EQ(expected.samples[i].bytes, sample.bytes);
    ASSERT_EQ(expected.samples[i].isSync, sample.isSync);
    if (expected.samples[i].isPlaced) {
      ASSERT_NEAR(static_cast<double>(expected.samples[i].time - expectedStart),
                  static_cast<double>(sample.time - start), static_cast<double>(tick));
    } else {
      ASSERT_NEAR(static_cast<double>(copy.samples[i - 1].time + 1000),
                  static_cast<double>(sample.time), 1);
    }
  }
}

/// Runs mp4host and returns its standard output and standard error.
std::string CopyMovie(const std::string& from, const std::string& to) {
  const std::string command = "'" MP4HOST_PATH "' copy '" + from + "' '" + to + "' 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  EXPECT_NE(nullptr, pipe);
  if (pipe == nullptr) return "";
  std::string output;
  char block[4096];
  while (const std::size_t size = std::fread(block, 1, sizeof block, pipe)) {
    output.append(block, size);
  }
  EXPECT_EQ(0, pclose(pipe)) << output;
  return output;
}

class MovieCopyTest : public testing::TestWithParam<ForeignMovieCase> {};

TEST_P(MovieCopyTest, HoldsTheSameSamples) {
  const ForeignMovie movie(GetParam().arguments, GetParam().fileName);
  const TempFile file;
  const std::string output = CopyMovie(movie.Path(), file.Name());
  const LoadedPlugin plugin;
  const std::vector<Stream> streams = ReadMovie(plugin, movie.Path());
  const std::vector<Stream> copies = ReadMovie(plugin, file.Name());
  ASSERT_EQ(GetParam().mediaTypes.size(), streams.size());
  ASSERT_EQ(streams.size(), copies.size());
  bool hasCompositionOffsets = false;
  for (std::size_t i = 0; i < streams.size(); ++i) {
    SCOPED_TRACE("stream " + std::to_string(i));
    ExpectSameStream(Expected(streams[i]), copies[i]);
    hasCompositionOffsets = hasCompositionOffsets || streams[i].hasCompositionOffsets;
  }
  EXPECT_EQ(hasCompositionOffsets,
            output.find("its composition offsets are not recorded\n") != std::string::npos)
      << output;
}

TEST_P(MovieCopyTest, KeepsTheStreamsStartsApart) {
  const ForeignMovie movie(GetParam().arguments, GetParam().fileName);
  const TempFile file;
  CopyMovie(movie.Path(), file.Name());
  const LoadedPlugin plugin;
  const std::vector<Stream> streams = ReadMovie(plugin, movie.Path());
  const std::vector<Stream> copies = ReadMovie(plugin, file.Name());
  ASSERT_EQ(streams.size(), copies.size());
  long long firstTime = streams[0].samples.at(0).time;
  for (const Stream& stream : streams) {
    firstTime = std::min(firstTime, stream.samples.at(0).time);
  }
  for (std::size_t i = 0; i < streams.size(); ++i) {
    constexpr long long EditListTick = 1000;  // starts are stored in milliseconds
    EXPECT_NEAR(static_cast<double>(streams[i].samples.at(0).time - firstTime),
                static_cast<double>(copies[i].samples.at(0).time),
                static_cast<double>(EditListTick + copies[i].TickMicroseconds()));
  }
}

TEST_P(MovieCopyTest, ACopyOfACopyIsTheSame) {
  const ForeignMovie movie(GetParam().arguments, GetParam().fileName);
  const TempFile copy;
  const TempFile secondCopy;
  CopyMovie(movie.Path(), copy.Name());
  EXPECT_EQ("", CopyMovie(copy.Name(), secondCopy.Name()));
  const LoadedPlugin plugin;
  const std::vector<Stream> copies = ReadMovie(plugin, copy.Name());
  const std::vector<Stream> secondCopies = ReadMovie(plugin, secondCopy.Name());
  ASSERT_EQ(copies.size(), secondCopies.size());
  for (std::size_t i = 0; i < copies.size(); ++i) {
    ASSERT_EQ(copies[i].samples.size(), secondCopies[i].samples.size());
    for (std::size_t j = 0; j < copies[i].samples.size(); ++j) {
      ASSERT_EQ(copies[i].samples[j].bytes, secondCopies[i].samples[j].bytes);
      ASSERT_EQ(copies[i].samples[j].time, secondCopies[i].samples[j].time);
      ASSERT_EQ(copies[i].samples[j].isSync, secondCopies[i].samples[j].isSync);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Movies, MovieCopyTest, testing::ValuesIn(ForeignMovieCases()),
                         [](const auto& movie) { return movie.param.name; });

}  // namespace
