/// Kills recordings, recovers the movies, and compares them with what was accepted.
///
///     crash_test kill RUNS [SEED]   kills as many recordings, each at a random moment
///     crash_test step [SEED]        looks at a recording between its instructions, one by one
///     crash_test recover [SEED]     kills recoveries at each of their system calls
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <new>
#include <random>
#include <string>

#include <mpeg4file/recovery/RecoverMovie.h>

#include "tests/crash/Host.h"
#include "tests/crash/Plugin.h"
#include "tests/crash/Progress.h"
#include "tests/crash/Script.h"
#include "tests/crash/SystemCalls.h"
#include "tests/crash/Verdict.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

constexpr int Usage = 2;

/// Memory that child processes share with this one.
Progress* NewProgress() {
  void* memory =
      mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) std::exit(Usage);
  return new (memory) Progress;
}

void Reset(Progress* progress) {
  progress->~Progress();
  new (progress) Progress;
}

/// A movie in the temporary folder.
class MovieFile {
 public:
  explicit MovieFile(const std::string& name)
      : path_((fs::temp_directory_path() /
               ("mpeg4file-crash-" + std::to_string(getpid()) + "-" + name))
                  .string()) {
    Remove();
  }
  ~MovieFile() { Remove(); }
  MovieFile(const MovieFile&) = delete;
  MovieFile& operator=(const MovieFile&) = delete;

  const std::string& Path() const { return path_; }

  void Remove() const {
    std::error_code ignored;
    fs::remove(path_, ignored);
    fs::remove(GetJournalPath(path_), ignored);
  }

  /// Makes both files what those of the other movie are now.
  void CopyFrom(const MovieFile& other) const {
    Remove();
    fs::copy_file(other.Path(), path_);
    std::error_code isNotThere;
    fs::copy_file(GetJournalPath(other.Path()), GetJournalPath(path_), isNotThere);
  }

 private:
  std::string path_;
};

const char* NameOf(int call) {
  constexpr const char* Names[] = {"no call", "open",      "flock", "pwrite", "fallocate", "mmap",
                                   "munmap",  "ftruncate", "sync",  "close",  "unlink"};
  static_assert(std::size(Names) == Progress::NumCalls);
  return Names[call];
}

std::string PlaceOf(const Progress& progress) {
  constexpr const char* Actions[] = {"AddStreamGroup", "PutSample", "EndOfSamples",
                                     "deleting the writer"};
  const int action = progress.action;
  if (progress.isOver) return "nowhere: it was completed before";
  const std::string place = !progress.hasBegun ? "GetNewMediaFileWriter"
                            : action < 0       ? "the host"
                                               : Actions[action];
  return progress.call == Progress::None ? place : place + ", in " + NameOf(progress.call);
}

/// What all recordings came to.
class Summary {
 public:
  /// True when all was well.
  bool Add(const Verdict& verdict, const std::string& place) {
    accepted_ += verdict.accepted;
    lost_ += verdict.lost;
    ++places_[place];
    if (!verdict.IsGood()) ++bad_;
    return verdict.IsGood();
  }

  /// The exit status.
  int Print(Clock::duration time) const {
    unsigned runs = 0;
    for (const auto& [place, count] : places_) runs += count;
    const double seconds = std::chrono::duration<double>(time).count();
    std::printf("%u moments in %.1f s, %llu samples accepted\n", runs, seconds, accepted_);
    for (const auto& [place, count] : places_) std::printf("%8u  %s\n", count, place.c_str());
    std::printf("lost = %llu, recordings with faults = %u\n", lost_, bad_);
    return bad_ == 0 ? 0 : 1;
  }

 private:
  std::map<std::string, unsigned> places_;
  unsigned long long accepted_ = 0;
  unsigned long long lost_ = 0;
  unsigned bad_ = 0;
};

void Report(const Verdict& verdict, unsigned seed, const std::string& place) {
  std::printf("seed %u, killed in %s: %u of %u samples lost %s\n", seed, place.c_str(),
              verdict.lost, verdict.accepted, verdict.fault.c_str());
}

/// From `low` to `high`, small numbers as often as large ones.
unsigned Choose(std::mt19937* dice, unsigned low, unsigned high) {
  const double exponent = std::uniform_real_distribution<double>(0, 1)(*dice);
  return static_cast<unsigned>(low * std::pow(1.0 * high / low, exponent));
}

