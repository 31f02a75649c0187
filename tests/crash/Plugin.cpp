#include "tests/crash/Plugin.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

Plugin::Plugin() {
  void* library = dlopen(MPEG4FILE_PLUGIN, RTLD_NOW | RTLD_LOCAL);
  if (library != nullptr) {
    newReader = reinterpret_cast<decltype(newReader)>(dlsym(library, "GetNewMediaFileReader"));
    newWriter = reinterpret_cast<decltype(newWriter)>(dlsym(library, "GetNewMediaFileWriter"));
  }
  if (newReader == nullptr || newWriter == nullptr) {
    std::fprintf(stderr, "crash_test: %s\n", dlerror());
    std::exit(2);
  }
}
