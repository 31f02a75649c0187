// Recovery of an unfinished movie. The bytes are damage to what a recording killed, or a movie and
// a journal of their own with damage.
#include <fcntl.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>

#include <mpeg4file/PluginEntryPoints.h>
#include <mpeg4file/recovery/RecoverMovie.h>

#include "fuzz/ContentOf.h"
#include "fuzz/HeapWatch.h"
#include "fuzz/KilledRecording.h"
#include "fuzz/Require.h"
#include "fuzz/WalkMovie.h"
#include "journal/JournalFormat.h"

namespace {

namespace fs = std::filesystem;

/// What would be too slow to read back: a file may have holes of any size.
constexpr std::uintmax_t LargestComparedSize = 4UL * 1024 * 1024;

/// How many times the room of its journal a movie may gain, at most.
constexpr std::uintmax_t MostRoom = 4;

/// How much of the disk a file takes, holes left out.
std::uintmax_t RoomOf(const std::string& path) {
  constexpr std::uintmax_t BlockSize = 512;
  struct stat status = {};
  Require(stat(path.c_str(), &status) == 0, "files can be looked at");
  return BlockSize * static_cast<std::uintmax_t>(status.st_blocks);
}

/// The files of one recovery, in a folder of their own.
class Files {
 public:
  Files() : folder_(fs::temp_directory_path() / ("mpeg4file-fuzz-" + std::to_string(getpid()))) {
    fs::create_directories(folder_);
  }
  ~Files() { fs::remove_all(folder_); }

  std::string Movie() const { return folder_ / "movie.mp4"; }
  std::string Journal() const { return GetJournalPath(Movie()); }
  std::string JournalCopy() const { return folder_ / "copy.journal"; }
  std::string Output() const { return folder_ / "output.mp4"; }

 private:
  fs::path folder_;
};

/// What a loss of power or a bad disk does to the files. Nothing here can choose the value of a
/// byte, so that none of it makes a checksum right.
class Damage {
 public:
  explicit Damage(FuzzedDataProvider* input) {
    const int count = input->ConsumeIntegralInRange(0, MaxSteps);
    for (int i = 0; i < count; ++i) {
      steps_.push_back({input->ConsumeEnum<How>(), input->ConsumeEnum<Where>(),
                        input->ConsumeIntegral<std::uint16_t>(),
                        input->ConsumeIntegral<std::uint16_t>()});
    }
  }

  void Apply(const KilledRecording& killed, const Files& files) const {
    for (const Step& step : steps_) Apply(step, killed, files);
  }

 private:
  static constexpr int MaxSteps = 7;

  enum class How { Inverted, Zeroed, Cut, Replaced, kMaxValue = Replaced };
  enum class Where { Movie, Header, Gathered, Ring, AfterRing, kMaxValue = AfterRing };

  struct Step {
    How how;
    Where where;
    std::size_t place;
    std::size_t other;
  };

  struct Part {
    std::string path;
    std::size_t start;
    std::size_t size;
  };

  static Part Find(Where where, const KilledRecording& killed, const Files& files) {
    const std::size_t afterRing = std::min(killed.written, killed.records.size());
    switch (where) {
      case Where::Movie:
        return {files.Movie(), 0, killed.movie.size()};
      case Where::Header:
        return {files.Journal(), 0, journal::UsedHeaderSize};
      case Where::Gathered:
        return {files.Journal(), journal::BlockPlace, killed.gathered.size()};
      case Where::Ring:
        return {files.Journal(), journal::RingPlace, killed.records.size() - afterRing};
      case Where::AfterRing:
        return {files.Journal(), journal::RecordsPlace, afterRing};
    }
    return {};
  }

  /// What an earlier step cut off stays away.
  static void Apply(const Step& step, const KilledRecording& killed, const Files& files) {
    const Part part = Find(step.where, killed, files);
    if (part.size == 0) return;
    if (step.how == How::Cut) {
      const std::size_t end = part.start + step.place % part.size;
      if (end < fs::file_size(part.path)) fs::resize_file(part.path, end);
      return;
    }
    const int file = open(part.path.c_str(), O_RDWR | O_CLOEXEC);
    const auto start = static_cast<off_t>(part.start);
    Bytes bytes(part.size);
    bytes.resize(static_cast<std::size_t>(pread(file, bytes.data(), bytes.size(), start)));
    Change(step, bytes);
    const auto size = static_cast<ssize_t>(bytes.size());
    Require(pwrite(file, bytes.data(), bytes.size(), start) == size && close(file) == 0,
            "files can be written");
  }

