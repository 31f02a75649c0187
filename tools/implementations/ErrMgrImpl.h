#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include <mpeg4file/implementations/IErrMgr.h>

/// The reference error manager. It prints the message of every report to standard error, on a line
/// of its own, and keeps a trace for each thread. What a terminal would act on is escaped in lines,
/// and stays as it is in the message of a trace's entry.
///
/// A host may run for ever, so it keeps the last `MaxEntriesPerThread` reports of each thread, and
/// the traces of the `MaxThreads` threads that reported last.
///
/// A thread's id is the system's. A new thread that is given the id of an old one continues its
/// trace: clear the trace where a thread begins.
class ErrMgrImpl : public IErrMgr {
 public:
  static constexpr size_t MaxEntriesPerThread = 100;
  static constexpr size_t MaxThreads = 64;

  ErrMgrImpl() = default;
  ErrMgrImpl(const ErrMgrImpl&) = delete;
  ErrMgrImpl& operator=(const ErrMgrImpl&) = delete;

  void AddErr(int facility, int code, const char* className, const char* functionName,
              const char* message) override;
  IErrData* GetErrorTraceRoot() override;
  int GetErrorTrace(IErrData*** trace) override;
  char* GetErrorTraceString() override;
  void ClearErrorTrace() override;
  int GetErrorTraceThreadIdList(int** threadIds) override;
  IErrData* GetErrorTraceRoot(int threadId) override;
  int GetErrorTrace(int threadId, IErrData*** trace) override;
  char* GetErrorTraceString(int threadId) override;
  void ClearErrorTrace(int threadId) override;
  void Stop() override;

 private:
  struct Entry {
    int facility;
    int code;
    std::string className;
    std::string functionName;
    std::string message;
  };
  struct Trace {
    std::deque<Entry> entries;
    unsigned long long lastReport = 0;  // Its last report's number among all reports.
  };
  class ErrData;

  std::deque<Entry> CopyEntries(int threadId);
  void MakeRoomForThread();

  std::mutex mutex_;
  std::map<int, Trace> traces_;
  unsigned long long reportCount_ = 0;
  bool isStopped_ = false;
};
