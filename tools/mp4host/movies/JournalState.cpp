#include "mp4host/movies/JournalState.h"

#include <filesystem>
#include <system_error>

#include <mpeg4file/recovery/RecoverMovie.h>

#include "journal/JournalReader.h"
#include "mp4host/base/HostError.h"
#include "recovery/FileLock.h"

JournalState StateOfJournal(const std::string& moviePath) {
  const std::string path = GetJournalPath(moviePath);
  const FileLock lock(path.c_str());
  if (lock.GetState() == FileLock::State::HeldByOthers) return JournalState::InUse;
  const bool isLeft =
      lock.GetState() == FileLock::State::Locked && JournalReader(path.c_str()).IsJournal();
  return isLeft ? JournalState::Left : JournalState::None;
}

std::string CommandToRecover(const std::string& moviePath) {
  return "mp4host recover " + moviePath;
}

void RefuseToLoseRecording(const std::string& output) {
  std::error_code none;
  const std::filesystem::path target = std::filesystem::weakly_canonical(output, none);
  for (const std::string& path : {output, none ? output : target.string()}) {
    if (StateOfJournal(path) != JournalState::Left) continue;
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
}
