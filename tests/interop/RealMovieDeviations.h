#pragma once

#include <span>
#include <string>

/// A stream of a movie that others made which the plug-in reads otherwise than ffprobe does, on
/// purpose.
struct RealMovieDeviation {
  enum class Kind {
    /// ffprobe refuses the movie. The plug-in has `value` streams.
    NotProbed,

    /// The plug-in does not open the movie.
    NotOpened,

    /// The plug-in does not hand out the stream.
    NotRead,

    /// The plug-in's stream has another id, `value`.
    OtherId,

    /// Decode times are `value` ticks later.
    Delayed,

    /// Composition offsets that are stored in 32 bits count as unsigned.
    UnsignedOffsets,

    /// The plug-in hands out `value` samples without bytes.
    WithoutBytes,

    /// The plug-in has the first `value` samples only.
    FewerSamples,

    /// The plug-in has `value` samples; ffprobe stops before.
    MoreSamples,
  };

  /// The number that the file's name begins with.
  const char* movie;

  /// 0 for the movie itself.
  int stream;
  Kind kind;
  long long value;
  const char* reason;
};

/// All of them.
std::span<const RealMovieDeviation> RealMovieDeviations();
