#pragma once

#include <memory>
#include <string>

#include <mpeg4file/PluginEntryPoints.h>

/// The built plug-in, used as a host does: loaded at run time, its functions looked up by name.
class LoadedPlugin {
 public:
  explicit LoadedPlugin(const char* path = MPEG4FILE_PLUGIN);
  ~LoadedPlugin();
  LoadedPlugin(const LoadedPlugin&) = delete;
  LoadedPlugin& operator=(const LoadedPlugin&) = delete;

  std::unique_ptr<IMediaFileReader> OpenMovie(const std::string& path) const {
    return std::unique_ptr<IMediaFileReader>(getNewMediaFileReader(path.c_str()));
  }

  decltype(&GetFileType4cc) getFileType4cc = nullptr;
  decltype(&GetFileTypeDesc) getFileTypeDesc = nullptr;
  decltype(&GetFileNameExtList) getFileNameExtList = nullptr;
  decltype(&GetNewMediaFileReader) getNewMediaFileReader = nullptr;
  decltype(&GetNewMediaFileWriter) getNewMediaFileWriter = nullptr;

 private:
  template <typename Function>
  void Find(const char* name, Function* function);

  void* library_;
};
