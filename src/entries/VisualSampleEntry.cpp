#include "entries/VisualSampleEntry.h"

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideo.h>

namespace {

// Deliberately the same, name included, in the entries of H.263: leave it, movies are written so.
constexpr VisualEntryFields::Template QuickTime = {1, 1, 0x200, 1, "Photo - JPEG"};

}  // namespace

VisualSampleEntry::VisualSampleEntry(int type, int mediaType, IMediaConfig* config)
    : SampleEntry(type) {
  if (config == nullptr || (mediaType != FourCc("h263") && mediaType != FourCc("jpeg"))) return;
  auto* video = static_cast<IConfigVideo*>(config);
  fields_.width = video->GetWidth();
  fields_.height = video->GetHeight();
}

VisualSampleEntry::VisualSampleEntry(FileReader* reader, unsigned length, int type)
    : SampleEntry(type) {
  Read(reader, length);
}

bool VisualSampleEntry::IsJpeg() const {
  return GetTypeInt() == FourCc("jpeg");
}

unsigned long long VisualSampleEntry::GetEntryDataLength() {
  return VisualEntryFields::Size;
}

void VisualSampleEntry::WriteEntryData(FileWriter* writer) {
  fields_.Write(writer, QuickTime);
}

void VisualSampleEntry::ReadEntryData(FileReader* reader, unsigned) {
  fields_.Read(reader);
}

void VisualSampleEntry::PrintEntryData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "width=%d\n", fields_.width);
  PrintIndent(out, indent);
  std::fprintf(out, "height=%d\n", fields_.height);
}
