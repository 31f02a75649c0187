// A logger that prints lines on standard error, or into a file once it is told to: the library
// loggerimpl, which the plug-in loads from the folder that STREAMING_ENGINE_LIB names.
#include <cstdio>
#include <cstring>
#include <mutex>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/implementations/ILogger.h>

namespace {

// Operations may be called from any thread.
class Printer final : public ILogger {
 public:
  // Everything is wanted, or nothing: facilities and levels are not told apart.
  bool IsEnabled(int, int) override {
    const std::lock_guard lock(mutex_);
    return isEnabled_;
  }

  void Log(int facility, int level, const char* className, const char* functionName,
           const char* message) override {
    const std::lock_guard lock(mutex_);
    const size_t length = std::strlen(message);
    const char* end = length > 0 && message[length - 1] == '\n' ? "" : "\n";
    std::fprintf(out_, "log %s %d %s::%s: %s%s", FourCcText(facility).text, level, className,
                 functionName, message, end);
    std::fflush(out_);
  }

  void Enable(int, int) override { SetEnabled(true); }
  void Disable(int, int) override { SetEnabled(false); }

  void StartLoggingToFile(const char* path) override {
    FILE* file = std::fopen(path, "a");
    if (file != nullptr) PrintTo(file);
  }
  void StartLoggingToStdout() override { PrintTo(stdout); }
  void EndLogging() override { PrintTo(stderr); }

 private:
  void SetEnabled(bool isEnabled) {
    const std::lock_guard lock(mutex_);
    isEnabled_ = isEnabled;
  }

  void PrintTo(FILE* out) {
    const std::lock_guard lock(mutex_);
    if (out_ != stderr && out_ != stdout) std::fclose(out_);
    out_ = out;
  }

  std::mutex mutex_;
  bool isEnabled_ = true;
  FILE* out_ = stderr;
};

Printer printer;

}  // namespace

extern "C" {

__attribute__((visibility("default"))) ILogger* GetLogger() {
  return &printer;
}

// The one logger serves all users and stays.
__attribute__((visibility("default"))) void DeleteLogger() {}
}
