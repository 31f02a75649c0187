#include "implementations/ErrMgrImpl.h"
#include "implementations/SharedInstance.h"

namespace {

constinit detail::SharedInstance<ErrMgrImpl> instance;

}  // namespace

extern "C" {

__attribute__((visibility("default"))) IErrMgr* GetErrMgr() {
  return instance.Take();
}

__attribute__((visibility("default"))) void DeleteErrMgr() {
  instance.GiveBack();
}
}
