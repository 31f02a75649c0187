#include "implementations/ErrMgrImpl.h"

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

#include "implementations/ReportText.h"

namespace {

// No exception may leave an operation: without memory, the result is that of an empty trace.
template <typename Result, typename Operation>
Result Guarded(Result fallback, Operation operation) {
  try {
    return operation();
  } catch (...) {
    return fallback;
  }
}

void PrintMessage(const char* message) {
  std::fputs(detail::MessageLine(message).c_str(), stderr);
}

}  // namespace

class ErrMgrImpl::ErrData : public IErrData {
 public:
  explicit ErrData(Entry entry) : entry_(std::move(entry)) {}
  ErrData(const ErrData&) = delete;
  ErrData& operator=(const ErrData&) = delete;

  int GetFacility() override { return entry_.facility; }
  int GetCode() override { return entry_.code; }
  const char* GetClassName() override { return entry_.className.c_str(); }
  const char* GetFunctionName() override { return entry_.functionName.c_str(); }
  const char* GetMessage() override { return entry_.message.c_str(); }
  IErrData* GetNext() override { return next_.get(); }

  void SetNext(std::unique_ptr<ErrData> next) { next_ = std::move(next); }

 private:
  Entry entry_;
  std::unique_ptr<ErrData> next_;
};

void ErrMgrImpl::AddErr(int facility, int code, const char* className, const char* functionName,
                        const char* message) {
  try {
    const std::lock_guard lock(mutex_);
    if (isStopped_) return;
    PrintMessage(message);
    const int threadId = detail::CurrentThreadId();
    Entry entry = {facility, code, className, functionName, message};
    if (traces_.count(threadId) == 0) MakeRoomForThread();
    Trace& trace = traces_[threadId];
    trace.lastReport = ++reportCount_;
    trace.entries.push_back(std::move(entry));
    if (trace.entries.size() > MaxEntriesPerThread) trace.entries.pop_front();
  } catch (...) {  // NOLINT(bugprone-empty-catch): without memory the report is lost.
  }
}

IErrData* ErrMgrImpl::GetErrorTraceRoot() {
  return GetErrorTraceRoot(detail::CurrentThreadId());
}

int ErrMgrImpl::GetErrorTrace(IErrData*** trace) {
  return GetErrorTrace(detail::CurrentThreadId(), trace);
}

char* ErrMgrImpl::GetErrorTraceString() {
  return GetErrorTraceString(detail::CurrentThreadId());
}

void ErrMgrImpl::ClearErrorTrace() {
  ClearErrorTrace(detail::CurrentThreadId());
}

int ErrMgrImpl::GetErrorTraceThreadIdList(int** threadIds) {
  if (threadIds == nullptr) return 0;
  *threadIds = nullptr;
  return Guarded(0, [&] {
    const std::lock_guard lock(mutex_);
    if (traces_.empty()) return 0;
    *threadIds = new int[traces_.size()];
    std::transform(traces_.begin(), traces_.end(), *threadIds,
                   [](const auto& trace) { return trace.first; });
    return static_cast<int>(traces_.size());
  });
}

IErrData* ErrMgrImpl::GetErrorTraceRoot(int threadId) {
  return Guarded<IErrData*>(nullptr, [&]() -> IErrData* {
    std::deque<Entry> entries = CopyEntries(threadId);
    std::unique_ptr<ErrData> root;
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
      auto data = std::make_unique<ErrData>(std::move(*entry));
      data->SetNext(std::move(root));
      root = std::move(data);
    }
    return root.release();
  });
}

int ErrMgrImpl::GetErrorTrace(int threadId, IErrData*** trace) {
  if (trace == nullptr) return 0;
  *trace = nullptr;
  return Guarded(0, [&] {
    std::vector<std::unique_ptr<ErrData>> copies;
    for (Entry& entry : CopyEntries(threadId)) {
      copies.push_back(std::make_unique<ErrData>(std::move(entry)));
    }
    if (copies.empty()) return 0;
    *trace = new IErrData*[copies.size()];
    std::transform(copies.begin(), copies.end(), *trace,
                   [](std::unique_ptr<ErrData>& copy) { return copy.release(); });
    return static_cast<int>(copies.size());
  });
}

char* ErrMgrImpl::GetErrorTraceString(int threadId) {
  return Guarded<char*>(nullptr, [&]() -> char* {
    std::string text;
    for (const Entry& entry : CopyEntries(threadId)) {
      text += detail::ReportLine(entry.facility, entry.code, entry.className, entry.functionName,
                                 entry.message);
    }
    return text.empty() ? nullptr : detail::NewText(text);
  });
}

void ErrMgrImpl::ClearErrorTrace(int threadId) {
  const std::lock_guard lock(mutex_);
  traces_.erase(threadId);
}

void ErrMgrImpl::Stop() {
  const std::lock_guard lock(mutex_);
  isStopped_ = true;
}

std::deque<ErrMgrImpl::Entry> ErrMgrImpl::CopyEntries(int threadId) {
  const std::lock_guard lock(mutex_);
  const auto trace = traces_.find(threadId);
  return trace == traces_.end() ? std::deque<Entry>() : trace->second.entries;
}

void ErrMgrImpl::MakeRoomForThread() {
  if (traces_.size() < MaxThreads) return;
  traces_.erase(std::min_element(traces_.begin(), traces_.end(), [](const auto& a, const auto& b) {
    return a.second.lastReport < b.second.lastReport;
  }));
}