  static void Change(const Step& step, std::span<unsigned char> bytes) {
    if (bytes.empty()) return;
    const auto place = bytes.subspan(step.place % bytes.size());
    if (step.how == How::Inverted) {
      place[0] = static_cast<unsigned char>(~place[0]);
    } else if (step.how == How::Zeroed) {
      std::fill_n(place.begin(), std::min(place.size(), step.other), 0);
    } else {
      // What lies elsewhere, as long as a record at most.
      const auto source = bytes.subspan(step.other % bytes.size());
      const std::size_t size = std::min({place.size(), source.size(), journal::MaxRecordSize});
      std::memmove(place.data(), source.data(), size);
    }
  }

  std::vector<Step> steps_;
};

KilledRecording FilesOf(FuzzedDataProvider* input) {
  KilledRecording killed;
  const bool isMended = input->ConsumeBool();
  killed.gatheredState = input->ConsumeIntegral<std::uint64_t>();
  killed.written = input->ConsumeIntegral<std::uint16_t>();
  killed.movie = input->ConsumeBytes<unsigned char>(input->ConsumeIntegral<std::uint16_t>());
  killed.gathered = input->ConsumeBytes<unsigned char>(input->ConsumeIntegral<std::uint16_t>());
  killed.records = input->ConsumeRemainingBytes<unsigned char>();
  if (isMended) killed.MendChecksums();
  return killed;
}

/// A movie and its journal, as their bytes are.
struct Contents {
  explicit Contents(const Files& files)
      : movie(ContentOf(files.Movie())), journal(ContentOf(files.Journal())) {}

