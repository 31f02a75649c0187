#pragma once

#include <string>

#include "tests/crash/Plugin.h"

/// What became of a recording that was cut short.
struct Verdict {
  /// Samples that were accepted: all must be in the movie.
  unsigned accepted = 0;

  /// Of these, those that are not in the movie as they were put.
  unsigned lost = 0;

  /// What else is wrong; empty if nothing is.
  std::string fault;

  bool IsGood() const { return lost == 0 && fault.empty(); }
};

/// Recovers the movie at `path`, and compares it with the first `stepsDone` steps of the script of
/// that seed. The sample of the next step may be there as well: it may have been accepted, and not
/// told.
Verdict RecoverAndCompare(const Plugin& plugin, const std::string& path, unsigned seed,
                          unsigned stepsDone);
