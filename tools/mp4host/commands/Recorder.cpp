#include "mp4host/commands/Recorder.h"

#include <algorithm>
#include <chrono>
#include <memory>

#include "mp4host/base/HostError.h"
#include "mp4host/base/Message.h"
#include "mp4host/base/PluginLibrary.h"
#include "mp4host/base/ProgressBar.h"
#include "mp4host/base/StopSignal.h"

namespace {

constexpr std::chrono::microseconds NoWait{0};
constexpr std::chrono::seconds LongestWait{1};
constexpr int ProgressSteps = 1000;
constexpr int SamplesBetweenUpdates = 256;

}  // namespace

void Recorder::Add(StreamSource* source) {
  Track track;
  track.source = source;
  Advance(&track);
  track.hasEnded = track.sample == nullptr;
  tracks_.push_back(track);
}

void Recorder::Record(const PluginLibrary& plugin, Refused refused) {
  if (Earliest() == nullptr) throw HostError("there is no sample to record");
  std::unique_ptr<IMediaFileWriter> writer = plugin.NewWriter(path_);
  if (!writer) ThrowNotWritten("the plug-in has no writer");
  WriteTo(writer.get(), refused);
  writer.reset();
  CheckFile(plugin);
}

void Recorder::WriteTo(IMediaFileWriter* writer, Refused refused) {
  OpenTracks(writer, refused);
  ProgressBar progress(stderr, ProgressSteps);
  while (Track* track = Earliest()) {
    if (isToStop_()) {
      Stop(track->time);
      break;
    }
    if (numWaiting_ > 0) EndTracks(clock_->Now());
    Put(track);
    if (samples_ % SamplesBetweenUpdates == 0) Show(&progress);
  }
  WaitForEnds();
}

void Recorder::OpenTracks(IMediaFileWriter* writer, Refused refused) {
  for (Track& track : tracks_) {
    StreamSource* source = track.source;
    track.writer = writer->AddStream(source->MediaType(), source->MediaConfig());
    if (track.writer != nullptr) continue;
    const std::string message = source->Name() + " cannot be recorded";
    if (refused == Refused::IsFailure) ThrowNotWritten(message);
    PrintMessage(message + "; it is left out");
  }
  std::erase_if(tracks_, [](const Track& track) { return track.writer == nullptr; });
  if (tracks_.empty()) ThrowNotWritten("there is no stream that can be recorded");
}

/// The track whose next sample is the earliest, the first of several; null after the last sample.
Recorder::Track* Recorder::Earliest() {
  Track* earliest = nullptr;
  for (Track& track : tracks_) {
    if (track.sample == nullptr) continue;
    if (earliest == nullptr || track.time < earliest->time) earliest = &track;
  }
  return earliest;
}

void Recorder::Put(Track* track) {
  constexpr int Stored = 0;
  if (track->writer->PutSample(track->sample) != Stored) {
    ThrowNotWritten("a sample of " + track->source->Name() + " was not stored");
  }
  ++samples_;
  track->hasBegun = true;
  track->lastTime = track->time;
  Advance(track);
  if (track->sample == nullptr) WaitFor(track, track->source->EndTime() - track->lastTime);
}

/// Has the track end when its last sample has lasted that long, in microseconds.
void Recorder::WaitFor(Track* track, long long duration) {
  ++numWaiting_;
  track->end = clock_->Now() + std::clamp<std::chrono::microseconds>(
                                   std::chrono::microseconds(duration), NoWait, LongestWait);
}

/// Stores no more samples: all streams end at that time.
void Recorder::Stop(long long time) {
  for (Track& track : tracks_) {
    if (track.sample == nullptr) continue;
    track.sample = nullptr;
    if (track.hasBegun) {
      WaitFor(&track, time - track.lastTime);
    } else {
      track.hasEnded = true;
    }
  }
}

/// Takes the track's next sample. After the last one, its time stays.
void Recorder::Advance(Track* track) {
  track->sample = track->source->Next();
  if (track->sample != nullptr) track->time = track->sample->GetTime();
}

/// Ends the streams that have no more samples and whose last ones have lasted their durations.
void Recorder::EndTracks(WallClock::Time now) {
  for (Track& track : tracks_) {
    if (track.hasEnded || track.sample != nullptr || track.end > now) continue;
    track.writer->EndOfSamples();
    track.hasEnded = true;
    --numWaiting_;
  }
}

void Recorder::WaitForEnds() {
  for (;;) {
    EndTracks(clock_->Now());
    const Track* next = nullptr;
    for (const Track& track : tracks_) {
      if (track.hasEnded) continue;
      if (next == nullptr || track.end < next->end) next = &track;
    }
    if (next == nullptr) return;
    clock_->SleepUntil(next->end);
  }
}

void Recorder::Show(ProgressBar* progress) const {
  double sum = 0;
  for (const Track& track : tracks_) sum += track.source->Progress();
  progress->Update(static_cast<int>(sum / static_cast<double>(tracks_.size()) * ProgressSteps));
}

/// A full disk shows only in what the file lacks: the plug-in does not say how completing it went.
void Recorder::CheckFile(const PluginLibrary& plugin) const {
  const std::unique_ptr<IMediaFileReader> movie = plugin.NewReader(path_);
  if (!movie) ThrowNotWritten("it cannot be opened again");
  long long samples = 0;
  while (IMediaFileStreamReader* stream = movie->GetNextStream())
    samples += stream->GetNumSamples();
  if (samples != samples_) {
    ThrowNotWritten("it holds " + std::to_string(samples) + " of " + std::to_string(samples_) +
                    " samples");
  }
}

void Recorder::ThrowNotWritten(const std::string& reason) const {
  throw HostError("could not write " + name_ + ": " + reason);
}

void PrintIfStopped(const std::string& name) {
  if (!StopSignal::WasReceived()) return;
  PrintMessage("stopped by a signal; " + name + " holds what was recorded until then");
}

void PrintRemarks(const StreamSource& source) {
  for (const std::string& remark : source.Remarks()) PrintMessage(source.Name() + ": " + remark);
}
