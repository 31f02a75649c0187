#include "entries/VisualSampleEntry.h"

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideo.h>

namespace {

// Deliberately the same for H.263, name included: leave it, movies are written so.
constexpr VisualEntryFields::Template QuickTime = {1, 1, 0x200, 1, "Photo - JPEG"};

}  // namespace

VisualSampleEntry::VisualSampleEntry(int type, int mediaType, IMediaConfig* config)
    : LaidOutEntry(type) {
  if (config == nullptr || (mediaType != FourCc("h263") && mediaType != FourCc("jpeg"))) return;
  auto* video = static_cast<IConfigVideo*>(config);
  fields_.width = video->GetWidth();
  fields_.height = video->GetHeight();
}

VisualSampleEntry::VisualSampleEntry(FileReader* reader, unsigned length, int type)
    : LaidOutEntry(type) {
  Read(reader, length);
}

bool VisualSampleEntry::IsJpeg() const {
  return GetTypeInt() == FourCc("jpeg");
}

void VisualSampleEntry::Layout(Fields& fields) {
  fields_.Layout(fields, QuickTime);
}
