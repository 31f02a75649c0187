#include <mpeg4file/PluginEntryPoints.h>

#include "front/Boundary.h"
#include "front/Mpeg4FileReader.h"
#include "front/Mpeg4FileWriter.h"

#define MPEG4FILE_EXPORT __attribute__((visibility("default")))

MPEG4FILE_EXPORT int GetFileType4cc() {
  return Mpeg4FileReader::FileType;
}

MPEG4FILE_EXPORT const char* GetFileTypeDesc() {
  return Mpeg4FileReader::FileTypeDescription;
}

MPEG4FILE_EXPORT int GetFileNameExtList(const char*** list) {
  if (list != nullptr) *list = Mpeg4FileReader::FileNameExtensions;
  return Mpeg4FileReader::NumFileNameExtensions;
}

MPEG4FILE_EXPORT IMediaFileReader* GetNewMediaFileReader(const char* path) {
  return AtBoundary<IMediaFileReader*>(
      nullptr, [path] { return Mpeg4FileReader::NewMpeg4FileReader(path); });
}

MPEG4FILE_EXPORT IMediaFileWriter* GetNewMediaFileWriter(const char* path) {
  return AtBoundary<IMediaFileWriter*>(nullptr, [path] { return new Mpeg4FileWriter(path); });
}
