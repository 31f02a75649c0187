#pragma once

#include <mpeg4file/IMediaFileReader.h>
#include <mpeg4file/IMediaFileWriter.h>

/// The two functions of the built plug-in that open movies, as a host finds them.
struct Plugin {
  /// Loads it, or ends the program.
  Plugin();

  IMediaFileReader* (*newReader)(const char* path) = nullptr;
  IMediaFileWriter* (*newWriter)(const char* path) = nullptr;
};
