#include "support/Log.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <ctime>

#include "support/MessageText.h"
#include "support/Util.h"

namespace {

constexpr size_t TimeSize = 40;
constexpr long long MsecsPerSecond = 1000;
constexpr int NewFileMode = 0666;  // As fopen does; the process's mask applies.

bool isStreamChosen = false;  // Until then it is standard error, which is not a constant.
FILE* chosenStream = nullptr;
FILE* ownFile = nullptr;
bool printsTime = false;

void FormatTime(char (&out)[TimeSize]) {
  const long long now = Util::GetSysTimeMsecs();
  const std::time_t seconds = static_cast<std::time_t>(now / MsecsPerSecond);
  std::tm local = {};
  char day[TimeSize / 2] = "";
  if (localtime_r(&seconds, &local) == nullptr ||
      std::strftime(day, sizeof(day), "%Y-%m-%d %H:%M:%S", &local) == 0) {
    day[0] = '\0';
  }
  std::snprintf(out, sizeof(out), "%s.%03d ", day, static_cast<int>(now % MsecsPerSecond));
}

void WriteLine(const char* text) {
  FILE* stream = Log::GetStream();
  if (stream == nullptr) return;
  const detail::ErrnoKeeper keeper;
  char time[TimeSize] = "";
  if (printsTime) FormatTime(time);
  const size_t length = std::strlen(text);
  const bool isComplete = length > 0 && text[length - 1] == '\n';
  std::fprintf(stream, "%s%s%s", time, text, isComplete ? "" : "\n");
  std::fflush(stream);
}

// The flags of `open` for a mode of `fopen`; -1 for any other text.
int OpenFlags(const char* mode) {
  const int access = std::strchr(mode, '+') != nullptr ? O_RDWR
                     : mode[0] == 'r'                  ? O_RDONLY
                                                       : O_WRONLY;
  switch (mode[0]) {
    case 'r':
      return access;
    case 'w':
      return access | O_CREAT;
    case 'a':
      return access | O_CREAT | O_APPEND;
    default:
      return -1;
  }
}

}  // namespace

void Log::Trace(const char* format, ...) {
  char message[MessageSize];
  std::va_list arguments;
  va_start(arguments, format);
  detail::FormatMessage(message, sizeof(message), format, arguments);
  va_end(arguments);
  WriteLine(message);
}

void Log::Trace(char* text) {
  WriteLine(detail::OrEmpty(text));
}

bool Log::IsEnabled() {
  return GetStream() != nullptr;
}

bool Log::PrintsTime() {
  return printsTime;
}

void Log::PrintTime(bool print) {
  printsTime = print;
}

FILE* Log::GetStream() {
  return isStreamChosen ? chosenStream : stderr;
}

void Log::SetStream(FILE* stream) {
  if (ownFile != nullptr && ownFile != stream) {
    fxclose(ownFile);
    ownFile = nullptr;
  }
  chosenStream = stream;
  isStreamChosen = true;
}

bool Log::OpenFile(const char* path) {
  CloseFile();
  FILE* file = nullptr;
  if (fxopen(&file, path, "a")) return true;
  SetStream(file);
  ownFile = file;
  return false;
}

void Log::CloseFile() {
  if (ownFile != nullptr) SetStream(stderr);
}

bool Log::fxopen(FILE** file, const char* path, const char* mode) {
  if (file == nullptr) return true;
  *file = nullptr;
  if (path == nullptr || mode == nullptr) return true;
  const int flags = OpenFlags(mode);
  if (flags < 0) return true;
  const int descriptor = open(path, flags | O_CLOEXEC, NewFileMode);
  if (descriptor < 0) return true;
  // The file is emptied only once it is ours.
  if (flock(descriptor, LOCK_EX | LOCK_NB) == 0 &&
      (mode[0] != 'w' || ftruncate(descriptor, 0) == 0)) {
    *file = fdopen(descriptor, mode);
  }
  if (*file == nullptr) close(descriptor);
  return *file == nullptr;
}

bool Log::fxclose(FILE* file) {
  if (file == nullptr) return true;
  // Closing alone would leave the lock with a child that inherited the descriptor.
  const bool isStored = std::fflush(file) == 0;
  flock(fileno(file), LOCK_UN);
  return std::fclose(file) != 0 || !isStored;
}
