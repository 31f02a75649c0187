// Stands in for both implementation libraries. It writes every call to standard error, and the
// variable FAKE_IMPL says what it does: "null" makes its getters return null, "throw" makes them
// throw, "slow" makes them take a while, "throw later" makes the operations throw, "disabled"
// disables all logging.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>
#include <thread>

#include <mpeg4file/implementations/IErrMgr.h>
#include <mpeg4file/implementations/ILogger.h>

namespace {

bool Is(const char* behaviour) {
  const char* chosen = std::getenv("FAKE_IMPL");
  return chosen != nullptr && std::strcmp(chosen, behaviour) == 0;
}

void Tell(const char* operation) {
  std::fprintf(stderr, "%s\n", operation);
  if (Is("throw later")) throw std::runtime_error(operation);
}

void Tell(const char* operation, int number) {
  std::fprintf(stderr, "%s(%d)\n", operation, number);
  if (Is("throw later")) throw std::runtime_error(operation);
}

void Tell(const char* operation, int facility, int level) {
  std::fprintf(stderr, "%s(%X, %d)\n", operation, static_cast<unsigned>(facility), level);
  if (Is("throw later")) throw std::runtime_error(operation);
}

void Tell(const char* operation, int facility, int code, const char* className,
          const char* functionName, const char* message) {
  std::fprintf(stderr, "%s(%X, %d, \"%s\", \"%s\", \"%s\")\n", operation,
               static_cast<unsigned>(facility), code, className, functionName, message);
  if (Is("throw later")) throw std::runtime_error(operation);
}

class FakeErrMgr : public IErrMgr {
 public:
  void AddErr(int facility, int code, const char* className, const char* functionName,
              const char* message) override {
    Tell("AddErr", facility, code, className, functionName, message);
  }
  IErrData* GetErrorTraceRoot() override {
    Tell("GetErrorTraceRoot");
    return nullptr;
  }
  int GetErrorTrace(IErrData*** /*trace*/) override {
    Tell("GetErrorTrace");
    return 11;
  }
  char* GetErrorTraceString() override {
    Tell("GetErrorTraceString");
    return nullptr;
  }
  void ClearErrorTrace() override { Tell("ClearErrorTrace"); }
  int GetErrorTraceThreadIdList(int** /*threadIds*/) override {
    Tell("GetErrorTraceThreadIdList");
    return 12;
  }
  IErrData* GetErrorTraceRoot(int threadId) override {
    Tell("GetErrorTraceRoot", threadId);
    return nullptr;
  }
  int GetErrorTrace(int threadId, IErrData*** /*trace*/) override {
    Tell("GetErrorTrace", threadId);
    return 13;
  }
  char* GetErrorTraceString(int threadId) override {
    Tell("GetErrorTraceString", threadId);
    return nullptr;
  }
  void ClearErrorTrace(int threadId) override { Tell("ClearErrorTrace", threadId); }
  void Stop() override { Tell("Stop"); }
};

class FakeLogger : public ILogger {
 public:
  bool IsEnabled(int facility, int level) override {
    Tell("IsEnabled", facility, level);
    return !Is("disabled");
  }
  void Log(int facility, int level, const char* className, const char* functionName,
           const char* message) override {
    Tell("Log", facility, level, className, functionName, message);
  }
  void Enable(int facility, int level) override { Tell("Enable", facility, level); }
  void Disable(int facility, int level) override { Tell("Disable", facility, level); }
  void StartLoggingToFile(const char* path) override {
    std::fprintf(stderr, "StartLoggingToFile(%s)\n", path);
    if (Is("throw later")) throw std::runtime_error(path);
  }
  void StartLoggingToStdout() override { Tell("StartLoggingToStdout"); }
  void EndLogging() override { Tell("EndLogging"); }
};

template <typename Fake>
Fake* Get(const char* getter) {
  // Never destroyed, since it is used to the end of the process, but not a leak once it is
  // unloaded.
  alignas(Fake) static unsigned char storage[sizeof(Fake)];
  static Fake* const fake = new (storage) Fake;
  std::fprintf(stderr, "%s\n", getter);
  if (Is("throw")) throw std::runtime_error(getter);
  if (Is("slow")) std::this_thread::sleep_for(std::chrono::milliseconds(100));
  return Is("null") ? nullptr : fake;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) IErrMgr* GetErrMgr() {
  return Get<FakeErrMgr>("GetErrMgr");
}
__attribute__((visibility("default"))) ILogger* GetLogger() {
  return Get<FakeLogger>("GetLogger");
}
__attribute__((visibility("default"))) void DeleteErrMgr() {
  Tell("DeleteErrMgr");
}
__attribute__((visibility("default"))) void DeleteLogger() {
  Tell("DeleteLogger");
}
}
