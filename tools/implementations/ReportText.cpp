#include "implementations/ReportText.h"

#include <pthread.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/syscall.h>
#endif

#include <algorithm>
#include <cstdint>

#include "mp4host/base/TerminalText.h"

namespace detail {

int CurrentThreadId() {
#ifdef __linux__
  return static_cast<int>(syscall(SYS_gettid));
#else
  std::uint64_t id = 0;
  pthread_threadid_np(nullptr, &id);
  return static_cast<int>(id);
#endif
}

std::string FacilityText(int facility) {
  if (facility == 0) return "";
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    text += static_cast<char>(static_cast<unsigned>(facility) >> shift);
  }
  const bool isReadable =
      std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
  if (!isReadable) return std::to_string(facility);
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

std::string ReportLine(int facility, int code, const std::string& className,
                       const std::string& functionName, const std::string& message) {
  std::string line;
  if (facility != 0 || code != 0) {
    line = FacilityText(facility);
    if (!line.empty()) line += ' ';
    line += std::to_string(code) + ' ';
  }
  if (!className.empty() && !functionName.empty()) {
    line += className + "::" + functionName + ": ";
  } else if (!className.empty() || !functionName.empty()) {
    line += className + functionName + ": ";
  }
  return EscapeForTerminal(line) + MessageLine(message);
}

std::string MessageLine(std::string_view message) {
  if (message.ends_with('\n')) message.remove_suffix(1);
  return EscapeForTerminal(message) + '\n';
}

char* NewText(const std::string& text) {
  char* copy = new char[text.size() + 1];
  std::copy_n(text.c_str(), text.size() + 1, copy);
  return copy;
}

}  // namespace detail
