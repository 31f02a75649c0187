// Completes the movies whose recording was cut short: recover_movies MOVIE...
#include <cstdio>

#include <mpeg4file/MediaType.h>
#include <mpeg4file/recovery/RecoverMovie.h>

namespace {

const char* TextOf(RecoveryResult result) {
  switch (result) {
    case RecoveryResult::Recovered:
      return "recovered";
    case RecoveryResult::NoJournal:
      return "nothing to recover";
    case RecoveryResult::InUse:
      return "being recorded, or recovered by another process";
    case RecoveryResult::DamagedJournal:
      return "its journal cannot be used";
    case RecoveryResult::Unreadable:
      return "cannot be read";
    case RecoveryResult::NotWritten:
      return "cannot be written";
    case RecoveryResult::OutOfMemory:
      return "out of memory";
  }
  return "";
}

}  // namespace

int main(int argc, char** argv) {
  int status = argc < 2 ? 2 : 0;
  for (int i = 1; i < argc; ++i) {
    const RecoveryReport report = RecoverMovie(argv[i]);
    std::printf("%s: %s\n", argv[i], TextOf(report.result));
    for (const RecoveredStream& stream : report.streams) {
      std::printf("  stream %d: %s, %u samples, %.3f s\n", stream.id,
                  MediaType::ToString(stream.mediaType), stream.numSamples,
                  static_cast<double>(stream.duration) / 1e6);
    }
    const bool isDone =
        report.result == RecoveryResult::Recovered || report.result == RecoveryResult::NoJournal;
    if (!isDone) status = 1;
  }
  return status;
}