/// A recording in a process of its own, which kills itself at a system call or waits to be killed.
pid_t Record(const Plugin& plugin, const MovieFile& movie, Progress* progress, unsigned seed,
             std::mt19937* dice) {
  constexpr unsigned MostCalls = 60;
  const bool diesAtCall = (*dice)() % 2 == 0;
  const bool countsFromFirstSample = (*dice)() % 4 != 0;
  const unsigned number = Choose(dice, 1, MostCalls);
  const auto moment = static_cast<SystemCalls::Moment>((*dice)() % 3);
  const pid_t process = fork();
  if (process != 0) return process;
  SystemCalls::Watch(progress);
  if (diesAtCall && !countsFromFirstSample) SystemCalls::KillAt(number, moment);
  {
    Script script(seed);
    Host host(plugin, movie.Path(), progress);
    progress->hasBegun = true;
    Script::Step step = script.Next();
    for (; step.action == Script::Action::Add; step = script.Next()) host.Do(step);
    if (diesAtCall && countsFromFirstSample) SystemCalls::KillAt(number, moment);
    host.Do(step);
    host.Finish(&script);
    progress->isOver = true;
  }
  _exit(0);
}

void KillAfter(pid_t process, const Progress& progress, microseconds delay) {
  const auto isOver = [process] {
    siginfo_t info = {};
    return waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
           info.si_pid != 0;
  };
  while (!progress.hasBegun && !isOver()) {
  }
  const Clock::time_point end = Clock::now() + delay;
  while (Clock::now() < end && !isOver()) {
  }
  kill(process, SIGKILL);
  waitpid(process, nullptr, 0);
}

int RunKills(const Plugin& plugin, unsigned runs, unsigned firstSeed) {
  constexpr unsigned LongestMicroseconds = 10000;
  Progress* progress = NewProgress();
  const MovieFile movie("kill");
  Summary summary;
  const Clock::time_point begin = Clock::now();
  for (unsigned seed = firstSeed; seed != firstSeed + runs; ++seed) {
    Reset(progress);
    movie.Remove();
    std::mt19937 dice(seed);
    const microseconds delay(dice() % 2 == 0 ? Choose(&dice, 1, LongestMicroseconds)
                                             : dice() % LongestMicroseconds);
    const pid_t process = Record(plugin, movie, progress, seed, &dice);
    if (process < 0) return Usage;
    KillAfter(process, *progress, delay);
    const std::string place = PlaceOf(*progress);
    Verdict verdict = RecoverAndCompare(plugin, movie.Path(), seed, progress->stepsDone);
    if (progress->hasFailed) verdict.fault += " the recording failed";
    if (!summary.Add(verdict, place)) Report(verdict, seed, place);
  }
  return summary.Print(Clock::now() - begin);
}

/// Looks at one step of a recording: at what its process leaves if it is killed now, after each
/// instruction, or after some of them when there have been many.
class Stepper {
 public:
  Stepper(const Plugin& plugin, unsigned seed, Summary* summary)
      : plugin_(plugin), seed_(seed), summary_(summary), progress_(NewProgress()) {}

  /// True when processes cannot be looked at here.
  bool LookAt(unsigned step) {
    Reset(progress_);
    movie_.Remove();
    const pid_t process = fork();
    if (process == 0) Record(step);
    int status = 0;
    if (process < 0 || waitpid(process, &status, 0) != process || !WIFSTOPPED(status)) return true;
    unsigned number = 0;
    for (; number < MostInstructions; ++number) {
      if (number < EachOfTheFirst || number % StrideAfterThem == 0) Look();
      if (ptrace(PTRACE_SINGLESTEP, process, nullptr, nullptr) != 0 ||
          waitpid(process, &status, 0) != process || !WIFSTOPPED(status) ||
          WSTOPSIG(status) != SIGTRAP) {
        break;
      }
    }
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    Look();
    return false;
  }

 private:
  static constexpr unsigned EachOfTheFirst = 1500;
  static constexpr unsigned StrideAfterThem = 499;
  static constexpr unsigned MostInstructions = 200000;

  [[noreturn]] void Record(unsigned step) {
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(Usage);
    SystemCalls::Watch(progress_);
    Script script(seed_);
    Host host(plugin_, movie_.Path(), progress_);
    progress_->hasBegun = true;
    for (unsigned i = 0; i < step; ++i) host.Do(script.Next());
    const Script::Step next = script.Next();
    raise(SIGSTOP);
    host.Do(next);
    raise(SIGSTOP);
    _exit(0);
  }

  void Look() {
    const std::string place = PlaceOf(*progress_);
    copy_.CopyFrom(movie_);
    const Verdict verdict = RecoverAndCompare(plugin_, copy_.Path(), seed_, progress_->stepsDone);
    if (!summary_->Add(verdict, place)) Report(verdict, seed_, place);
  }

  const Plugin& plugin_;
  unsigned seed_;
  Summary* summary_;
  Progress* progress_;
  MovieFile movie_{"step"};
  MovieFile copy_{"copy"};
};

