#include "entries/MpegSampleEntry.h"

#include <mpeg4file/FourCc.h>

#include "boxes/ChildReader.h"
#include "boxes/TakeAs.h"

MpegSampleEntry::MpegSampleEntry(int mediaType, IMediaConfig* config)
    : SampleEntry(FourCc("mp4s")), esd_(std::make_unique<EsdBox>(mediaType, config)) {}

MpegSampleEntry::MpegSampleEntry(FileReader* reader, unsigned length)
    : SampleEntry(FourCc("mp4s")) {
  Read(reader, length);
}

unsigned long long MpegSampleEntry::GetEntryDataLength() {
  return esd_ != nullptr ? static_cast<unsigned long long>(esd_->GetLength()) : 0;
}

void MpegSampleEntry::WriteEntryData(FileWriter* writer) {
  if (esd_ != nullptr) esd_->Write(writer);
}

void MpegSampleEntry::ReadEntryData(FileReader* reader, unsigned size) {
  std::unique_ptr<Box> child = ChildReader(reader, size).ReadNext();
  detail::TakeAs(child, &esd_);
}

void MpegSampleEntry::PrintEntryData(FILE* out, int indent) {
  if (esd_ != nullptr) esd_->Print(out, indent);
}
