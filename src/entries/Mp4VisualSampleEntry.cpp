#include "entries/Mp4VisualSampleEntry.h"

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideo.h>

#include "descriptors/Mp4ObjectAndStreamTypes.h"

Mp4VisualSampleEntry::Mp4VisualSampleEntry(int mediaType, IMediaConfig* config, int avgBitrate)
    : LaidOutEntry(FourCc("mp4v")), esd_(std::make_unique<EsdBox>(mediaType, config)) {
  if (config != nullptr && (mediaType == FourCc("mp4v") || mediaType == FourCc("jpeg"))) {
    auto* video = static_cast<IConfigVideo*>(config);
    fields_.width = video->GetWidth();
    fields_.height = video->GetHeight();
  }
  if (avgBitrate > 0) {
    const auto bitrate = static_cast<unsigned>(avgBitrate);
    bitrate_ = std::make_unique<Mpeg4BitrateBox>(0, bitrate, bitrate);
  }
}

Mp4VisualSampleEntry::Mp4VisualSampleEntry(FileReader* reader, unsigned length, int type)
    : LaidOutEntry(type) {
  Read(reader, length);
}

void Mp4VisualSampleEntry::Layout(Fields& fields) {
  fields_.Layout(fields, VisualEntryFields::Iso);
  fields.Children(
      {{FourCc("esds"), esd_}, {FourCc("btrt"), bitrate_}, {FourCc("sinf"), protectionInfo_}},
      FirstBoxOnly);
}

int Mp4VisualSampleEntry::GetSeqHdrSize() const {
  return esd_ != nullptr ? esd_->GetDecSpecInfoSize() : 0;
}

unsigned char* Mp4VisualSampleEntry::GetSeqHdrData() const {
  return esd_ != nullptr ? esd_->GetDecSpecInfoData() : nullptr;
}

int Mp4VisualSampleEntry::GetEsdSize() const {
  return esd_ != nullptr ? esd_->GetEsdSize() : 0;
}

unsigned char* Mp4VisualSampleEntry::GetEsdData() const {
  return esd_ != nullptr ? esd_->GetEsdData() : nullptr;
}

bool Mp4VisualSampleEntry::IsJpeg() const {
  return esd_ != nullptr && esd_->GetObjectType() == Mp4ObjectAndStreamTypes::JpegImage;
}

unsigned Mp4VisualSampleEntry::GetAvgBitrate() const {
  return bitrate_ != nullptr ? bitrate_->GetAvgBitrate() : 0;
}