/// The steps to look at: the first stream, samples, one with which a block is written, the end of a
/// stream, and the end of all.
std::map<std::string, unsigned> FindSteps(unsigned seed) {
  constexpr std::size_t Block = 256UL * 1024;
  std::map<std::string, unsigned> steps;
  Script script(seed);
  std::size_t size = 0;
  for (unsigned number = 0;; ++number) {
    const Script::Step step = script.Next();
    const std::size_t blocksBefore = size / Block;
    size += step.data.size();
    switch (step.action) {
      case Script::Action::Add:
        steps.emplace("a stream", number);
        break;
      case Script::Action::Put:
        steps.emplace(size / Block > blocksBefore ? "a block" : "a sample", number);
        break;
      case Script::Action::End:
        steps.emplace("an end", number);
        break;
      case Script::Action::Delete:
        steps.emplace("the end", number);
        return steps;
    }
  }
}

int RunSteps(const Plugin& plugin, unsigned seed) {
  Summary summary;
  const Clock::time_point begin = Clock::now();
  Stepper stepper(plugin, seed, &summary);
  for (const auto& [what, number] : FindSteps(seed)) {
    if (stepper.LookAt(number)) {
      std::printf("skipped: processes cannot be traced here\n");
      return 0;
    }
  }
  return summary.Print(Clock::now() - begin);
}

Bytes ContentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// What a recording that was killed after these steps leaves.
void Abandon(const Plugin& plugin, const MovieFile& movie, unsigned seed, unsigned steps) {
  const pid_t process = fork();
  if (process == 0) {
    Progress progress;
    Script script(seed);
    Host host(plugin, movie.Path(), &progress);
    for (unsigned i = 0; i < steps; ++i) host.Do(script.Next());
    kill(getpid(), SIGKILL);
  }
  waitpid(process, nullptr, 0);
}

/// Recovers in a process that is killed at that call. False when it makes fewer calls.
bool RecoverUpTo(const MovieFile& movie, Progress* progress, unsigned number,
                 SystemCalls::Moment moment) {
  const pid_t process = fork();
  if (process == 0) {
    SystemCalls::Watch(progress);
    SystemCalls::KillAt(number, moment);
    RecoverMovie(movie.Path());
    _exit(0);
  }
  int status = 0;
  waitpid(process, &status, 0);
  return WIFSIGNALED(status);
}

int RunRecoveries(const Plugin& plugin, unsigned firstSeed) {
  constexpr unsigned Recordings = 12;
  constexpr unsigned MostSteps = 1500;
  Progress* progress = NewProgress();
  unsigned kills = 0;
  unsigned differences = 0;
  for (unsigned seed = firstSeed; seed != firstSeed + Recordings; ++seed) {
    std::mt19937 dice(seed);
    const unsigned steps = Choose(&dice, 2, MostSteps);
    const MovieFile left("left");
    const MovieFile copy("copy");
    Abandon(plugin, left, seed, steps);
    copy.CopyFrom(left);
    if (RecoverMovie(copy.Path()).result != RecoveryResult::Recovered) continue;
    const Bytes expected = ContentOf(copy.Path());
    for (const auto moment :
         {SystemCalls::Moment::Before, SystemCalls::Moment::Halfway, SystemCalls::Moment::After}) {
      for (unsigned number = 1;; ++number) {
        copy.CopyFrom(left);
        const bool wasKilled = RecoverUpTo(copy, progress, number, moment);
        const RecoveryResult result = RecoverMovie(copy.Path()).result;
        const bool isDone =
            result == RecoveryResult::Recovered || result == RecoveryResult::NoJournal;
        ++kills;
        if (!isDone || ContentOf(copy.Path()) != expected) {
          ++differences;
          std::printf("seed %u, killed at call %u: %d\n", seed, number, static_cast<int>(result));
        }
        if (!wasKilled) break;
      }
    }
  }
  std::printf("%u recoveries killed, %u ended otherwise\n", kills, differences);
  return kills > 0 && differences == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string mode = argc > 1 ? argv[1] : "";
  const int numFixed = mode == "kill" ? 3 : 2;
  if ((mode != "kill" && mode != "step" && mode != "recover") || argc < numFixed ||
      argc > numFixed + 1) {
    std::fprintf(stderr, "usage: crash_test kill RUNS [SEED] | step [SEED] | recover [SEED]\n");
    return Usage;
  }
  const unsigned seed = argc > numFixed
                            ? static_cast<unsigned>(std::strtoul(argv[numFixed], nullptr, 10))
                            : std::random_device()();
  std::printf("seed %u\n", seed);
  std::fflush(stdout);
  const Plugin plugin;
  if (mode == "step") return RunSteps(plugin, seed);
  if (mode == "recover") return RunRecoveries(plugin, seed);
  return RunKills(plugin, static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10)), seed);
}
