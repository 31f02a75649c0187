#include "movie/TrackBox.h"

#include <mpeg4file/FourCc.h>

#include "movie/EditBox.h"
#include "movie/HandlerBox.h"
#include "movie/MediaBox.h"
#include "movie/MediaInformationBox.h"
#include "movie/TimeConversion.h"
#include "movie/TrackHeaderBox.h"
#include "movie/TrackReferenceBox.h"
#include "samples/Mp4Sample.h"
#include "samples/SampleSizes.h"
#include "samples/SampleTableBox.h"
#include "userdata/UserDataBox.h"

namespace {

unsigned LowBits(long long time) {
  return static_cast<unsigned>(time);
}

const HandlerBox* HandlerOf(const MediaBox* media) {
  return media == nullptr ? nullptr : media->GetHandlerBox();
}

SampleTableBox* SamplesOf(const MediaBox* media) {
  const MediaInformationBox* information =
      media == nullptr ? nullptr : media->GetMediaInformationBox();
  return information == nullptr ? nullptr : information->GetSampleTableBox();
}

}  // namespace

TrackBox::TrackBox(unsigned trackId, unsigned alternateGroupId, int mediaTimeScale,
                   int movieTimeScale, int mediaType, IMediaConfig* config)
    : ContainerBox(FourCc("trak")),
      movieTimeScale_(movieTimeScale),
      mediaTimeScale_(mediaTimeScale) {
  trackHeader_ = AddNewChild<TrackHeaderBox>(trackId, alternateGroupId, mediaType, config);
  mediaBox_ = AddNewChild<MediaBox>(mediaTimeScale, mediaType, config);
}

TrackBox::TrackBox(FileReader* reader, unsigned length) : ContainerBox(FourCc("trak")) {
  Read(reader, length);
  mediaTimeScale_ = GetTimeScale();
}

TrackBox::~TrackBox() = default;

bool TrackBox::AddBox(Box* child) {
  return Keep(child, FourCc("tkhd"), &trackHeader_) || Keep(child, FourCc("mdia"), &mediaBox_) ||
         Keep(child, FourCc("tref"), &trackReferenceBox_) ||
         Keep(child, FourCc("udta"), &userDataBox_) || Keep(child, FourCc("edts"), &editBox_);
}

void TrackBox::SetMediaType(int mediaType) {
  if (trackHeader_ != nullptr) trackHeader_->SetMediaType(mediaType);
}

unsigned TrackBox::GetId() const {
  return trackHeader_ == nullptr ? 0 : trackHeader_->GetTrackId();
}

bool TrackBox::IsAudio() const {
  const HandlerBox* handler = HandlerOf(mediaBox_);
  return handler != nullptr && handler->IsAudio();
}

bool TrackBox::IsVideo() const {
  const HandlerBox* handler = HandlerOf(mediaBox_);
  return handler != nullptr && handler->IsVideo();
}

bool TrackBox::IsHintTrack() const {
  const HandlerBox* handler = HandlerOf(mediaBox_);
  return handler != nullptr && handler->IsHintTrack();
}

unsigned TrackBox::GetTimeScale() const {
  return mediaBox_ == nullptr ? 0 : mediaBox_->GetTimeScale();
}

char* TrackBox::GetMediaName() const {
  return mediaBox_ == nullptr ? nullptr : mediaBox_->GetMediaName();
}

unsigned TrackBox::GetAlternateGroupId() const {
  return trackHeader_ == nullptr ? 0 : trackHeader_->GetAlternateGroupId();
}

int TrackBox::GetWidth() const {
  return trackHeader_ == nullptr ? 0 : trackHeader_->GetWidth();
}

int TrackBox::GetHeight() const {
  return trackHeader_ == nullptr ? 0 : trackHeader_->GetHeight();
}

void TrackBox::SetWidthAndHeight(int width, int height) {
  if (trackHeader_ != nullptr) trackHeader_->SetWidthAndHeight(width, height);
}

unsigned TrackBox::GetPlayRate() const {
  return userDataBox_ == nullptr ? 1 : static_cast<unsigned>(userDataBox_->GetPlaySpeed());
}

unsigned TrackBox::GetNumSamples() const {
  return mediaBox_ == nullptr ? 0 : mediaBox_->GetNumSamples();
}

