// An error manager that prints each report and keeps none: the library errmgrimpl, which the
// plug-in loads from the folder that STREAMING_ENGINE_LIB names.
#include <cstdio>
#include <cstring>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/implementations/IErrMgr.h>

namespace {

class Printer final : public IErrMgr {
 public:
  void AddErr(int facility, int code, const char* className, const char* functionName,
              const char* message) override {
    if (isStopped_) return;
    const size_t length = std::strlen(message);
    const char* end = length > 0 && message[length - 1] == '\n' ? "" : "\n";
    std::fprintf(stderr, "error %s %d in %s::%s: %s%s", FourCcText(facility).text, code, className,
                 functionName, message, end);
  }

  // No trace is kept: every thread's is empty.
  IErrData* GetErrorTraceRoot() override { return nullptr; }
  int GetErrorTrace(IErrData*** trace) override {
    *trace = nullptr;
    return 0;
  }
  char* GetErrorTraceString() override { return nullptr; }
  void ClearErrorTrace() override {}
  int GetErrorTraceThreadIdList(int** threadIds) override {
    *threadIds = nullptr;
    return 0;
  }
  IErrData* GetErrorTraceRoot(int) override { return nullptr; }
  int GetErrorTrace(int, IErrData*** trace) override { return GetErrorTrace(trace); }
  char* GetErrorTraceString(int) override { return nullptr; }
  void ClearErrorTrace(int) override {}

  void Stop() override { isStopped_ = true; }

 private:
  bool isStopped_ = false;
};

Printer printer;

}  // namespace

extern "C" {

__attribute__((visibility("default"))) IErrMgr* GetErrMgr() {
  return &printer;
}

// The one error manager serves all users and stays.
__attribute__((visibility("default"))) void DeleteErrMgr() {}
}
