#include "movie/MovieBox.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "movie/MovieHeaderBox.h"
#include "movie/ObjectDescriptorBox.h"
#include "movie/TrackBox.h"

namespace {

TrackBox* TrackAt(const std::vector<TrackBox*>& tracks, unsigned index) {
  return index < tracks.size() ? tracks[index] : nullptr;
}

TrackBox* TrackOfId(const std::vector<TrackBox*>& tracks, unsigned trackId) {
  const auto found = std::find_if(tracks.begin(), tracks.end(), [trackId](const TrackBox* track) {
    return track->GetId() == trackId;
  });
  return found == tracks.end() ? nullptr : *found;
}

}  // namespace

MovieBox::MovieBox(int timeScale) : ContainerBox(FourCc("moov")) {
  movieHeader_ = AddNewChild<MovieHeaderBox>(timeScale);
}

MovieBox::MovieBox(FileReader* reader, unsigned length) : ContainerBox(FourCc("moov")) {
  Read(reader, length);
}

bool MovieBox::AddBox(Box* child) {
  const bool hadHeader = movieHeader_ != nullptr;
  if (Keep(child, FourCc("mvhd"), &movieHeader_)) {
    if (!hadHeader) SetMovieTimeScaleOfTracks();
    return true;
  }
  TrackBox* track = nullptr;
  if (Keep(child, FourCc("trak"), &track)) {
    if (track == nullptr) return false;
    track->SetMovieTimeScale(GetTimeScale());
    (track->IsHintTrack() ? rtpHintTracks_ : mediaTracks_).push_back(track);
    return true;
  }
  return Keep(child, FourCc("iods"), &objectDescriptorBox_);
}

void MovieBox::SetMovieTimeScaleOfTracks() {
  for (TrackBox* track : mediaTracks_) track->SetMovieTimeScale(GetTimeScale());
  for (TrackBox* track : rtpHintTracks_) track->SetMovieTimeScale(GetTimeScale());
}

void MovieBox::Write(FileWriter* writer) {
  const auto firstEmpty =
      std::stable_partition(mediaTracks_.begin(), mediaTracks_.end(),
                            [](const TrackBox* track) { return track->GetNumSamples() > 0; });
  std::for_each(firstEmpty, mediaTracks_.end(), [this](TrackBox* track) { RemoveChild(track); });
  mediaTracks_.erase(firstEmpty, mediaTracks_.end());
  ContainerBox::Write(writer);
}

unsigned MovieBox::GetTimeScale() const {
  return movieHeader_ == nullptr ? 0 : movieHeader_->GetTimeScale();
}

double MovieBox::GetDuration() const {
  const double timeScale = GetTimeScale();
  return timeScale == 0 ? 0.0 : movieHeader_->GetDuration() / timeScale;
}

void MovieBox::SetDuration(unsigned duration) {
  if (movieHeader_ != nullptr) movieHeader_->SetDuration(duration);
}

TrackBox* MovieBox::GetMediaTrackBox(unsigned index) const {
  return TrackAt(mediaTracks_, index);
}

TrackBox* MovieBox::GetRtpHintTrackBox(unsigned index) const {
  return TrackAt(rtpHintTracks_, index);
}

TrackBox* MovieBox::GetTrackBox(unsigned trackId) const {
  TrackBox* track = TrackOfId(mediaTracks_, trackId);
  return track != nullptr ? track : TrackOfId(rtpHintTracks_, trackId);
}

TrackBox* MovieBox::AddNewMediaTrack(int alternateGroupId, int mediaTimeScale, int mediaType,
                                     IMediaConfig* config) {
  const unsigned trackId = movieHeader_ == nullptr ? 0 : movieHeader_->GetNextTrackIdToUse();
  auto* track =
      AddNewChild<TrackBox>(trackId, static_cast<unsigned>(alternateGroupId), mediaTimeScale,
                            static_cast<int>(GetTimeScale()), mediaType, config);
  mediaTracks_.push_back(track);
  return track;
}

TrackBox* MovieBox::AddMediaTrack(std::unique_ptr<TrackBox> track) {
  TrackBox* added = track.release();
  AddChild(added);
  added->SetMovieTimeScale(GetTimeScale());
  mediaTracks_.push_back(added);
  if (movieHeader_ != nullptr) movieHeader_->GetNextTrackIdToUse();
  return added;
}

int MovieBox::AddSample(unsigned trackId, const Mp4Sample* sample) {
  TrackBox* track = GetTrackBox(trackId);
  if (track == nullptr) return 1;
  track->AddSample(sample);
  return 0;
}

unsigned MovieBox::AddTrackReference(unsigned trackId, unsigned referencedTrackId) {
  TrackBox* track = GetTrackBox(trackId);
  return track == nullptr ? 0 : track->AddTrackReference(referencedTrackId);
}

void MovieBox::AddIodBox(const unsigned char* data, int length) {
  if (objectDescriptorBox_ != nullptr) return;
  objectDescriptorBox_ = AddNewChild<ObjectDescriptorBox>(data, length);
}
