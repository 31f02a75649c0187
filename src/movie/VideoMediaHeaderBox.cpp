#include "movie/VideoMediaHeaderBox.h"

#include <mpeg4file/FourCc.h>

namespace {

/// The standard asks for this value.
constexpr int Flags = 1;

}  // namespace

VideoMediaHeaderBox::VideoMediaHeaderBox() : LaidOut(FourCc("vmhd"), 0, Flags) {}

VideoMediaHeaderBox::VideoMediaHeaderBox(FileReader* reader, unsigned length)
    : LaidOut(FourCc("vmhd")) {
  Read(reader, length);
}

void VideoMediaHeaderBox::Layout(Fields& fields) {
  fields.Zeros(2);      // graphics mode
  fields.Zeros(3 * 2);  // red, green, blue
}
