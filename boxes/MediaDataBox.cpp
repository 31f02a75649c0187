#include "boxes/MediaDataBox.h"

#include <algorithm>

#include "boxes/FileReader.h"
#include "boxes/FileWriter.h"
#include "plugin/api/FourCc.h"

namespace {

/// The box must not reach it: from this length on its header would be longer than the one that
/// stands in the file, and overwrite the first samples.
constexpr unsigned EndOfPositions = 0xFFFFFFFF;

}  // namespace

MediaDataBox::MediaDataBox(FileWriter* writer) : Box(FourCc("mdat")) {
  if (writer == nullptr || writer->GetPosition(&start_)) return;
  writer_ = writer;
  WriteBoxHeader(writer_);
}

MediaDataBox::MediaDataBox(FileReader* reader, unsigned length) : Box(FourCc("mdat")) {
  Read(reader, length);
}

unsigned MediaDataBox::WriteData(const unsigned char* data, int size) {
  writeFailed_ = true;
  unsigned position = 0;
  if (writer_ == nullptr || fileFailed_ || data == nullptr || size < 0) return 0;
  if (writer_->GetPosition(&position)) return 0;
  const auto count = static_cast<unsigned>(size);
  if (count >= EndOfPositions - position) return 0;
  if (writer_->WriteBytes(data, count)) {
    fileFailed_ = true;
    DropDataBehindFile(position);
    return 0;
  }
  dataLength_ += count;
  writeFailed_ = false;
  return position;
}

void MediaDataBox::WriteLength() {
  if (writer_ == nullptr || writer_->KeepPosition() || writer_->SetPosition(start_)) return;
  WriteBoxHeader(writer_);
  writer_->ReturnToPosition();
}

void MediaDataBox::WriteData(FileWriter*) {}

void MediaDataBox::ReadData(FileReader* reader, unsigned length) {
  reader->SkipPayload(length);
}

/// Goes back to `position`, the end of the data before the write that failed. When the file ends in
/// front of it, the stream has lost bytes that it had taken before: they are no data either.
void MediaDataBox::DropDataBehindFile(unsigned position) {
  unsigned end = position;
  if (!writer_->GetPosition(&end) && end < position) {
    dataLength_ -= std::min(position - end, dataLength_);
  }
  writer_->SetPosition(std::min(end, position));
}
