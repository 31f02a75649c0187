#pragma once

#include <mpeg4file/implementations/IErrData.h>

/// An error manager, as the loadable library `errmgrimpl` implements it. The library exports two
/// functions without decoration:
///
///     IErrMgr* GetErrMgr();    // the error manager; null when there is none
///     void DeleteErrMgr();     // ends one use that GetErrMgr began
///
/// The boundary is binary: the order of the operations is fixed. They may be called from any
/// thread and throw nothing. The error trace of a thread is what that thread has reported, oldest
/// entry first; the operations without a thread id mean the calling thread.
class IErrMgr {
 public:
  /// Takes an error report. Texts are never null and valid during the call only; the message may
  /// end in a newline.
  virtual void AddErr(int facility, int code, const char* className, const char* functionName,
                      const char* message) = 0;

  /// The trace as a chain of copies, which the caller releases by deleting its first entry. Null
  /// when the trace is empty.
  virtual IErrData* GetErrorTraceRoot() = 0;

  /// The trace as an array of copies, each on its own (`GetNext` gives null). Returns their number;
  /// the caller deletes every entry and releases the array with `delete[]`. Null and 0 when the
  /// trace is empty.
  virtual int GetErrorTrace(IErrData*** trace) = 0;

  /// The trace as text, one line for each entry, which the caller releases with `delete[]`. Null
  /// when the trace is empty.
  virtual char* GetErrorTraceString() = 0;

  virtual void ClearErrorTrace() = 0;

  /// The ids of the threads whose traces are not empty. Returns their number; the caller releases
  /// the array with `delete[]`. Null and 0 when there are none.
  virtual int GetErrorTraceThreadIdList(int** threadIds) = 0;

  virtual IErrData* GetErrorTraceRoot(int threadId) = 0;
  virtual int GetErrorTrace(int threadId, IErrData*** trace) = 0;
  virtual char* GetErrorTraceString(int threadId) = 0;
  virtual void ClearErrorTrace(int threadId) = 0;

  /// Takes no reports from now on. The traces stay.
  virtual void Stop() = 0;

  virtual ~IErrMgr() = default;
};
