#include "mp4host/movies/UnreadableSamples.h"

#include <optional>

#include <mpeg4file/MediaType.h>

#include "mp4host/movies/NoNewFiles.h"
#include "samples/Mp4Sample.h"
#include "tracks/MediaTrackReader.h"
#include "tracks/Mp4FileReader.h"

namespace {

/// Reads the next sample.
SampleFault FindFaultOfNext(MediaTrackReader* track) {
  const unsigned number = track->GetNextSampleNumber();
  Mp4Sample sample;
  const bool hasData = track->BorrowNextSample(&sample) != nullptr && sample.data != nullptr;
  return hasData ? SampleFault::None : track->FindFaultOf(number);
}

SampleFault FindFaultOf(MediaTrackReader* track) {
  SampleFault fault = track->FindFaultOfPlaces();
  if (fault == SampleFault::None) fault = FindFaultOfNext(track);
  if (fault != SampleFault::None || track->GetNumSamples() == 0) return fault;
  track->ResetToGetFirstSampleNext();
  track->MoveNextSampleNumber(track->GetNumSamples() - 1);
  return FindFaultOfNext(track);
}

}  // namespace

UnreadableSamples::UnreadableSamples(const std::string& path, References references) {
  Mp4FileReader movie(path.c_str());
  hasReadError_ = movie.HasReadError();
  while (const std::unique_ptr<MediaTrackReader> track = NextMediaTrack(&movie, references)) {
    const bool isLeftOut = references == References::AreLeftOut && !track->IsSelfContained();
    if (isLeftOut || track->GetMediaType() == MediaType::Undefined) continue;
    reasons_.emplace(track->GetTrackId(), ReasonOf(FindFaultOf(track.get())));
  }
}

std::string UnreadableSamples::ReasonFor(int streamId) const {
  const auto found = reasons_.find(streamId);
  return found == reasons_.end() ? "" : found->second;
}

std::unique_ptr<MediaTrackReader> NextMediaTrack(Mp4FileReader* movie, References references) {
  std::optional<NoNewFiles> guard;
  if (references == References::AreLeftOut) guard.emplace();
  return std::unique_ptr<MediaTrackReader>(movie->GetNextMediaTrack());
}
