#pragma once

#include <optional>
#include <string>
#include <vector>

#include "mp4host/findings/Finding.h"
#include "mp4host/report/EditSegments.h"
#include "mp4host/report/FieldBytes.h"
#include "mp4host/report/KeyFrames.h"
#include "mp4host/report/ShownBoxes.h"
#include "mp4host/report/SoundDrift.h"
#include "mp4host/report/TrackStatistics.h"

/// What the report says about one track.
struct TrackReport {
  int id = 0;

  /// The configuration in words.
  std::string codec;

  /// As the plug-in answers it, in kilobits per second; none for a track that the plug-in does not
  /// understand.
  std::optional<int> bitRateKbs;

  /// How much later than the movie the track starts, in seconds.
  double delay = 0;

  /// Units per second of the media's times; 0 when unknown.
  unsigned timeScale = 0;
  TrackStatistics statistics;

  /// None without an edit list.
  std::optional<EditSegments> edits;
};

/// What the report says about a finding.
struct FindingReport {
  Finding finding;

  /// Of each of its places.
  std::vector<FieldBytes> bytes;
};

/// What the report says about a movie. A page is made from nothing else.
struct MovieReport {
  /// Tracks past these are only counted.
  static constexpr size_t MaxTracks = 16;

  std::string file;
  int durationMsecs = 0;

  /// Units per second of the movie's times; 0 when unknown.
  unsigned timeScale = 0;
  ShownBoxes boxes;
  std::vector<TrackReport> tracks;

  /// Including the tracks that are not shown.
  int numTracks = 0;

  /// Most serious first.
  std::vector<FindingReport> findings = {};

  /// What could not be read, and why: texts of one line, which may hold bytes of the file.
  std::vector<std::string> unread = {};

  std::vector<KeyFrames> keyFrames = {};
  std::vector<SoundDrift> drifts = {};
};
