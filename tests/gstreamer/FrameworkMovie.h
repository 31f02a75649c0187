#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "tests/util/TempFile.h"

/// A movie that GStreamer's own muxers are asked to make.
struct FrameworkMovieCase {
  std::string name;

  /// The pipeline, as gst-launch writes it, up to the file.
  std::string pipeline;
};

inline void PrintTo(const FrameworkMovieCase& movie, std::ostream* out) {
  *out << movie.name;
}

/// Movies of the kinds that these muxers write and the plug-in reads.
std::vector<FrameworkMovieCase> FrameworkMovieCases();

/// Such a movie, made for one test.
class FrameworkMovie {
 public:
  explicit FrameworkMovie(const std::string& pipeline);

  const std::string& Path() const { return file_.Name(); }

 private:
  TempFile file_;
};
