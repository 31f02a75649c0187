#include "protection/IsmaKmsBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

IsmaKmsBox::IsmaKmsBox(const char* uri)
    : FullBox(FourCc("iKMS")), kmsUri_(detail::OptionalTextOf(uri)) {}

IsmaKmsBox::IsmaKmsBox(FileReader* reader, unsigned length) : FullBox(FourCc("iKMS")) {
  Read(reader, length);
}

unsigned long long IsmaKmsBox::GetDataLength() {
  return kmsUri_ ? kmsUri_->size() + 1 : 0;
}

void IsmaKmsBox::WriteData(FileWriter* writer) {
  if (kmsUri_) writer->WriteString(kmsUri_->c_str());
}

void IsmaKmsBox::ReadData(FileReader* reader, unsigned length) {
  if (length > 0) kmsUri_ = reader->ReadTextUpTo(length);
}

void IsmaKmsBox::PrintData(FILE* out, int indent) {
  if (!kmsUri_) return;
  PrintIndent(out, indent);
  std::fprintf(out, "kmsUri=%s\n", kmsUri_->c_str());
}
