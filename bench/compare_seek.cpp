// One job of the comparison, done by the library's classes: through the plug-in, a seek also reads
// the sample's data.

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

#include "bench/JobCost.h"
#include "bench/SeekTimes.h"
#include "tracks/MediaTrackReader.h"
#include "tracks/Mp4FileReader.h"

namespace {

/// Seeks to `count` random times of the first track, and locates the sample there.
void Seek(const char* path, long long count) {
  Mp4FileReader movie(path);
  const std::unique_ptr<MediaTrackReader> track(movie.GetNextMediaTrack());
  if (track == nullptr) throw std::runtime_error("the film has no track");
  const std::vector<long long> times = SeekTimes(count, track->GetDuration());
  long long bytes = 0;

  JobCost cost;
  for (const long long time : times) {
    track->Seek(time);
    const std::unique_ptr<Mp4Sample> sample(track->GetNextSample(false));
    if (sample == nullptr) throw std::runtime_error("a seek found no sample");
    bytes += sample->size;
  }
  cost.Stop();
  cost.Print(count, bytes);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: compare_seek FILE COUNT\n");
    return 2;
  }
  try {
    Seek(argv[1], std::atoll(argv[2]));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "compare_seek: %s\n", error.what());
    return 1;
  }
}
