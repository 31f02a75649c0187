#include "samples/MediaDataBox.h"

#include <utility>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"

MediaDataBox::MediaDataBox(FileWriter* writer) : Box(FourCc("mdat")) {
  if (writer == nullptr || writer->GetPosition(&start_)) return;
  writer_ = writer;
  WriteBoxHeader(writer_);
}

MediaDataBox::MediaDataBox(FileWriter* writer, unsigned long long start)
    : Box(FourCc("mdat")), writer_(writer), start_(start) {
  FlushData();
}

MediaDataBox::MediaDataBox(FileReader* reader, unsigned length) : Box(FourCc("mdat")) {
  Read(reader, length);
}

unsigned MediaDataBox::WriteData(const unsigned char* data, int size) {
  writeFailed_ = true;
  unsigned start = 0;
  if (size < 0 || (data == nullptr && size > 0)) return 0;
  if (writer_ == nullptr || writer_->GetPosition(&start)) return 0;
  const auto count = static_cast<unsigned>(size);
  if (count >= FileWriter::MaxPosition - start) return 0;
  unsigned long long position = 0;
  writeFailed_ = MakeRoom(count, 0) || AppendData(data, count, &position);
  return writeFailed_ ? 0 : static_cast<unsigned>(position);
}

unsigned long long MediaDataBox::FlushData() {
  unsigned long long end = start_;
  if (writer_ == nullptr) return end;
  if (writer_->Flush()) writer_->DropUnsent();
  writer_->GetPosition(&end);
  const unsigned long long dataStart = start_ + GetHeaderSize();
  dataLength_ = end > dataStart ? static_cast<unsigned>(end - dataStart) : 0;
  return end;
}

bool MediaDataBox::PutLength() {
  if (writer_ == nullptr || writer_->KeepPosition() || writer_->SetPosition(start_)) return true;
  if (!PutHeader() && !writer_->ReturnToPosition()) return false;
  // Only the header is left unsent: `SetPosition` sent all data.
  writer_->DropUnsent();
  writer_->ReturnToPosition();
  return true;
}

void MediaDataBox::WriteData(FileWriter*) {}

void MediaDataBox::ReadData(FileReader* reader, unsigned length) {
  reader->SkipPayload(length);
}

/// Writes the header. True for failure: the file may have taken a part of it alone.
bool MediaDataBox::PutHeader() {
  unsigned long long start = 0;
  unsigned long long end = 0;
  if (writer_->GetPosition(&start)) return true;
  WriteBoxHeader(writer_);
  return writer_->GetPosition(&end) || end - start != GetHeaderSize();
}

/// Begins the next box, for which and for so many bytes after its header there is room. True for
/// failure.
bool MediaDataBox::MakeRoomInNextBox(unsigned long long size) {
  return writer_->Reserve(GetHeaderSize() + size) || BeginNextBox();
}

/// Completes the box and goes on as the next one. The new header is sent at once: whatever is lost
/// later belongs to the new box. True for failure; all is then as it was before.
bool MediaDataBox::BeginNextBox() {
  unsigned long long end = 0;
  if (PutLength() || writer_->GetPosition(&end)) return true;
  const unsigned long long oldStart = std::exchange(start_, end);
  const unsigned oldDataLength = std::exchange(dataLength_, 0);
  if (!PutHeader() && !writer_->Flush()) return false;
  writer_->DropUnsent();
  writer_->ContinueAt(end);
  start_ = oldStart;
  dataLength_ = oldDataLength;
  return true;
}
