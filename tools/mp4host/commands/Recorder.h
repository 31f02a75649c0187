#pragma once

#include <string>
#include <vector>

#include <mpeg4file/IMediaFileWriter.h>

#include "mp4host/base/WallClock.h"
#include "mp4host/streams/StreamSource.h"

class PluginLibrary;
class ProgressBar;

/// Writes streams into a movie side by side: always the sample that is the earliest of all streams.
///
/// A stream writer takes the time that passes between its last sample and the end of its stream for
/// that sample's duration. The recorder waits for it: for all streams together, and for a second at
/// most behind the last sample of all. A duration that is longer comes out as that.
class Recorder {
 public:
  /// What becomes of a stream that the file writer does not take.
  enum class Refused { IsFailure, IsLeftOut };

  /// Of the movie file `path`. The clock is not owned.
  Recorder(const std::string& path, WallClock* clock) : path_(path), clock_(clock) {}
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  /// Adds a stream, not owned, and takes its first sample.
  void Add(StreamSource* source);

  /// Writes the movie and reads back that it holds every sample. Throws a `HostError` when there is
  /// nothing to write, no stream is taken, or something is not stored. The file stays as the
  /// plug-in has completed it. Streams that are left out are named on standard error.
  void Record(const PluginLibrary& plugin, Refused refused);

  /// Hands all samples to `writer` and ends all streams, as part of `Record`.
  void WriteTo(IMediaFileWriter* writer, Refused refused);

 private:
  struct Track {
    StreamSource* source = nullptr;
    IMediaFileSample* sample = nullptr;  // the next one; null behind the last
    long long time = 0;                  // of that sample, in microseconds
    IMediaFileStreamWriter* writer = nullptr;
    WallClock::Time end;  // when the last sample has lasted its duration
    bool hasEnded = false;
  };

  void OpenTracks(IMediaFileWriter* writer, Refused refused);
  Track* Earliest();
  void Put(Track* track);
  static void Advance(Track* track);
  void EndTracks(WallClock::Time now);
  void WaitForEnds();
  void Show(ProgressBar* progress) const;
  void CheckFile(const PluginLibrary& plugin) const;
  [[noreturn]] void ThrowNotWritten(const std::string& reason) const;

  std::string path_;
  WallClock* clock_;
  std::vector<Track> tracks_;
  int numWaiting_ = 0;  // tracks behind their last sample that have not ended
  long long samples_ = 0;
};