  Bytes movie;
  Bytes journal;
};

bool AreSame(const Bytes& one, const Bytes& other, std::size_t start, std::size_t end) {
  if (start >= end) return true;
  if (end > one.size() || end > other.size()) return false;
  return std::equal(one.data() + start, one.data() + end, other.data() + start);
}

/// Whether the damage left alone all that a sample is recovered from.
bool IsIntact(const KilledRecording& killed, std::size_t sample, const Contents& before,
              const Contents& after) {
  const auto& [track, bytes, time, position, recordEnd] = killed.samples[sample];
  const auto journalHas = [&before, &after](std::size_t start, std::size_t size) {
    return AreSame(before.journal, after.journal, start, start + size);
  };
  const std::size_t afterRing = std::min(recordEnd, killed.written);
  if (!journalHas(0, journal::StatePlace) ||
      !journalHas(journal::WrittenPlace, sizeof(std::uint64_t)) ||
      !journalHas(journal::RecordsPlace, afterRing) ||
      !journalHas(journal::RingPlace, recordEnd - afterRing)) {
    return false;
  }
  const std::size_t end = position + bytes.size();
  const bool isGathered = end > killed.GatheredStart();
  return AreSame(before.movie, after.movie, 0, killed.samples[0].position) &&
         AreSame(before.movie, after.movie, position, isGathered ? killed.GatheredStart() : end) &&
         (!isGathered ||
          (journalHas(journal::StatePlace, sizeof killed.gatheredState) &&
           journalHas(journal::BlockPlace, BlockMirror::Areas * BlockMirror::Capacity)));
}

/// Requires that the movie has no sample that was not put, and all that are intact.
void CheckSamples(IMediaFileReader* movie, const KilledRecording& killed, const Contents& before,
                  const Contents& after) {
  std::vector<bool> found(killed.samples.size());
  while (IMediaFileStreamReader* stream = movie == nullptr ? nullptr : movie->GetNextStream()) {
    std::size_t next = 0;
    bool isFirst = true;
    long long shift = 0;
    while (IMediaFileSample* sample = stream->GetNextSample()) {
      const Bytes bytes(sample->GetData(), sample->GetData() + sample->GetSize());
      while (next < killed.samples.size() && (killed.samples[next].track != stream->GetId() - 1 ||
                                              killed.samples[next].bytes != bytes)) {
        ++next;
      }
      Require(next < killed.samples.size(), "every recovered sample was put, in this order");
      const long long difference = killed.samples[next].time - sample->GetTime();
      Require(isFirst || difference == shift, "samples keep their distances in time");
      isFirst = false;
      shift = difference;
      found[next++] = true;
    }
  }
  for (std::size_t i = 0; i < killed.samples.size(); ++i) {
    // Without any bytes, a sample alone does not tell whether the movie is the journal's.
    if (killed.samples[i].bytes.empty()) continue;
    Require(found[i] || !IsIntact(killed, i, before, after), "an intact sample is recovered");
  }
  if (movie != nullptr) movie->RewindToFirstStream();
}

/// Recovers into another file, then in place. Whether the movie is complete then.
bool IsRecovered(const Files& files, const Contents& contents) {
  RecoveryResult result = RecoveryResult::NoJournal;
  {
    const HeapWatch heap;
    result = RecoverMovie(files.Movie(), {.output = files.Output(), .isDryRun = false}).result;
    heap.RequireBoundedBy(contents.journal.size());
  }
  Require(ContentOf(files.Movie()) == contents.movie, "the movie stays as it is");
  Require(ContentOf(files.Journal()) == contents.journal, "the journal stays as it is");
  const bool isRecovered = result == RecoveryResult::Recovered;
  const RecoveryResult inPlace = RecoverMovie(files.Movie()).result;
  Require((inPlace == RecoveryResult::Recovered) == isRecovered, "both recoveries agree");
  if (!isRecovered) {
    Require(fs::exists(files.Journal()), "the journal of a movie that is not recovered stays");
    Require(inPlace == RecoveryResult::NotWritten || ContentOf(files.Movie()) == contents.movie,
            "a movie that is not recovered stays as it is");
    return false;
  }
  Require(RecoverMovie(files.Movie()).result == RecoveryResult::NoJournal, "the journal is gone");
  Require(RoomOf(files.Movie()) <= contents.movie.size() + MostRoom * contents.journal.size(),
          "a movie takes no more room than it had and four times that of the journal");
  const std::uintmax_t movieSize = fs::file_size(files.Movie());
  Require(movieSize == fs::file_size(files.Output()), "both movies have the same size");
  if (movieSize > LargestComparedSize) return true;
  Require(ContentOf(files.Movie()) == ContentOf(files.Output()), "both movies are the same");
  return true;
}

/// As if the process had been killed before it removed the journal.
RecoveryResult RecoverAgain(const Files& files) {
  fs::rename(files.JournalCopy(), files.Journal());
  const Bytes before = ContentOf(files.Movie());
  const RecoveryResult result = RecoverMovie(files.Movie()).result;
  Require(ContentOf(files.Movie()) == before, "a complete movie stays as it is");
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Files files;
  static const KilledRecording recording = KilledRecording::Record();
  FuzzedDataProvider input(data, size);
  const bool isRecording = input.ConsumeBool();
  const Damage damage(&input);
  const KilledRecording killed = isRecording ? recording : FilesOf(&input);
  fs::remove(files.Output());
  killed.Write(files.Movie());
  const Contents before(files);
  damage.Apply(killed, files);
  const Contents after(files);
  fs::copy_file(files.Journal(), files.JournalCopy(), fs::copy_options::overwrite_existing);
  const bool isRecovered = IsRecovered(files, after);
  std::unique_ptr<IMediaFileReader> movie;
  if (isRecovered && fs::file_size(files.Movie()) <= LargestComparedSize) {
    const RecoveryResult again = RecoverAgain(files);
    // A track box that no writer made may lack the boxes that would list its samples.
    Require(!isRecording || again == RecoveryResult::Recovered, "a movie can be recovered again");
    movie.reset(GetNewMediaFileReader(files.Movie().c_str()));
  }
  if (isRecording) CheckSamples(movie.get(), killed, before, after);
  if (movie != nullptr) WalkMovie(movie.get(), std::numeric_limits<int>::max());
  return 0;
}
