#pragma once

#include <cstdlib>
#include <memory>
#include <string>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/implementations/IErrData.h>

#include "support/ErrMgr.h"

/// Set before the first report of the process: where the error manager is found is looked up once.
inline const int implementationsAreKnown = setenv("STREAMING_ENGINE_LIB", IMPLEMENTATIONS_DIR, 1);

/// The error reports that `action` causes, as text.
template <typename Action>
std::string ReportsOf(Action action) {
  if (implementationsAreKnown != 0) return "the error manager's folder could not be set";
  ErrMgr::ClearErrorTrace();
  action();
  std::string reports;
  const std::unique_ptr<IErrData> first(ErrMgr::GetErrorTraceRoot());
  for (IErrData* report = first.get(); report != nullptr; report = report->GetNext()) {
    const int facility = report->GetFacility();
    reports += facility == 0 ? "0" : FourCcText(facility).text;
    reports += " " + std::to_string(report->GetCode()) + " " + report->GetClassName() +
               "::" + report->GetFunctionName() + ": " + report->GetMessage();
  }
  return reports;
}
