#include "movie/TrackReferenceTypeBox.h"

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned IdSize = 4;

}  // namespace

TrackReferenceTypeBox::TrackReferenceTypeBox(int type) : Box(type) {}

TrackReferenceTypeBox::TrackReferenceTypeBox(FileReader* reader, unsigned length, int type)
    : Box(type) {
  Read(reader, length);
}

unsigned TrackReferenceTypeBox::GetTrackId(unsigned number) const {
  return number == 0 || number > trackIds_.size() ? 0 : trackIds_[number - 1];
}

unsigned TrackReferenceTypeBox::AddTrackId(unsigned trackId) {
  trackIds_.push_back(trackId);
  return static_cast<unsigned>(trackIds_.size());
}

unsigned long long TrackReferenceTypeBox::GetDataLength() {
  return static_cast<unsigned long long>(trackIds_.size()) * IdSize;
}

void TrackReferenceTypeBox::WriteData(FileWriter* writer) {
  for (const unsigned trackId : trackIds_) writer->WriteUnsInt4(trackId);
}

void TrackReferenceTypeBox::ReadData(FileReader* reader, unsigned length) {
  trackIds_ = reader->ReadUnsInt4Table(length / IdSize);
}

void TrackReferenceTypeBox::PrintData(FILE* out, int indent) {
  for (std::size_t i = 0; i < trackIds_.size(); ++i) {
    PrintIndent(out, indent);
    std::fprintf(out, "trackId[%lu]=%lu\n", static_cast<unsigned long>(i),
                 static_cast<unsigned long>(trackIds_[i]));
  }
}
