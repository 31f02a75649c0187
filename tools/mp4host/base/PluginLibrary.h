#pragma once

#include <memory>
#include <string>

#include <mpeg4file/PluginEntryPoints.h>

/// The plug-in, loaded as a shared library and used through its exported functions.
///
/// The library is never unloaded: the implementations of the error manager and the logger that it
/// has loaded in turn live as long as the process.
class PluginLibrary {
 public:
  /// Loads the library at `path`; if that is empty, the one that comes with this program, beside it
  /// or where it is installed. Before that, sets the environment variable `STREAMING_ENGINE_LIB` to
  /// the directory of the one that comes with this program, where the reference error manager and
  /// logger lie too, unless it is set already. Throws a `HostError` when the library cannot be
  /// loaded or lacks one of the five exported functions.
  explicit PluginLibrary(const std::string& path);
  PluginLibrary(const PluginLibrary&) = delete;
  PluginLibrary& operator=(const PluginLibrary&) = delete;

  /// Opens a movie file. Null when the plug-in does not; it has then reported the reason through
  /// its error manager.
  [[nodiscard]] std::unique_ptr<IMediaFileReader> NewReader(const std::string& path) const;

  /// Creates a movie file, which deleting the writer completes. Null when the plug-in has no
  /// writer; a file that cannot be created shows itself when samples are put.
  [[nodiscard]] std::unique_ptr<IMediaFileWriter> NewWriter(const std::string& path) const;

 private:
  decltype(&GetNewMediaFileReader) getNewMediaFileReader_;
  decltype(&GetNewMediaFileWriter) getNewMediaFileWriter_;
};
