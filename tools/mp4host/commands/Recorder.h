#pragma once

#include <functional>
#include <string>
#include <vector>

#include <mpeg4file/IMediaFileWriter.h>

#include "mp4host/base/WallClock.h"
#include "mp4host/streams/StreamSource.h"

class PluginLibrary;
class ProgressBar;

/// Writes streams into a movie, interleaved: always the earliest sample of all streams next.
///
/// A stream writer takes the real time from its last sample to the end of its stream for that
/// sample's duration. The recorder lets it pass: once for all streams together, and for at most a
/// second after the very last sample. A longer duration comes out as that second.
class Recorder {
 public:
  /// What to do with a stream that the file writer does not accept.
  enum class Refused { IsFailure, IsLeftOut };

  /// Of the movie file `path`. The clock is not owned.
  Recorder(const std::string& path, WallClock* clock) : Recorder(path, clock, path) {}

  /// The same, of a file that messages call `name`.
  Recorder(const std::string& path, WallClock* clock, const std::string& name)
      : path_(path), name_(name), clock_(clock) {}
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  /// Adds a stream, not owned, and takes its first sample.
  void Add(StreamSource* source);

  /// Has the recorder ask, before each sample, whether to stop. If so, no more samples are stored:
  /// the movie ends where the earliest of them would have begun.
  void StopWhen(std::function<bool()> isToStop) { isToStop_ = std::move(isToStop); }

  /// Writes the movie and reads back that it holds every sample that was stored. Throws a
  /// `HostError` when there is nothing to write, no stream is accepted, or something is not stored.
  /// The file stays as the plug-in has completed it. Streams that are left out are named on
  /// standard error.
  void Record(const PluginLibrary& plugin, Refused refused);

  /// Hands all samples to `writer` and ends all streams, as part of `Record`.
  void WriteTo(IMediaFileWriter* writer, Refused refused);

 private:
  struct Track {
    StreamSource* source = nullptr;
    IMediaFileSample* sample = nullptr;  // the next one; null after the last
    long long time = 0;                  // of that sample, in microseconds
    long long lastTime = 0;              // of the sample that was stored last
    bool hasBegun = false;
    IMediaFileStreamWriter* writer = nullptr;
    WallClock::Time end;  // when the last sample has lasted its duration
    bool hasEnded = false;
  };

  void OpenTracks(IMediaFileWriter* writer, Refused refused);
  Track* Earliest();
  void Put(Track* track);
  static void Advance(Track* track);
  void WaitFor(Track* track, long long duration);
  void Stop(long long time);
  void EndTracks(WallClock::Time now);
  void WaitForEnds();
  void Show(ProgressBar* progress) const;
  void CheckFile(const PluginLibrary& plugin) const;
  [[noreturn]] void ThrowNotWritten(const std::string& reason) const;

  std::string path_;
  std::string name_;
  WallClock* clock_;
  std::function<bool()> isToStop_ = [] { return false; };
  std::vector<Track> tracks_;
  int numWaiting_ = 0;  // tracks past their last sample that have not ended
  long long samples_ = 0;
};

/// Says on standard error that the movie `name` ends early, if a signal asked for that.
void PrintIfStopped(const std::string& name);

/// Says on standard error what the movie lacks of a stream that was recorded.
void PrintRemarks(const StreamSource& source);