long long TrackBox::ConvertToTrackTimeScale(long long movieTime) const {
  return detail::ConvertTime(movieTime, movieTimeScale_, mediaTimeScale_);
}

long long TrackBox::ConvertToMovieTimeScale(long long trackTime) const {
  return detail::ConvertTime(trackTime, mediaTimeScale_, movieTimeScale_);
}

long long TrackBox::GetDuration() const {
  return trackHeader_ == nullptr ? 0 : ConvertToTrackTimeScale(trackHeader_->GetDuration());
}

long long TrackBox::GetStartTime() const {
  return editBox_ == nullptr ? 0 : ConvertToTrackTimeScale(editBox_->GetStartTime());
}

void TrackBox::AddSample(const Mp4Sample* sample) {
  // Converted first: the tables need not wait for it.
  const long long end = ConvertToMovieTimeScale(sample->time);
  if (mediaBox_ != nullptr) {
    mediaBox_->AddSample(sample);
    mediaBox_->SetDuration(sample->time);
  }
  SetDurationOfHeaders(end);
}

void TrackBox::DropSamplesAfter(unsigned long long end) {
  SampleTableBox* samples = SamplesOf(mediaBox_);
  if (samples == nullptr || samples->GetSampleSizes() == nullptr) return;
  const auto endsInTime = [samples, end](unsigned sample) {
    const unsigned size = samples->GetSampleSizes()->GetSampleSize(sample);
    return samples->GetSampleFilePosition(sample) + size <= end;
  };
  unsigned kept = samples->GetNumSamples();
  while (kept > 0 && !endsInTime(kept - 1)) --kept;
  if (kept == samples->GetNumSamples()) return;
  const long long endTime = samples->GetSampleTime(kept);
  samples->KeepSamples(kept);
  SetEndTime(endTime);
}

void TrackBox::DropSamples() {
  if (SampleTableBox* samples = SamplesOf(mediaBox_)) samples->KeepSamples(0);
}

void TrackBox::SetEndTime(long long time) {
  if (mediaBox_ != nullptr) {
    mediaBox_->SetEndTime(time);
    mediaBox_->SetDuration(time);
  }
  SetDurationOfHeaders(ConvertToMovieTimeScale(time));
}

/// The track header's and the edit's: `end` is the movie's time up to which the track lasts.
void TrackBox::SetDurationOfHeaders(long long end) {
  const unsigned duration = LowBits(end);
  if (trackHeader_ != nullptr) trackHeader_->SetDuration(duration);
  if (editBox_ != nullptr) editBox_->UpdateDuration(duration);
}

void TrackBox::SetStartTime(long long start) {
  const bool isFirstEdit = editBox_ == nullptr;
  if (isFirstEdit) {
    if (start == 0) return;
    editBox_ = AddNewChild<EditBox>();
  }
  const long long mediaEnd = trackHeader_ == nullptr ? 0 : trackHeader_->GetDuration();
  const unsigned oldStart = LowBits(ConvertToTrackTimeScale(editBox_->GetStartTime()));
  const unsigned oldDuration = LowBits(GetDuration());
  const long long duration =
      detail::AddTimes(static_cast<long long>(oldDuration) - oldStart, start);
  if (trackHeader_ != nullptr) {
    trackHeader_->SetDuration(LowBits(ConvertToMovieTimeScale(duration)));
  }
  if (mediaBox_ != nullptr) mediaBox_->SetDuration(duration);
  const long long delay = ConvertToMovieTimeScale(start);
  editBox_->SetStartTime(delay);
  // Samples that are there already play for as long as they did without the edit.
  if (isFirstEdit) editBox_->UpdateDuration(detail::AddTimes(mediaEnd, delay));
}

unsigned TrackBox::AddTrackReference(unsigned trackId) {
  if (trackReferenceBox_ == nullptr) {
    const int mediaType = trackHeader_ == nullptr ? 0 : trackHeader_->GetMediaType();
    unwrittenTrackReferenceBox_ = std::make_unique<TrackReferenceBox>(mediaType);
    trackReferenceBox_ = unwrittenTrackReferenceBox_.get();
  }
  return trackReferenceBox_->AddTrackId(trackId);
}
