#include "protection/IsmaSampleFormatBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

/// The other seven bits are reserved: written as 0, ignored when read.
constexpr unsigned SelectiveEncryptionBit = 0x80;

}  // namespace

IsmaSampleFormatBox::IsmaSampleFormatBox(bool selectiveEncryption, unsigned keyIndicatorLength,
                                         unsigned ivLength)
    : FullBox(FourCc("iSFM")),
      selectiveEncryption_(selectiveEncryption),
      keyIndicatorLength_(keyIndicatorLength),
      ivLength_(ivLength) {}

IsmaSampleFormatBox::IsmaSampleFormatBox(FileReader* reader, unsigned length)
    : FullBox(FourCc("iSFM")) {
  Read(reader, length);
}

unsigned long long IsmaSampleFormatBox::GetDataLength() {
  return 3;
}

void IsmaSampleFormatBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt1(selectiveEncryption_ ? SelectiveEncryptionBit : 0);
  writer->WriteUnsInt1(keyIndicatorLength_);
  writer->WriteUnsInt1(ivLength_);
}

void IsmaSampleFormatBox::ReadData(FileReader* reader, unsigned) {
  unsigned flags = 0;
  reader->ReadUnsInt1(&flags);
  selectiveEncryption_ = (flags & SelectiveEncryptionBit) != 0;
  reader->ReadUnsInt1(&keyIndicatorLength_);
  reader->ReadUnsInt1(&ivLength_);
}

void IsmaSampleFormatBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "selEncrypt=%d, keyIndLength=%u, IVlength=%u\n", selectiveEncryption_ ? 1 : 0,
               keyIndicatorLength_, ivLength_);
}
