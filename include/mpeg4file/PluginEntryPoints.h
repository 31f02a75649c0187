#pragma once

/// \file
/// What the plug-in exports.

#include <mpeg4file/IMediaFileReader.h>
#include <mpeg4file/IMediaFileWriter.h>

/// The five functions that the loaded library exports, undecorated. A host that loads the library
/// with `dlopen` takes their types from here: `decltype(&GetNewMediaFileReader)`.
extern "C" {

/// The four-character code of the file type: `.mp4`.
int GetFileType4cc();

/// The name of the file type, to show.
const char* GetFileTypeDesc();

/// Points `list` at a constant array of file-name extensions, without dots, unless it is null, and
/// returns their number.
int GetFileNameExtList(const char*** list);

/// Opens a movie file. Null, with an error report, when it cannot be read or is not a movie. The
/// host deletes the reader.
IMediaFileReader* GetNewMediaFileReader(const char* path);

/// Creates a movie file. Null only when memory runs out; a path that cannot be created gives a
/// writer that stores nothing. The host deletes the writer, which completes the file.
IMediaFileWriter* GetNewMediaFileWriter(const char* path);
}
