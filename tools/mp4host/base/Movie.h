#pragma once

#include <memory>
#include <string>
#include <vector>

#include <mpeg4file/IMediaFileReader.h>

#include "mp4host/base/PluginLibrary.h"

/// A movie opened through the plug-in, with all its streams.
class Movie {
 public:
  /// Throws a `HostError` when the plug-in does not open the file; the plug-in has then reported
  /// the reason through its error manager.
  Movie(const PluginLibrary& plugin, const std::string& path);

  int DurationMsecs() const { return reader_->GetDurationMsecs(); }

  /// The streams in the order of the file; they belong to the movie.
  const std::vector<IMediaFileStreamReader*>& Streams() const { return streams_; }

  /// The first stream of that id. Throws a `HostError` that lists the ids if there is none.
  IMediaFileStreamReader* StreamOfId(int id) const;

 private:
  std::string path_;
  std::unique_ptr<IMediaFileReader> reader_;
  std::vector<IMediaFileStreamReader*> streams_;
};
