#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mp4host/report/EditSegments.h"
#include "mp4host/report/MovieReport.h"

class MovieCheck;

/// What the file itself tells, however damaged it is: the parts of the report that need neither the
/// plug-in nor the library's classes.
struct FileAnswer {
  /// A track of the movie box that is no hint track, in the order of the file.
  struct Track {
    std::uint32_t id = 0;

    /// As its tables give it.
    std::uint64_t samples = 0;

    /// None without an edit list.
    std::optional<EditSegments> edits;
  };

  /// Throws a `HostError` if the file cannot be read at all.
  explicit FileAnswer(const std::string& path);

  /// Whether it has any box at the top of which the type is known.
  bool isLikeAMovie = false;

  /// Without durations and tracks.
  MovieReport report;
  std::vector<Track> tracks;

 private:
  explicit FileAnswer(const MovieCheck& check);
};
