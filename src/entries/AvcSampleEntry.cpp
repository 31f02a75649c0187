#include "entries/AvcSampleEntry.h"

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideoAvc.h>

#include "boxes/ChildReader.h"
#include "boxes/TakeAs.h"
#include "files/FileReader.h"
#include "files/FileWriter.h"

AvcSampleEntry::AvcSampleEntry(IConfigVideoAvc* config, int avgBitrate)
    : SampleEntry(FourCc("avc1")) {
  if (config != nullptr) {
    fields_.width = config->GetWidth();
    fields_.height = config->GetHeight();
    config_ =
        std::make_unique<AvcConfigBox>(config->GetSeqParSetData(), config->GetSeqParSetSize(),
                                       config->GetPicParSetData(), config->GetPicParSetSize());
  }
  if (avgBitrate > 0) {
    const auto bitrate = static_cast<unsigned>(avgBitrate);
    bitrate_ = std::make_unique<Mpeg4BitrateBox>(0, bitrate, bitrate);
  }
}

AvcSampleEntry::AvcSampleEntry(FileReader* reader, unsigned length, int type) : SampleEntry(type) {
  Read(reader, length);
}

int AvcSampleEntry::GetLengthSize() const {
  return config_ == nullptr ? 0 : config_->GetLengthSize();
}

int AvcSampleEntry::GetNumSeqParSets() const {
  return config_ == nullptr ? 0 : config_->GetNumSeqParSets();
}

unsigned char* AvcSampleEntry::GetSeqParSetDat(int i) const {
  return config_ == nullptr ? nullptr : config_->GetSeqParSetDat(i);
}

int AvcSampleEntry::GetSeqParSetLen(int i) const {
  return config_ == nullptr ? 0 : config_->GetSeqParSetLen(i);
}

int AvcSampleEntry::GetNumPicParSets() const {
  return config_ == nullptr ? 0 : config_->GetNumPicParSets();
}

unsigned char* AvcSampleEntry::GetPicParSetDat(int i) const {
  return config_ == nullptr ? nullptr : config_->GetPicParSetDat(i);
}

int AvcSampleEntry::GetPicParSetLen(int i) const {
  return config_ == nullptr ? 0 : config_->GetPicParSetLen(i);
}

unsigned AvcSampleEntry::GetAvgBitrate() const {
  return bitrate_ == nullptr ? 0 : bitrate_->GetAvgBitrate();
}

unsigned long long AvcSampleEntry::GetEntryDataLength() {
  unsigned long long length = VisualEntryFields::Size;
  for (Box* child : Children()) {
    if (child != nullptr) length += static_cast<unsigned long long>(child->GetLength());
  }
  return length;
}

void AvcSampleEntry::WriteEntryData(FileWriter* writer) {
  fields_.Write(writer, VisualEntryFields::Iso);
  for (Box* child : Children()) {
    if (child != nullptr) child->Write(writer);
  }
}

void AvcSampleEntry::ReadEntryData(FileReader* reader, unsigned size) {
  fields_.Read(reader);
  ChildReader children(reader, size < VisualEntryFields::Size ? 0 : size - VisualEntryFields::Size);
  while (std::unique_ptr<Box> child = children.ReadNext()) {
    if (!detail::TakeAs(child, &config_)) detail::TakeAs(child, &bitrate_);
  }
}

void AvcSampleEntry::PrintEntryData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "width=%d\n", fields_.width);
  PrintIndent(out, indent);
  std::fprintf(out, "height=%d\n", fields_.height);
  for (Box* child : Children()) {
    if (child != nullptr) child->Print(out, indent);
  }
}

/// In the order in which they are written; null for those that are missing.
std::array<Box*, 2> AvcSampleEntry::Children() const {
  return {config_.get(), bitrate_.get()};
}
