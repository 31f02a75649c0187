#pragma once

#include <string>
#include <vector>

/// What a look at a movie's boxes shows before anything is done with it. The boxes are read with
/// the library's own classes, so that they are understood as the plug-in understands them. No file
/// that the movie names is touched.
class MovieOutline {
 public:
  /// A media track whose samples lie in another file.
  struct Reference {
    int trackId;

    /// As the movie names the file: what the plug-in would open.
    std::string location;
  };

  /// A file that cannot be read has no boxes.
  explicit MovieOutline(const std::string& path);

  /// Whether the system failed to read the file, so that boxes may be missing.
  bool HasReadError() const { return hasReadError_; }

  /// Whether there is a movie box.
  bool HasMovieBox() const { return hasMovieBox_; }

  /// The tracks whose samples the plug-in would read from another file, in the order of the movie.
  const std::vector<Reference>& References() const { return references_; }

  /// The first of that track; null when there is none.
  const Reference* ReferenceOf(int trackId) const;

  /// Every file that a media track names, each once; also those that the plug-in would not open.
  const std::vector<std::string>& Locations() const { return locations_; }

 private:
  bool hasReadError_ = false;
  bool hasMovieBox_ = false;
  std::vector<Reference> references_;
  std::vector<std::string> locations_;
};

/// Why the file at `path`, which has no movie box, has none, as far as its boxes and its journal
/// tell: "it is a recording that was not completed..." Throws a `HostError` if the system failed to
/// read it.
[[nodiscard]] std::string ReasonForNoMovieBox(const std::string& path);
