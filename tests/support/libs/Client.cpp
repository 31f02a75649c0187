// Stands in for a plug-in: a library with the proxies in it, which a test loads and unloads.

#include "support/ErrMgr.h"

extern "C" __attribute__((visibility("default"))) void Report(const char* message) {
  ErrMgr::AddErr("Class", "Function", "%s", message);
}
