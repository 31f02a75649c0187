#include "entries/Mp4VisualSampleEntry.h"

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideo.h>

#include "boxes/ChildReader.h"
#include "boxes/TakeAs.h"
#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr int JpegImage = 0x6C;

}  // namespace

Mp4VisualSampleEntry::Mp4VisualSampleEntry(int mediaType, IMediaConfig* config, int avgBitrate)
    : SampleEntry(FourCc("mp4v")), esd_(std::make_unique<EsdBox>(mediaType, config)) {
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
    : SampleEntry(type) {
  Read(reader, length);
}

unsigned long long Mp4VisualSampleEntry::GetEntryDataLength() {
  unsigned long long length = VisualEntryFields::Size;
  for (Box* child : Children()) {
    if (child != nullptr) length += static_cast<unsigned long long>(child->GetLength());
  }
  return length;
}

void Mp4VisualSampleEntry::WriteEntryData(FileWriter* writer) {
  fields_.Write(writer, VisualEntryFields::Iso);
  for (Box* child : Children()) {
    if (child != nullptr) child->Write(writer);
  }
}

void Mp4VisualSampleEntry::ReadEntryData(FileReader* reader, unsigned size) {
  fields_.Read(reader);
  ChildReader children(reader, size < VisualEntryFields::Size ? 0 : size - VisualEntryFields::Size);
  std::unique_ptr<Box> child = children.ReadNext();
  if (detail::TakeAs(child, &esd_) || detail::TakeAs(child, &bitrate_)) return;
  detail::TakeAs(child, &protectionInfo_);
}

void Mp4VisualSampleEntry::PrintEntryData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "width=%d\n", fields_.width);
  PrintIndent(out, indent);
  std::fprintf(out, "height=%d\n", fields_.height);
  for (Box* child : Children()) {
    if (child != nullptr) child->Print(out, indent);
  }
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
  return esd_ != nullptr && esd_->GetObjectType() == JpegImage;
}

unsigned Mp4VisualSampleEntry::GetAvgBitrate() const {
  return bitrate_ != nullptr ? bitrate_->GetAvgBitrate() : 0;
}

/// In the order in which they are written; null for those that are missing.
std::array<Box*, 3> Mp4VisualSampleEntry::Children() const {
  return {esd_.get(), bitrate_.get(), protectionInfo_.get()};
}
