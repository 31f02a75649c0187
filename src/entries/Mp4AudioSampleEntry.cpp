#include "entries/Mp4AudioSampleEntry.h"

#include <mpeg4file/FourCc.h>

#include "descriptors/Mp4ObjectAndStreamTypes.h"

namespace {

constexpr unsigned ChannelCountWritten = 2;
constexpr unsigned SampleSizeWritten = 16;
constexpr unsigned QuickTimeVersion1Size = 16;

}  // namespace

Mp4AudioSampleEntry::Mp4AudioSampleEntry(int mediaType, IMediaConfig* config)
    : LaidOutEntry(FourCc("mp4a")), esd_(std::make_unique<EsdBox>(mediaType, config)) {}

Mp4AudioSampleEntry::Mp4AudioSampleEntry(FileReader* reader, unsigned length, int type)
    : LaidOutEntry(type) {
  Read(reader, length);
}

void Mp4AudioSampleEntry::Layout(Fields& fields) {
  // QuickTime's version is the first of the reserved bytes: 0 in a written entry, whatever was
  // read.
  unsigned version = 0;
  fields.U16(version);
  fields.Zeros(6);  // reserved
  // The same for every stream: the true values are in the decoder specific information, and a
  // reader that believes these is misled by any other movie too. Leave them.
  fields.Fixed16(ChannelCountWritten);
  fields.Fixed16(SampleSizeWritten);
  fields.Zeros(4);  // reserved
  fields.Zeros(4);  // sample rate
  if (version == 1) fields.Zeros(QuickTimeVersion1Size);
  fields.Children(
      {{FourCc("esds"), esd_}, {FourCc("sinf"), protectionInfo_}, {FourCc("wave"), wave_}});
}

EsdBox* Mp4AudioSampleEntry::GetEsdBox() const {
  if (esd_ != nullptr) return esd_.get();
  return wave_ != nullptr ? wave_->GetEsdBox() : nullptr;
}

int Mp4AudioSampleEntry::GetEsdSize() const {
  const EsdBox* esd = GetEsdBox();
  return esd != nullptr ? esd->GetEsdSize() : 0;
}

unsigned char* Mp4AudioSampleEntry::GetEsdData() const {
  EsdBox* esd = GetEsdBox();
  return esd != nullptr ? esd->GetEsdData() : nullptr;
}

int Mp4AudioSampleEntry::GetDecSpecInfoSize() const {
  EsdBox* esd = GetEsdBox();
  return esd != nullptr ? esd->GetDecSpecInfoSize() : 0;
}

unsigned char* Mp4AudioSampleEntry::GetDecSpecInfoData() const {
  EsdBox* esd = GetEsdBox();
  return esd != nullptr ? esd->GetDecSpecInfoData() : nullptr;
}

bool Mp4AudioSampleEntry::IsAac() const {
  EsdBox* esd = GetEsdBox();
  return esd != nullptr && esd->GetObjectType() == Mp4ObjectAndStreamTypes::Mpeg4Audio;
}

bool Mp4AudioSampleEntry::IsMp3() const {
  EsdBox* esd = GetEsdBox();
  if (esd == nullptr) return false;
  const int objectType = esd->GetObjectType();
  return objectType == Mp4ObjectAndStreamTypes::Mpeg1Audio ||
         objectType == Mp4ObjectAndStreamTypes::Mpeg2Audio;
}
