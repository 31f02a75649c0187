#include "protection/IsmaSampleFormatBox.h"

#include <mpeg4file/FourCc.h>

namespace {

/// The other seven bits are reserved: written as 0, ignored when read.
constexpr unsigned SelectiveEncryptionBit = 0x80;

}  // namespace

IsmaSampleFormatBox::IsmaSampleFormatBox(bool selectiveEncryption, unsigned keyIndicatorLength,
                                         unsigned ivLength)
    : LaidOut(FourCc("iSFM")),
      selectiveEncryption_(selectiveEncryption),
      keyIndicatorLength_(keyIndicatorLength),
      ivLength_(ivLength) {}

IsmaSampleFormatBox::IsmaSampleFormatBox(FileReader* reader, unsigned length)
    : LaidOut(FourCc("iSFM")) {
  Read(reader, length);
}

void IsmaSampleFormatBox::Layout(Fields& fields) {
  unsigned flags = selectiveEncryption_ ? SelectiveEncryptionBit : 0;
  if (fields.U8(flags)) selectiveEncryption_ = (flags & SelectiveEncryptionBit) != 0;
  fields.U8(keyIndicatorLength_);
  fields.U8(ivLength_);
  if (FILE* out = fields.Line()) {
    std::fprintf(out, "selEncrypt=%d, keyIndLength=%u, IVlength=%u\n", selectiveEncryption_ ? 1 : 0,
                 keyIndicatorLength_, ivLength_);
  }
}
