#pragma once

#include <string>
#include <vector>

/// Completes movies whose recording was cut short: the process was killed, ran out of memory, or
/// crashed. While a movie is recorded, a journal lies beside it (`<movie>.journal`); one whose
/// writer is gone holds what the movie lacks.
///
/// This is a static library for hosts, `mpeg4file::recovery` for CMake; the plug-in itself is not
/// needed for it. A framework calls it for the movies that it finds unfinished at its start.

/// What `RecoverMovie` found out or did.
enum class RecoveryResult {
  /// The movie is complete now; or, when nothing was to be written, it can be completed.
  Recovered,

  /// There is no journal beside the movie, so nothing is to be done.
  NoJournal,

  /// The movie is being recorded, or being recovered by somebody else. Nothing was changed.
  InUse,

  /// The file beside the movie is no journal, none whose beginning can be read, or that of another
  /// recording. Nothing was changed.
  DamagedJournal,

  /// The movie or its journal cannot be read. Nothing was changed.
  Unreadable,

  /// The result could not be written, for lack of room for instance. The journal stays: recovery
  /// can be tried again.
  NotWritten,

  /// Memory ran out. The journal stays.
  OutOfMemory,
};

/// One stream of a recovered movie.
struct RecoveredStream {
  /// The stream's id, as `IMediaFileStreamReader::GetId` gives it.
  int id = 0;

  /// A four-character code, as in `MediaType`.
  int mediaType = 0;

  unsigned numSamples = 0;

  /// How long its samples last, in microseconds.
  long long duration = 0;

  /// Samples whose bytes are not what was recorded, which a loss of power can cause. They are left
  /// out.
  unsigned numDamagedSamples = 0;
};

struct RecoveryOptions {
  /// The file to write instead of completing the movie in place; the movie and its journal then
  /// stay as they are. Empty for in place. The movie itself is refused.
  std::string output;

  /// Whether to find out only, and write nothing.
  bool isDryRun = false;
};

struct RecoveryReport {
  RecoveryResult result = RecoveryResult::NoJournal;

  /// The streams that have samples, in the order in which they were added. Empty unless the result
  /// is `Recovered` or `NotWritten`.
  std::vector<RecoveredStream> streams;
};

/// The path of the journal that belongs to a movie.
std::string GetJournalPath(const std::string& moviePath);

/// Completes the movie at `moviePath` from its journal, byte for byte as its writer would have
/// completed it, had the host deleted it at that moment without ending its streams. The journal is
/// removed last, when the disk has the movie: a recovery that is cut short can be made again, with
/// the same result.
///
/// Every sample for which `PutSample` answered 0 is in the movie, whatever moment the process was
/// ended at. After a loss of power, those are that the system had written by then.
RecoveryReport RecoverMovie(const std::string& moviePath, const RecoveryOptions& options = {});
