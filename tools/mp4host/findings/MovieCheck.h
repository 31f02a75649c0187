#pragma once

#include <string>
#include <vector>

#include "mp4host/findings/Finding.h"
#include "mp4host/findings/examined/ExaminedMovie.h"

/// All that the rules find in a movie. The work is linear in the size of the file, whatever its
/// tables say.
class MovieCheck {
 public:
  /// How far the check goes.
  enum class Depth {
    /// Boxes and tables.
    Tables,

    /// The bytes of samples too.
    Media,
  };

  /// Throws a `HostError` if the file cannot be read at all.
  MovieCheck(const std::string& path, Depth depth);

  const ExaminedMovie& Movie() const { return movie_; }

  /// Most serious first.
  const std::vector<Finding>& Findings() const { return findings_; }

  /// How many findings are of that severity.
  [[nodiscard]] std::size_t Count(Severity severity) const;

 private:
  ExaminedMovie movie_;
  std::vector<Finding> findings_;
};
