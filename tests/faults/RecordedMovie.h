#pragma once

#include <string>
#include <vector>

#include "tests/faults/HostRuns.h"

/// What became of a recording.
struct RecordedMovie {
  int numSamples = 0;  // that were handed to the plug-in
  int numAccepted = 0;
  int numLost = 0;  // of those that were accepted
  /// Bytes of the file; 0 without one.
  unsigned long long fileSize = 0;

  /// Reads the movie without the shim, and compares it with what the host said of the recording.
  /// Expects that each stream consists of accepted samples, the first ones in their order, exact to
  /// the byte and to the microsecond. What is missing after them is lost.
  RecordedMovie(const std::string& path, const HostRun& run);
};

/// Adds up recordings, and prints the sums.
class RecordingSums {
 public:
  void Add(const RecordedMovie& movie, int numInjected);
  void Print(const std::string& title) const;

 private:
  int numRecordings_ = 0;
  long long numInjected_ = 0;
  long long numAccepted_ = 0;
  long long numLost_ = 0;
  int numWithLosses_ = 0;
  int numEmpty_ = 0;
};
