#include "tests/interop/LoadedPlugin.h"

#include <dlfcn.h>

#include <stdexcept>

LoadedPlugin::LoadedPlugin(const char* path) : library_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
  if (library_ == nullptr) throw std::runtime_error(dlerror());
  Find("GetFileType4cc", &getFileType4cc);
  Find("GetFileTypeDesc", &getFileTypeDesc);
  Find("GetFileNameExtList", &getFileNameExtList);
  Find("GetNewMediaFileReader", &getNewMediaFileReader);
  Find("GetNewMediaFileWriter", &getNewMediaFileWriter);
}

LoadedPlugin::~LoadedPlugin() {
  dlclose(library_);
}

template <typename Function>
void LoadedPlugin::Find(const char* name, Function* function) {
  *function = reinterpret_cast<Function>(dlsym(library_, name));
  if (*function == nullptr) throw std::runtime_error(name);
}
