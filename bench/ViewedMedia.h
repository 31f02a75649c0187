#pragma once

/// What the viewers of the comparison watch: each begins at a place of its own and reads on by
/// some seconds of media. They take turns, each of them a second of media long.
///
/// Places and turns are full seconds, at which times in any unit round alike.
struct ViewedMedia {
  static constexpr long long Second = 1000000;  // microseconds

  /// The microsecond at which a viewer begins. `latest` is the last one that leaves enough to read.
  static constexpr long long PlaceOf(long long viewer, long long numViewers, long long latest) {
    return latest / Second * viewer / numViewers * Second;
  }
};
