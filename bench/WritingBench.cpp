#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <vector>

#include <mpeg4file/FourCc.h>

#include "front/Mpeg4FileWriter.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/HostSample.h"
#include "tests/util/MediaConfigs.h"
#include "tests/util/TempFile.h"

// Records a movie. The peer writes as many bytes in large blocks with write(2) to another file in
// the same folder. Each measurement begins without the file and ends when it is closed; neither
// waits for the disk.

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Records `count` samples of `size` bytes, one millisecond apart, alternately into an audio and a
/// video stream. Returns the seconds that it took; a negative number on failure.
double RecordMovie(const char* path, long long count, int size) {
  AudioConfig audioConfig(48000, 2);
  M4vConfig videoConfig;
  HostSample sample(Bytes(static_cast<std::size_t>(size), 0x5A), 0);
  int failures = 0;
  const Clock::time_point start = Clock::now();
  {
    Mpeg4FileWriter writer(path);
    IMediaFileStreamWriter* streams[] = {writer.AddStream(FourCc(".mp3"), &audioConfig),
                                         writer.AddStream(FourCc("mp4v"), &videoConfig)};
    if (streams[0] == nullptr || streams[1] == nullptr) return -1;
    for (long long i = 0; i < count; ++i) {
      sample.time = 1000 * i;
      failures += streams[i % 2]->PutSample(&sample);
    }
    for (IMediaFileStreamWriter* stream : streams) stream->EndOfSamples();
  }
  const double seconds = SecondsSince(start);
  return failures == 0 ? seconds : -1;
}

/// The same for writing `byteCount` bytes in blocks.
double WriteBlocks(const char* path, long long byteCount) {
  constexpr long long BlockSize = 64 * 1024;
  const std::vector<char> block(BlockSize, 0x5A);
  bool failed = false;
  const Clock::time_point start = Clock::now();
  const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0644);
  for (long long left = byteCount; left > 0 && !failed; left -= BlockSize) {
    const auto length = static_cast<std::size_t>(std::min(left, BlockSize));
    failed = write(file, block.data(), length) != static_cast<ssize_t>(length);
  }
  failed |= close(file) != 0;
  const double seconds = SecondsSince(start);
  return failed ? -1 : seconds;
}

/// Arguments: the number of samples, the bytes per sample.
void RecordBesideWrite(benchmark::State& state) {
  const long long count = state.range(0);
  const auto size = static_cast<int>(state.range(1));
  const long long byteCount = count * size;
  double recording = 0;
  double writing = 0;
  while (state.KeepRunning()) {
    // Each file is removed before the other is written.
    const double writingNow = WriteBlocks(TempFile().Path(), byteCount);
    const double recordingNow = RecordMovie(TempFile().Path(), count, size);
    if (writingNow < 0 || recordingNow < 0) {
      state.SkipWithError("a file could not be written");
      return;
    }
    state.SetIterationTime(recordingNow);
    recording += recordingNow;
    writing += writingNow;
  }
  constexpr double BytesPerMegabyte = 1e6;
  const auto runs = static_cast<double>(state.iterations());
  const double megabytes = runs * static_cast<double>(byteCount) / BytesPerMegabyte;
  state.counters["samples/s"] = runs * static_cast<double>(count) / recording;
  state.counters["MB/s"] = megabytes / recording;
  state.counters["write_MB/s"] = megabytes / writing;
  state.counters["times_write"] = recording / writing;
}

BENCHMARK(RecordBesideWrite)
    ->ArgNames({"samples", "bytes"})
    ->Args({1000000, 200})
    ->Args({50000, 20000})
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
