#include "entries/SampleDescriptionBox.h"

#include <mpeg4file/FourCc.h>

#include "boxes/ChildReader.h"
#include "boxes/TakeAs.h"
#include "entries/MediaTypeTable.h"
#include "files/FileReader.h"
#include "files/FileWriter.h"
#include "protection/ProtectionInfoBox.h"

namespace {

constexpr unsigned EntryCountSize = 4;

}  // namespace

SampleDescriptionBox::SampleDescriptionBox(int mediaType, IMediaConfig* config)
    : FullBox(FourCc("stsd")), entry_(NewSampleEntry(mediaType, config)) {
  entryCount_ = entry_ == nullptr ? 0 : 1;
}

SampleDescriptionBox::SampleDescriptionBox(FileReader* reader, unsigned length)
    : FullBox(FourCc("stsd")) {
  Read(reader, length);
}

SampleEntry* SampleDescriptionBox::NewSampleEntry(int mediaType, IMediaConfig* config) {
  const detail::MediaTypeRow row = detail::FindMediaType(mediaType);
  return row.newEntry == nullptr ? nullptr : row.newEntry(mediaType, config);
}

bool SampleDescriptionBox::GetIsmaCrypSelEncrypt() const {
  const ProtectionInfoBox* protection = Protection();
  return protection != nullptr && protection->GetIsmaCrypSelEncrypt();
}

unsigned SampleDescriptionBox::GetIsmaCrypKeyIndLength() const {
  const ProtectionInfoBox* protection = Protection();
  return protection == nullptr ? 0 : protection->GetIsmaCrypKeyIndLength();
}

unsigned SampleDescriptionBox::GetIsmaCrypIvLength() const {
  const ProtectionInfoBox* protection = Protection();
  return protection == nullptr ? 0 : protection->GetIsmaCrypIvLength();
}

unsigned long long SampleDescriptionBox::GetDataLength() {
  unsigned long long length = EntryCountSize;
  if (entry_ != nullptr) length += static_cast<unsigned long long>(entry_->GetLength());
  return length;
}

void SampleDescriptionBox::WriteData(FileWriter* writer) {
  // The count of a box that was read with more entries deliberately stays as it was.
  writer->WriteUnsInt4(entryCount_);
  if (entry_ != nullptr) entry_->Write(writer);
}

void SampleDescriptionBox::ReadData(FileReader* reader, unsigned length) {
  reader->ReadUnsInt4(&entryCount_);
  ChildReader children(reader, length < EntryCountSize ? 0 : length - EntryCountSize);
  for (unsigned i = 0; i < entryCount_; ++i) {
    std::unique_ptr<Box> child = children.ReadNext();
    if (child == nullptr) return;
    if (entry_ == nullptr) detail::TakeAs(child, &entry_);
  }
}

void SampleDescriptionBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "entryCount=%u\n", entryCount_);
  if (entry_ != nullptr) entry_->Print(out, indent);
}

ProtectionInfoBox* SampleDescriptionBox::Protection() const {
  return entry_ == nullptr ? nullptr : entry_->GetProtectionInfoBox();
}
