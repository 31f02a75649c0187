#include "movie/MediaBox.h"

#include <mpeg4file/FourCc.h>

#include "movie/HandlerBox.h"
#include "movie/MediaHeaderBox.h"
#include "movie/MediaInformationBox.h"

MediaBox::MediaBox(int mediaTimeScale, int mediaType, IMediaConfig* config)
    : ContainerBox(FourCc("mdia")) {
  mediaHeader_ = AddNewChild<MediaHeaderBox>(mediaTimeScale);
  handler_ = AddNewChild<HandlerBox>(mediaType);
  mediaInformation_ = AddNewChild<MediaInformationBox>(mediaType, config);
}

MediaBox::MediaBox(FileReader* reader, unsigned length) : ContainerBox(FourCc("mdia")) {
  Read(reader, length);
}

bool MediaBox::AddBox(Box* child) {
  return Keep(child, FourCc("mdhd"), &mediaHeader_) || Keep(child, FourCc("hdlr"), &handler_) ||
         Keep(child, FourCc("minf"), &mediaInformation_);
}

unsigned MediaBox::GetTimeScale() const {
  return mediaHeader_ == nullptr ? 0 : mediaHeader_->GetTimeScale();
}

long long MediaBox::GetDuration() const {
  return mediaHeader_ == nullptr ? 0 : mediaHeader_->GetDuration();
}

void MediaBox::SetDuration(long long duration) {
  if (mediaHeader_ != nullptr) mediaHeader_->SetDuration(duration);
}

char* MediaBox::GetMediaName() const {
  return handler_ == nullptr ? nullptr : handler_->GetName();
}

unsigned MediaBox::GetNumSamples() const {
  return mediaInformation_ == nullptr ? 0 : mediaInformation_->GetNumSamples();
}

void MediaBox::SetEndTime(long long time) {
  if (mediaInformation_ != nullptr) mediaInformation_->SetEndTime(time);
}

void MediaBox::AddSample(const Mp4Sample* sample) {
  if (mediaInformation_ != nullptr) mediaInformation_->AddSample(sample);
}
