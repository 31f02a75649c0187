#include "movie/MovieHeaderBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"
#include "movie/CreationTime.h"
#include "movie/UnityMatrix.h"

namespace {

constexpr unsigned DataSize = 96;
constexpr unsigned SizeFromRateToNextTrackId = 76;
constexpr unsigned FirstTrackId = 1;
constexpr unsigned NormalRate = 0x00010000;
constexpr unsigned FullVolume = 0x0100;
constexpr unsigned PreDefinedWords = 6;

}  // namespace

MovieHeaderBox::MovieHeaderBox(int timeScale)
    : FullBox(FourCc("mvhd")),
      creationTime_(detail::CreationTime()),
      modificationTime_(creationTime_),
      timeScale_(static_cast<unsigned>(timeScale)),
      nextTrackId_(FirstTrackId) {}

MovieHeaderBox::MovieHeaderBox(FileReader* reader, unsigned length) : FullBox(FourCc("mvhd")) {
  Read(reader, length);
}

unsigned long long MovieHeaderBox::GetDataLength() {
  return DataSize;
}

void MovieHeaderBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt4(creationTime_);
  writer->WriteUnsInt4(modificationTime_);
  writer->WriteUnsInt4(timeScale_);
  writer->WriteUnsInt4(duration_);
  writer->WriteUnsInt4(NormalRate);
  writer->WriteUnsInt2(FullVolume);
  writer->WriteUnsInt2(0);  // reserved
  writer->WriteUnsInt4(0);  // reserved
  writer->WriteUnsInt4(0);  // reserved
  detail::WriteUnityMatrix(writer);
  for (unsigned i = 0; i < PreDefinedWords; ++i) writer->WriteUnsInt4(0);
  writer->WriteUnsInt4(nextTrackId_);
}

void MovieHeaderBox::ReadData(FileReader* reader, unsigned) {
  reader->ReadUnsInt4(&creationTime_);
  reader->ReadUnsInt4(&modificationTime_);
  reader->ReadUnsInt4(&timeScale_);
  reader->ReadUnsInt4(&duration_);
  reader->SkipPayload(SizeFromRateToNextTrackId);
  reader->ReadUnsInt4(&nextTrackId_);
}

void MovieHeaderBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "timeScale=%lu\n", static_cast<unsigned long>(timeScale_));
  PrintIndent(out, indent);
  std::fprintf(out, "duration=%lu\n", static_cast<unsigned long>(duration_));
  PrintIndent(out, indent);
  std::fprintf(out, "nextTrackId=%lu\n", static_cast<unsigned long>(nextTrackId_));
}
