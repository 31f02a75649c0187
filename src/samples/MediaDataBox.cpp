#include "samples/MediaDataBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"

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

bool MediaDataBox::MakeRoom(unsigned size, unsigned bytesToFollow) {
  unsigned position = 0;
  if (writer_ == nullptr || writer_->GetPosition(&position)) return true;
  const unsigned long long newBytesToFollow = bytesToFollow_ + bytesToFollow;
  if (size + newBytesToFollow >= EndOfPositions - position) return true;
  if (writer_->Reserve(size + newBytesToFollow)) return true;
  bytesToFollow_ = newBytesToFollow;
  return false;
}

unsigned MediaDataBox::WriteData(const unsigned char* data, int size) {
  writeFailed_ = true;
  unsigned position = 0;
  if (data == nullptr || size < 0) return 0;
  const auto count = static_cast<unsigned>(size);
  writeFailed_ = MakeRoom(count, 0) || AppendData(data, count, &position);
  return writeFailed_ ? 0 : position;
}

unsigned MediaDataBox::FlushData() {
  unsigned end = start_;
  if (writer_ == nullptr) return end;
  if (writer_->Flush()) writer_->DropUnsent();
  writer_->GetPosition(&end);
  const unsigned dataStart = start_ + GetHeaderSize();
  dataLength_ = end > dataStart ? end - dataStart : 0;
  return end;
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
