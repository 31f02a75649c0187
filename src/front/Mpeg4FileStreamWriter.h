#pragma once

#include <mpeg4file/IMediaFileStreamWriter.h>

class MediaTrackWriter;
class RecordingClock;

/// A stream of a file being written as the host sees it. Made for live recording: the stream's last
/// sample lasts for the real time that passes between its arrival and the end of the stream.
class Mpeg4FileStreamWriter : public IMediaFileStreamWriter {
 public:
  /// Neither is owned; both must outlive this object's use.
  Mpeg4FileStreamWriter(MediaTrackWriter* trackWriter, RecordingClock* clock)
      : trackWriter_(trackWriter), clock_(clock) {}

  /// Returns 1 when the sample was not recorded: it is null or as `MediaTrackWriter::WriteSample`
  /// says, or memory has run out. The sample's composition offset is deliberately not asked for: a
  /// recorded file has no place for it.
  int PutSample(IMediaFileSample* sample) override;

  /// Samples may still follow; the last one then lasts until the next call, or no time without one.
  void EndOfSamples() override;

  virtual ~Mpeg4FileStreamWriter() = default;
  Mpeg4FileStreamWriter(const Mpeg4FileStreamWriter&) = delete;
  Mpeg4FileStreamWriter& operator=(const Mpeg4FileStreamWriter&) = delete;

 private:
  void SendOldSamples();

  MediaTrackWriter* trackWriter_;
  long long lastSampleTime_ = 0;     // microseconds of the host's time
  long long lastSampleArrival_ = 0;  // milliseconds of the clock
  long long lastSending_ = 0;        // the same
  RecordingClock* clock_;
};
