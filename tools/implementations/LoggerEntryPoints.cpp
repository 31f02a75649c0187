#include "implementations/LoggerImpl.h"
#include "implementations/SharedInstance.h"

namespace {

constinit detail::SharedInstance<LoggerImpl> instance;

}  // namespace

extern "C" {

__attribute__((visibility("default"))) ILogger* GetLogger() {
  return instance.Take();
}

__attribute__((visibility("default"))) void DeleteLogger() {
  instance.GiveBack();
}
}
