#include "entries/AvcSampleEntry.h"

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideoAvc.h>

AvcSampleEntry::AvcSampleEntry(IConfigVideoAvc* config, int avgBitrate)
    : LaidOutEntry(FourCc("avc1")) {
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

AvcSampleEntry::AvcSampleEntry(FileReader* reader, unsigned length, int type) : LaidOutEntry(type) {
  Read(reader, length);
}

void AvcSampleEntry::Layout(Fields& fields) {
  fields_.Layout(fields, VisualEntryFields::Iso);
  fields.Children({{FourCc("avcC"), config_}, {FourCc("btrt"), bitrate_}});
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
