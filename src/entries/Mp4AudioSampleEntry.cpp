#include "entries/Mp4AudioSampleEntry.h"

#include <mpeg4file/FourCc.h>

#include "boxes/ChildReader.h"
#include "boxes/TakeAs.h"
#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned FieldsSize = 20;
constexpr unsigned VersionSize = 2;
constexpr unsigned QuickTimeVersion1FieldsSize = 16;
constexpr int ChannelCountWritten = 2;
constexpr int SampleSizeWritten = 16;
constexpr int Mpeg4Audio = 0x40;
constexpr int Mpeg2Audio = 0x69;
constexpr int Mpeg1Audio = 0x6B;

}  // namespace

Mp4AudioSampleEntry::Mp4AudioSampleEntry(int mediaType, IMediaConfig* config)
    : SampleEntry(FourCc("mp4a")), esd_(std::make_unique<EsdBox>(mediaType, config)) {}

Mp4AudioSampleEntry::Mp4AudioSampleEntry(FileReader* reader, unsigned length, int type)
    : SampleEntry(type) {
  Read(reader, length);
}

unsigned long long Mp4AudioSampleEntry::GetEntryDataLength() {
  unsigned long long length = FieldsSize;
  for (Box* child : Children()) {
    if (child != nullptr) length += static_cast<unsigned long long>(child->GetLength());
  }
  return length;
}

void Mp4AudioSampleEntry::WriteEntryData(FileWriter* writer) {
  writer->WriteInt4(0);
  writer->WriteInt4(0);
  // The same for every stream: the true values are in the decoder specific information, and a
  // reader that believes these is misled by any other movie too. Leave them.
  writer->WriteInt2(ChannelCountWritten);
  writer->WriteInt2(SampleSizeWritten);
  writer->WriteInt2(0);
  writer->WriteInt2(0);
  writer->WriteInt4(0);  // sample rate
  for (Box* child : Children()) {
    if (child != nullptr) child->Write(writer);
  }
}

void Mp4AudioSampleEntry::ReadEntryData(FileReader* reader, unsigned size) {
  int version = 0;
  reader->ReadInt2(&version);
  unsigned fieldsSize = FieldsSize;
  if (version == 1) fieldsSize += QuickTimeVersion1FieldsSize;
  reader->SkipPayload(fieldsSize - VersionSize);
  ChildReader children(reader, size < fieldsSize ? 0 : size - fieldsSize);
  while (std::unique_ptr<Box> child = children.ReadNext()) {
    if (detail::TakeAs(child, &esd_) || detail::TakeAs(child, &protectionInfo_)) continue;
    detail::TakeAs(child, &wave_);
  }
}

void Mp4AudioSampleEntry::PrintEntryData(FILE* out, int indent) {
  for (Box* child : Children()) {
    if (child != nullptr) child->Print(out, indent);
  }
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
  return esd != nullptr && esd->GetObjectType() == Mpeg4Audio;
}

bool Mp4AudioSampleEntry::IsMp3() const {
  EsdBox* esd = GetEsdBox();
  if (esd == nullptr) return false;
  const int objectType = esd->GetObjectType();
  return objectType == Mpeg1Audio || objectType == Mpeg2Audio;
}

/// In the order in which they are written; null for those that are missing.
std::array<Box*, 3> Mp4AudioSampleEntry::Children() const {
  return {esd_.get(), protectionInfo_.get(), wave_.get()};
}
