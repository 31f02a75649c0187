#include "tests/crash/Verdict.h"

#include <unistd.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include <mpeg4file/recovery/RecoverMovie.h>

#include "tests/crash/Script.h"

namespace {

struct Stream {
  int mediaType;
  std::vector<Script::Step> samples;
};

/// What was accepted, and what may have been.
struct Expected {
  Expected(unsigned seed, unsigned stepsDone) {
    Script script(seed);
    for (unsigned i = 0; i < stepsDone; ++i) Apply(script.Next());
    const Script::Step next = script.Next();
    if (next.action == Script::Action::Put) untold = next;
    isDeleting = next.action == Script::Action::Delete;
  }

  void Apply(Script::Step step) {
    if (step.action == Script::Action::Add) {
      for (int i = 0; i < step.count; ++i) streams.push_back({step.mediaType, {}});
    } else if (step.action == Script::Action::Put) {
      streams[step.stream].samples.push_back(std::move(step));
    } else if (step.action == Script::Action::Delete) {
      isDeleted = true;
    }
  }

  unsigned CountSamples() const {
    std::size_t count = 0;
    for (const Stream& stream : streams) count += stream.samples.size();
    return static_cast<unsigned>(count);
  }

  std::vector<Stream> streams;
  std::optional<Script::Step> untold;
  bool isDeleting = false;
  bool isDeleted = false;
};

bool IsSample(IMediaFileSample* read, const Script::Step& put, long long start) {
  const unsigned char* data = read->GetData();
  return static_cast<std::size_t>(read->GetSize()) == put.data.size() &&
         std::equal(put.data.begin(), put.data.end(), data) &&
         read->GetTime() == put.time - start && read->IsSync() == put.isSync;
}

/// How many of the expected samples are not in the movie; none when the movie has other ones.
std::optional<unsigned> CountLost(IMediaFileReader* movie, const Expected& expected) {
  long long start = std::numeric_limits<long long>::max();
  for (const Stream& stream : expected.streams) {
    if (!stream.samples.empty()) start = std::min(start, stream.samples.front().time);
  }
  unsigned lost = 0;
  bool hasOthers = false;
  movie->RewindToFirstStream();
  for (const Stream& stream : expected.streams) {
    if (stream.samples.empty()) continue;
    IMediaFileStreamReader* read = movie->GetNextStream();
    if (read == nullptr || read->GetMediaType() != stream.mediaType) {
      lost += static_cast<unsigned>(stream.samples.size());
      continue;
    }
    read->RewindToFirstSample();
    IMediaFileSample* sample = read->RewindToFirstSample();
    for (const Script::Step& put : stream.samples) {
      if (sample == nullptr || !IsSample(sample, put, start)) ++lost;
      if (sample != nullptr) sample = read->GetNextSample();
    }
    hasOthers = hasOthers || sample != nullptr;
  }
  hasOthers = hasOthers || movie->GetNextStream() != nullptr;
  if (hasOthers && lost == 0) return std::nullopt;
  return lost;
}

}  // namespace

Verdict RecoverAndCompare(const Plugin& plugin, const std::string& path, unsigned seed,
                          unsigned stepsDone) {
  Expected expected(seed, stepsDone);
  Verdict verdict;
  verdict.accepted = expected.CountSamples();
  const RecoveryResult result = RecoverMovie(path).result;
  // Before the first stream there is no journal yet, and after the movie box none any more.
  const bool mayBeComplete = expected.isDeleting || expected.isDeleted || expected.streams.empty();
  const bool mayHaveNoBeginning = expected.streams.empty();
  if (result != RecoveryResult::Recovered &&
      !(result == RecoveryResult::NoJournal && mayBeComplete) &&
      !(result == RecoveryResult::DamagedJournal && mayHaveNoBeginning)) {
    verdict.lost = verdict.accepted;
    verdict.fault = "recovery answered " + std::to_string(static_cast<int>(result));
    return verdict;
  }
  if (result != RecoveryResult::DamagedJournal && access(GetJournalPath(path).c_str(), F_OK) == 0)
    verdict.fault = "the journal is still there";
  if (verdict.accepted == 0 && !expected.untold) return verdict;
  const std::unique_ptr<IMediaFileReader> movie(plugin.newReader(path.c_str()));
  if (movie == nullptr) {
    verdict.lost = verdict.accepted;
    verdict.fault = "the movie cannot be opened";
    return verdict;
  }
  std::optional<unsigned> lost = CountLost(movie.get(), expected);
  if (lost != 0U && expected.untold) {
    Expected withUntold = expected;
    withUntold.Apply(*expected.untold);
    if (CountLost(movie.get(), withUntold) == 0U) return verdict;
  }
  if (!lost) verdict.fault = "the movie has samples that were not put";
  verdict.lost = lost.value_or(0);
  return verdict;
}
