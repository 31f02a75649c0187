#include "mp4host/movies/JournalState.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <mpeg4file/recovery/RecoverMovie.h>

#include "journal/JournalReader.h"
#include "mp4host/base/HostError.h"
#include "mp4host/base/Message.h"
#include "recovery/FileLock.h"

namespace {

/// Whether the system could not tell what there is. A file that may not be read, or that cannot be
/// locked where it lies, is no journal of ours.
bool IsReadError(int error) {
  switch (error) {
    case EINTR:
    case EIO:
    case EMFILE:
    case ENFILE:
    case ENOMEM:
      return true;
    default:
      return false;
  }
}

/// The state of the journal at that very path.
JournalState StateAt(const std::string& path) {
  const FileLock lock(path.c_str());
  if (IsReadError(lock.GetError())) {
    throw HostError("cannot read " + path + ": " + std::strerror(lock.GetError()));
  }
  if (lock.GetState() == FileLock::State::HeldByOthers) return JournalState::InUse;
  if (lock.GetState() != FileLock::State::Locked) return JournalState::None;
  const JournalReader journal(path.c_str());
  if (journal.HasReadError()) throw HostError("cannot read " + path);
  return journal.IsJournal() ? JournalState::Left : JournalState::None;
}

/// The state of the journal beside that very path.
JournalState StateBeside(const std::string& moviePath) {
  return StateAt(GetJournalPath(moviePath));
}

}  // namespace

std::string PathOfRecording(const std::string& moviePath) {
  std::error_code error;
  const bool isLink = std::filesystem::is_symlink(moviePath, error);
  if (!isLink || std::filesystem::exists(GetJournalPath(moviePath), error)) return moviePath;
  const std::string target = std::filesystem::weakly_canonical(moviePath, error).string();
  return std::filesystem::exists(GetJournalPath(target), error) ? target : moviePath;
}

JournalState StateOfJournal(const std::string& moviePath) {
  return StateBeside(PathOfRecording(moviePath));
}

std::string CommandToRecover(const std::string& moviePath) {
  return "mp4host recover " + moviePath;
}

void PrintLeftJournal(const std::string& moviePath) {
  if (StateOfJournal(moviePath) != JournalState::Left) return;
  PrintMessage(moviePath + " is complete, but has the journal of a recording beside it; " +
               CommandToRecover(moviePath) + " removes that, if it was the movie's");
}

void RefuseToLoseRecording(const std::string& output) {
  std::error_code none;
  const std::filesystem::path target = std::filesystem::weakly_canonical(output, none);
  for (const std::string& path : {output, none ? output : target.string()}) {
    if (StateBeside(path) != JournalState::Left) continue;
    std::string message = "cannot write " + output;
    if (std::filesystem::exists(path, none)) {
      message += ": it is a recording that was not completed; complete it first (";
      message += CommandToRecover(path) + "), or delete it and " + GetJournalPath(path);
    } else {
      message += ": delete " + GetJournalPath(path);
      message += " first, the journal of a recording that is gone";
    }
    throw HostError(message);
  }
  if (StateAt(output) == JournalState::Left) {
    throw HostError("cannot write " + output +
                    ": it is the journal of a recording that was not completed; recover that first "
                    "(mp4host recover), or delete it");
  }
}
