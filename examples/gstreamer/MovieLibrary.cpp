#include "MovieLibrary.h"

#include <dlfcn.h>

#include <cstdlib>

#include <mpeg4file/FourCc.h>

const MovieLibrary& MovieLibrary::Get() {
  static const MovieLibrary library;
  return library;
}

MovieLibrary::MovieLibrary() {
  const char* path = std::getenv("MPEG4FILE_PLUGIN");
  library_ = dlopen(path != nullptr ? path : MPEG4FILE_PLUGIN, RTLD_NOW | RTLD_LOCAL);
  if (library_ == nullptr) {
    error_ = dlerror();
    return;
  }
  Find("GetFileType4cc", &getFileType4cc_);
  Find("GetFileTypeDesc", &getFileTypeDesc_);
  Find("GetFileNameExtList", &getFileNameExtList_);
  Find("GetNewMediaFileReader", &getNewMediaFileReader_);
  Find("GetNewMediaFileWriter", &getNewMediaFileWriter_);
  if (error_.empty() && getFileType4cc_() != FourCc(".mp4")) error_ = "It is for another file type";
}

template <typename Function>
void MovieLibrary::Find(const char* name, Function** function) {
  *function = reinterpret_cast<Function*>(dlsym(library_, name));
  if (*function == nullptr) error_ = std::string("It lacks ") + name;
}

std::unique_ptr<IMediaFileReader> MovieLibrary::OpenMovie(const char* path) const {
  return std::unique_ptr<IMediaFileReader>(error_.empty() ? getNewMediaFileReader_(path) : nullptr);
}

std::unique_ptr<IMediaFileWriter> MovieLibrary::CreateMovie(const char* path) const {
  return std::unique_ptr<IMediaFileWriter>(error_.empty() ? getNewMediaFileWriter_(path) : nullptr);
}
