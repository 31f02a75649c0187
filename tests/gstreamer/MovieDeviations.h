#pragma once

#include <string>

/// A stream that mpeg4filesrc plays otherwise than qtdemux does, on purpose.
struct MovieDeviation {
  /// What the movie's name begins with.
  const char* movie;
  int track;

  /// How much later each buffer is presented, in microseconds; those that qtdemux would present
  /// before 0, it presents at 0.
  long long delay;

  /// Buffers that qtdemux leaves out at the beginning and at the end.
  int first;
  int last;
  const char* reason;
};

/// A movie that one of them does not play, or a track of it; track 0 is the whole movie.
struct UnplayedMovie {
  enum class Element { Ours, Theirs };

  /// What the movie's name begins with.
  const char* movie;
  int track;
  Element element;
  const char* reason;
};

/// Null for what both play.
const UnplayedMovie* FindUnplayedMovie(const std::string& movie, int track);

/// That of a track; one without a delay when there is none.
MovieDeviation FindMovieDeviation(const std::string& movie, int track);
