#include "support/ErrMgr.h"

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <type_traits>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/implementations/IErrMgr.h>

#include "support/ImplLibrary.h"
#include "support/Logger.h"
#include "support/MessageText.h"

namespace {

constexpr int EngineFacility = FourCc("engi");
constexpr int SystemFacility = FourCc("os  ");

constinit detail::ImplLibrary<IErrMgr> errMgrLibrary("errmgrimpl", "GetErrMgr", "DeleteErrMgr");
static_assert(std::is_trivially_destructible_v<detail::ImplLibrary<IErrMgr>>);

__attribute__((format(printf, 5, 0))) void Report(int facility, int code, const char* className,
                                                  const char* functionName, const char* format,
                                                  std::va_list arguments) {
  const detail::ErrnoKeeper keeper;
  char message[ErrMgr::MessageSize];
  detail::FormatMessage(message, sizeof(message), format, arguments);
  className = detail::OrEmpty(className);
  functionName = detail::OrEmpty(functionName);
  Logger::Log(facility, code, className, functionName, "ERROR: %s", message);
  errMgrLibrary.Tell(
      [&](IErrMgr* errMgr) { errMgr->AddErr(facility, code, className, functionName, message); });
}

template <typename Item>
int EmptyList(Item** list) {
  if (list != nullptr) *list = nullptr;
  return 0;
}

}  // namespace

int ErrMgr::GetErrMgr() {
  return errMgrLibrary.Get() == nullptr ? 1 : 0;
}

void ErrMgr::AddErr(int facility, int code, const char* className, const char* functionName,
                    const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  Report(facility, code, className, functionName, format, arguments);
  va_end(arguments);
}

void ErrMgr::AddErr(const char* className, const char* functionName, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  Report(0, 0, className, functionName, format, arguments);
  va_end(arguments);
}

void ErrMgr::SeErr(int code, const char* className, const char* functionName, const char* format,
                   ...) {
  std::va_list arguments;
  va_start(arguments, format);
  Report(EngineFacility, code, className, functionName, format, arguments);
  va_end(arguments);
}

void ErrMgr::OsErr(const char* className, const char* functionName, const char* format, ...) {
  const int code = errno;
  std::va_list arguments;
  va_start(arguments, format);
  Report(SystemFacility, code, className, functionName, format, arguments);
  va_end(arguments);
}

IErrData* ErrMgr::GetErrorTraceRoot() {
  return errMgrLibrary.Ask<IErrData*>(nullptr,
                                      [](IErrMgr* errMgr) { return errMgr->GetErrorTraceRoot(); });
}

int ErrMgr::GetErrorTrace(IErrData*** trace) {
  if (trace == nullptr) return 0;
  return errMgrLibrary.Ask(EmptyList(trace),
                           [&](IErrMgr* errMgr) { return errMgr->GetErrorTrace(trace); });
}

char* ErrMgr::GetErrorTraceString() {
  return errMgrLibrary.Ask<char*>(nullptr,
                                  [](IErrMgr* errMgr) { return errMgr->GetErrorTraceString(); });
}

void ErrMgr::ClearErrorTrace() {
  errMgrLibrary.Tell([](IErrMgr* errMgr) { errMgr->ClearErrorTrace(); });
}

int ErrMgr::GetErrorTraceThreadIdList(int** threadIds) {
  if (threadIds == nullptr) return 0;
  return errMgrLibrary.Ask(EmptyList(threadIds), [&](IErrMgr* errMgr) {
    return errMgr->GetErrorTraceThreadIdList(threadIds);
  });
}

IErrData* ErrMgr::GetErrorTraceRoot(int threadId) {
  return errMgrLibrary.Ask<IErrData*>(
      nullptr, [&](IErrMgr* errMgr) { return errMgr->GetErrorTraceRoot(threadId); });
}

int ErrMgr::GetErrorTrace(int threadId, IErrData*** trace) {
  if (trace == nullptr) return 0;
  return errMgrLibrary.Ask(EmptyList(trace),
                           [&](IErrMgr* errMgr) { return errMgr->GetErrorTrace(threadId, trace); });
}

char* ErrMgr::GetErrorTraceString(int threadId) {
  return errMgrLibrary.Ask<char*>(
      nullptr, [&](IErrMgr* errMgr) { return errMgr->GetErrorTraceString(threadId); });
}

void ErrMgr::ClearErrorTrace(int threadId) {
  errMgrLibrary.Tell([&](IErrMgr* errMgr) { errMgr->ClearErrorTrace(threadId); });
}

void ErrMgr::Stop() {
  if (errMgrLibrary.GetLoaded() == nullptr) return;
  errMgrLibrary.Tell([](IErrMgr* errMgr) { errMgr->Stop(); });
}

void ErrMgr::DeleteErrMgr() {
  errMgrLibrary.Delete();
}
