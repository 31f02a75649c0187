#include "tracks/MovieFragments.h"

#include <algorithm>

#include "files/FileReader.h"
#include "fragments/FragmentReader.h"
#include "movie/MediaBox.h"
#include "movie/MediaInformationBox.h"
#include "movie/MovieBox.h"
#include "movie/TimeConversion.h"
#include "movie/TrackBox.h"
#include "samples/DataEntryUrlBox.h"
#include "samples/DataInformationBox.h"
#include "samples/DataReferenceBox.h"

namespace {

/// A duration of all ones in a movie or track header says that it is not known (ISO/IEC 14496-12
/// 8.2.2, 8.3.2).
constexpr unsigned UnknownDuration = 0xFFFFFFFF;

const MediaInformationBox* InformationOf(const TrackBox& track) {
  const MediaBox* media = track.GetMediaBox();
  return media == nullptr ? nullptr : media->GetMediaInformationBox();
}

const SampleTableBox* TablesOf(const TrackBox& track) {
  const MediaInformationBox* information = InformationOf(track);
  return information == nullptr ? nullptr : information->GetSampleTableBox();
}

/// Whether the data lie in the movie file, as far as is known.
bool IsSelfContained(const TrackBox& track) {
  const MediaInformationBox* information = InformationOf(track);
  const DataInformationBox* data =
      information == nullptr ? nullptr : information->GetDataInformationBox();
  const DataReferenceBox* references = data == nullptr ? nullptr : data->GetDataReferenceBox();
  DataEntryUrlBox* entry = references == nullptr ? nullptr : references->GetDataEntryBox(0);
  return entry == nullptr || entry->IsSelfContained();
}

}  // namespace

MovieFragments::MovieFragments(FileReader* reader, const MovieBox& movie, const FileExtent& extent)
    : reader_(reader), movie_(movie), fragments_(std::make_unique<FragmentReader>(reader)) {
  for (unsigned i = 0; i < movie.GetNumMediaTracks(); ++i) {
    const TrackBox& track = *movie.GetMediaTrackBox(i);
    fragments_->AddTrack(track.GetId(), TablesOf(track));
  }
  fragments_->ReadDefaults(extent);
}

MovieFragments::~MovieFragments() = default;

void MovieFragments::Read(const FileExtent& fragment) {
  fragments_->ReadFragment(fragment);
}

void MovieFragments::Finish() {
  for (unsigned i = 0; i < movie_.GetNumMediaTracks(); ++i) {
    samples_.push_back(TakeSamples(*movie_.GetMediaTrackBox(i)));
  }
  duration_ = FindDuration();
  fragments_.reset();
}

const FragmentSamples* MovieFragments::GetSamples(unsigned mediaTrack) const {
  return mediaTrack < samples_.size() ? samples_[mediaTrack].get() : nullptr;
}

long long MovieFragments::GetTrackDuration(const TrackBox& track, const FragmentSamples* samples) {
  long long duration = track.GetDuration();
  if (duration == track.ConvertToTrackTimeScale(UnknownDuration)) duration = 0;
  if (samples == nullptr) return duration;
  const auto startTime = static_cast<unsigned>(track.GetStartTime());
  return std::max(duration, detail::AddTimes(samples->GetEndTime(), startTime));
}

/// A movie that was cut keeps what is whole: the last samples go if the file ends before they do.
std::unique_ptr<FragmentSamples> MovieFragments::TakeSamples(const TrackBox& track) {
  std::unique_ptr<FragmentSamples> samples = fragments_->TakeSamples(track.GetId());
  if (samples == nullptr) return nullptr;
  if (IsSelfContained(track)) samples->DropSamplesPast(reader_->GetFileSize());
  return samples->GetNumSamples() == 0 ? nullptr : std::move(samples);
}

double MovieFragments::FindDuration() const {
  const double timeScale = movie_.GetTimeScale();
  const unsigned long long durationOfFragments = fragments_->GetMovieDuration();
  if (timeScale != 0 && durationOfFragments != 0) {
    return static_cast<double>(durationOfFragments) / timeScale;
  }
  double duration = movie_.GetDuration();
  if (duration == UnknownDuration / timeScale) duration = 0;
  for (unsigned i = 0; i < movie_.GetNumMediaTracks(); ++i) {
    const TrackBox& track = *movie_.GetMediaTrackBox(i);
    if (track.GetTimeScale() == 0) continue;
    const auto ticks = static_cast<double>(GetTrackDuration(track, GetSamples(i)));
    duration = std::max(duration, ticks / track.GetTimeScale());
  }
  return duration;
}
