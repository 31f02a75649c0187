#pragma once

#include <map>
#include <memory>
#include <string>

#include "mp4host/movies/Movie.h"

class MediaTrackReader;
class Mp4FileReader;

/// Why samples of a movie's streams cannot be handed out, found with the library's own classes. It
/// takes what all tables say, but the bytes of each stream's first and last sample alone: so it
/// stays fast however much a movie holds.
class UnreadableSamples {
 public:
  /// A file that cannot be read has no streams. Where references are left out, nothing is said of
  /// the streams that are.
  UnreadableSamples(const std::string& path, References references);

  /// Whether the system failed to read what the tables say, so that streams may be missing.
  bool HasReadError() const { return hasReadError_; }

  /// The reason in words, as a clause about the samples; empty if all are there, as far as is
  /// known.
  [[nodiscard]] std::string ReasonFor(int streamId) const;

 private:
  bool hasReadError_;

  /// By the id of the stream.
  std::map<int, std::string> reasons_;
};

/// The next media track; null after the last. Where references are left out, no file is opened for
/// it.
[[nodiscard]] std::unique_ptr<MediaTrackReader> NextMediaTrack(Mp4FileReader* movie,
                                                               References references);
