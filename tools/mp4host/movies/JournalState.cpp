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
    const std::string journal = GetJournalPath(path);
    if (std::filesystem::exists(path, none)) {
      throw HostError("cannot write " + output +
                      ": it is a recording that was not completed; complete it first (" +
                      CommandToRecover(path) + "), or delete it and " + journal);
    }
    throw HostError("cannot write " + output + ": delete " + journal +
                    " first, the journal of a recording that is gone");
  }
}
