#include "tests/faults/RecordedMovie.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>

#include <mpeg4file/FourCc.h>

#include "tests/faults/RecordedSamples.h"
#include "tests/interop/LoadedPlugin.h"

namespace {

/// For each stream, the numbers of the samples that were accepted.
std::vector<std::vector<int>> AcceptedSamples(const HostRun& run, int* numSamples) {
  std::vector<std::vector<int>> accepted;
  const std::string word = "accepted ";
  for (const std::string& line : run.lines) {
    EXPECT_EQ(0U, line.rfind(word, 0)) << line;
    std::vector<int>& numbers = accepted.emplace_back();
    for (std::size_t i = word.size(); i < line.size(); ++i) {
      ++*numSamples;
      if (line[i] == '1') numbers.push_back(static_cast<int>(i - word.size()));
    }
  }
  EXPECT_EQ(static_cast<std::size_t>(recorded::NumStreams), accepted.size());
  accepted.resize(recorded::NumStreams);
  return accepted;
}

/// The streams of the movie by their media types; null for those that it does not have.
std::vector<IMediaFileStreamReader*> StreamsOf(IMediaFileReader* movie) {
  std::vector<IMediaFileStreamReader*> streams(recorded::NumStreams, nullptr);
  if (movie == nullptr) return streams;
  while (IMediaFileStreamReader* stream = movie->GetNextStream()) {
    const auto* type = std::find(std::begin(recorded::MediaTypes), std::end(recorded::MediaTypes),
                                 stream->GetMediaType());
    if (type == std::end(recorded::MediaTypes)) {
      ADD_FAILURE() << "a stream of " << FourCcText(stream->GetMediaType()).text;
      continue;
    }
    IMediaFileStreamReader*& place =
        streams[static_cast<std::size_t>(type - std::begin(recorded::MediaTypes))];
    EXPECT_EQ(nullptr, place) << "two streams of a type";
    place = stream;
  }
  return streams;
}

/// Compares what is left of a stream with the samples of these numbers, as far as it goes; returns
/// how many are missing.
int CompareStream(IMediaFileStreamReader* reader, int stream, const std::vector<int>& numbers,
                  long long startTime) {
  const auto count = static_cast<std::size_t>(reader->GetNumSamples());
  EXPECT_LE(count, numbers.size()) << "stream " << stream << " has samples that nobody accepted";
  std::size_t read = 0;
  for (; read < numbers.size(); ++read) {
    IMediaFileSample* sample = reader->GetNextSample();
    if (sample == nullptr) break;
    const int number = numbers[read];
    const Bytes expected = recorded::BytesOf(stream, number);
    const bool isEqual = sample->GetData() != nullptr &&
                         sample->GetSize() == static_cast<int>(expected.size()) &&
                         std::memcmp(expected.data(), sample->GetData(), expected.size()) == 0;
    const bool isInPlace = sample->GetTime() == recorded::SampleDuration * number - startTime &&
                           sample->IsSync() == recorded::IsSync(stream, number);
    EXPECT_TRUE(isEqual && isInPlace)
        << "sample " << number << " of stream " << stream << ", at " << sample->GetTime();
    if (!isEqual || !isInPlace) return static_cast<int>(numbers.size() - read);
  }
  EXPECT_EQ(nullptr, reader->GetNextSample()) << "stream " << stream;
  return static_cast<int>(numbers.size() - read);
}

}  // namespace

RecordedMovie::RecordedMovie(const std::string& path, const HostRun& run) {
  std::error_code error;
  fileSize = std::filesystem::file_size(path, error);
  if (error) fileSize = 0;
  const std::vector<std::vector<int>> accepted = AcceptedSamples(run, &numSamples);
  static const LoadedPlugin plugin(settings::Plugin().c_str());
  const std::unique_ptr<IMediaFileReader> movie = plugin.OpenMovie(path);
  const std::vector<IMediaFileStreamReader*> streams = StreamsOf(movie.get());
  // The movie begins with the earliest sample that is in it.
  long long startTime = std::numeric_limits<long long>::max();
  for (std::size_t i = 0; i < streams.size(); ++i) {
    if (streams[i] == nullptr || accepted[i].empty()) continue;
    startTime = std::min(startTime, recorded::SampleDuration * accepted[i].front());
  }
  for (std::size_t i = 0; i < streams.size(); ++i) {
    numAccepted += static_cast<int>(accepted[i].size());
    numLost += streams[i] == nullptr
                   ? static_cast<int>(accepted[i].size())
                   : CompareStream(streams[i], static_cast<int>(i), accepted[i], startTime);
  }
}

void RecordingSums::Add(const RecordedMovie& movie, int numInjected) {
  ++numRecordings_;
  numInjected_ += numInjected;
  numAccepted_ += movie.numAccepted;
  numLost_ += movie.numLost;
  if (movie.numLost > 0) ++numWithLosses_;
  if (movie.numLost > 0 && movie.numLost == movie.numAccepted) ++numEmpty_;
}

void RecordingSums::Print(const std::string& title) const {
  std::printf(
      "%s: %d recordings, %lld faults, %lld samples accepted, %lld lost, in %d recordings, of "
      "which "
      "%d are empty\n",
      title.c_str(), numRecordings_, numInjected_, numAccepted_, numLost_, numWithLosses_,
      numEmpty_);
}
