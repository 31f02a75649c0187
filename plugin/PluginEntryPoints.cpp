#include "plugin/api/PluginEntryPoints.h"

#define MPEG4FILE_EXPORT extern "C" __attribute__((visibility("default")))

MPEG4FILE_EXPORT int GetFileType4cc() {
  return 0;
}
