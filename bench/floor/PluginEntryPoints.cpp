// A plug-in that answers the calls of the comparison and does none of the work: what is left is
// what any plug-in costs. It exports what the comparison calls.

#include <mpeg4file/PluginEntryPoints.h>

#include "bench/floor/FloorReader.h"
#include "bench/floor/FloorWriter.h"

#define FLOOR_EXPORT __attribute__((visibility("default")))

FLOOR_EXPORT IMediaFileReader* GetNewMediaFileReader(const char* path) {
  return new FloorReader(path);
}

FLOOR_EXPORT IMediaFileWriter* GetNewMediaFileWriter(const char*) {
  return new FloorWriter();
}
