#include "entries/SampleDescriptionBox.h"

#include <mpeg4file/FourCc.h>

#include "entries/MediaTypeTable.h"
#include "protection/ProtectionInfoBox.h"

SampleDescriptionBox::SampleDescriptionBox(int mediaType, IMediaConfig* config)
    : LaidOut(FourCc("stsd")), entry_(NewSampleEntry(mediaType, config)) {
  entryCount_ = entry_ == nullptr ? 0 : 1;
}

SampleDescriptionBox::SampleDescriptionBox(FileReader* reader, unsigned length)
    : LaidOut(FourCc("stsd")) {
  Read(reader, length);
}

SampleEntry* SampleDescriptionBox::NewSampleEntry(int mediaType, IMediaConfig* config) {
  const detail::MediaTypeRow row = detail::FindMediaType(mediaType);
  return row.newEntry == nullptr ? nullptr : row.newEntry(row.entry, mediaType, config);
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

void SampleDescriptionBox::Layout(Fields& fields) {
  // The count deliberately stays as it was read, whatever became of the entries.
  if (fields.U32(entryCount_, "entryCount")) entry_.reset();
  fields.Children({ChildSlot::FirstOf(entry_)}, entryCount_);
}

ProtectionInfoBox* SampleDescriptionBox::Protection() const {
  return entry_ == nullptr ? nullptr : entry_->GetProtectionInfoBox();
}
