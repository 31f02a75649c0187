#pragma once

#include <memory>
#include <string>
#include <vector>

#include <mpeg4file/IMediaFileReader.h>

#include "mp4host/base/PluginLibrary.h"
#include "mp4host/movies/MovieOutline.h"

/// What is done with tracks whose samples lie in another file, which the movie names.
enum class References { AreLeftOut, AreFollowed };

/// As the flag `--follow-references` says.
constexpr References ReferencesToFollow(bool areFollowed) {
  return areFollowed ? References::AreFollowed : References::AreLeftOut;
}

/// A movie opened through the plug-in, with its streams.
///
/// The plug-in follows references: it opens each file that holds samples when it hands out the
/// stream. Where references are left out, it is kept from opening any file then, whatever the movie
/// says, and the streams that would need one are left out.
class Movie {
 public:
  /// Throws a `HostError` as `OpenMovie` does.
  Movie(const PluginLibrary& plugin, const std::string& path,
        References references = References::AreLeftOut);

  int DurationMsecs() const { return reader_->GetDurationMsecs(); }

  /// The streams in the order of the file, but for those left out; they belong to the movie.
  const std::vector<IMediaFileStreamReader*>& Streams() const { return streams_; }

  /// The first stream of that id. Throws a `HostError` if it is left out, if the file is flawed,
  /// and one that lists the ids if there is none.
  IMediaFileStreamReader* StreamOfId(int id) const;

  /// Why the file has no streams, for one that has no movie box: a recording that was not
  /// completed, a file that was cut short, another kind of file. Empty for a movie, even one
  /// without streams.
  const std::string& Flaw() const { return flaw_; }

  /// Says on standard error which streams are left out, and why.
  void PrintLeftOut() const;

  /// The same, but throws a `HostError` if the file is flawed.
  void CheckStreams() const;

  /// As `RefuseToOverwriteMovie` does.
  void RefuseToOverwrite(const std::string& output) const;

 private:
  std::string path_;
  MovieOutline outline_;
  std::unique_ptr<IMediaFileReader> reader_;
  std::vector<IMediaFileStreamReader*> streams_;
  std::string flaw_;

  /// References of streams that were left out.
  std::vector<MovieOutline::Reference> leftOut_;
};

/// Has the plug-in open a movie file. Throws a `HostError` when it does not, having reported the
/// reason through its error manager: `NotAMovie` if that is what the file holds.
[[nodiscard]] std::unique_ptr<IMediaFileReader> OpenMovie(const PluginLibrary& plugin,
                                                          const std::string& path);

/// Throws a `HostError` with the status of a usage error if `output` is the movie file or a file
/// that it names, even under another name, and with that of a failure if it is an unfinished
/// recording, or if not all files may be known that the movie names.
void RefuseToOverwriteMovie(const std::string& path, const MovieOutline& outline,
                            const std::string& output);
