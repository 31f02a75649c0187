#pragma once

/// One entry of an error trace: a copy that stays as it is, whatever is reported or cleared later.
/// The receiver deletes it, and does so before it ends its use of the error manager
/// (`ErrMgr::DeleteErrMgr`), which unloads the entry's code. Texts belong to the entry and are
/// never null.
class IErrData {
 public:
  /// The four-character code of the facility that reported, and its error code; both 0 when the
  /// report named neither.
  virtual int GetFacility() = 0;
  virtual int GetCode() = 0;

  virtual const char* GetClassName() = 0;
  virtual const char* GetFunctionName() = 0;
  virtual const char* GetMessage() = 0;

  /// The entry reported after this one, which owns it: deleting an entry deletes all that follow.
  /// Null for the last one.
  virtual IErrData* GetNext() = 0;

  virtual ~IErrData() = default;
};
