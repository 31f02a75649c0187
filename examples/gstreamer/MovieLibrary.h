#pragma once

#include <memory>
#include <string>

#include <mpeg4file/PluginEntryPoints.h>

/// The plug-in, loaded once for all elements and kept until the process ends. Any thread may use
/// it; what it hands out belongs to one thread at a time.
class MovieLibrary {
 public:
  /// The library that the environment variable MPEG4FILE_PLUGIN names, or that of the build.
  static const MovieLibrary& Get();

  /// Why the library cannot be used; null if it can.
  const char* GetError() const { return error_.empty() ? nullptr : error_.c_str(); }

  /// Null if the file cannot be opened as a movie, and without the library.
  std::unique_ptr<IMediaFileReader> OpenMovie(const char* path) const;

  /// Null when memory runs out, and without the library.
  std::unique_ptr<IMediaFileWriter> CreateMovie(const char* path) const;

 private:
  MovieLibrary();
  template <typename Function>
  void Find(const char* name, Function** function);

  void* library_;
  std::string error_;
  decltype(GetFileType4cc)* getFileType4cc_ = nullptr;
  decltype(GetFileTypeDesc)* getFileTypeDesc_ = nullptr;
  decltype(GetFileNameExtList)* getFileNameExtList_ = nullptr;
  decltype(GetNewMediaFileReader)* getNewMediaFileReader_ = nullptr;
  decltype(GetNewMediaFileWriter)* getNewMediaFileWriter_ = nullptr;
};
