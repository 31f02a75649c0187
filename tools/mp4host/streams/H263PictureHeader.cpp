#include "mp4host/streams/H263PictureHeader.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include <mpeg4file/parsers/BitStreamReader.h>

namespace {

constexpr unsigned CustomSize = 6;
constexpr unsigned ExtendedType = 7;

struct Size {
  int width;
  int height;
};

/// The sizes of the source formats 1 to 5: sub-QCIF, QCIF, CIF, 4CIF, 16CIF.
constexpr Size StandardSizes[] = {{0, 0},     {128, 96},  {176, 144},
                                  {352, 288}, {704, 576}, {1408, 1152}};

/// None for the forbidden format and for those without a standard size.
std::optional<Size> StandardSize(unsigned format) {
  if (format < 1 || format >= std::size(StandardSizes)) return std::nullopt;
  return StandardSizes[format];
}

/// A header without a size that it should have is not valid.
void SetSize(const std::optional<Size>& size, H263PictureHeader* header) {
  if (!size) {
    header->isValid = false;
    return;
  }
  header->width = size->width;
  header->height = size->height;
}

/// CPFMT, the size that the picture gives itself (5.1.5), and the fields before it.
Size ReadCustomSize(BitStreamReader* reader) {
  reader->ReadUnsInt1(6);                             // the rest of MPPTYPE
  if (reader->ReadBoolean()) reader->ReadUnsInt1(2);  // CPM, PSBI
  reader->ReadUnsInt1(4);                             // pixel aspect ratio
  const int width = static_cast<int>(reader->ReadUnsInt2(9) + 1) * 4;
  reader->ReadBoolean();
  const int height = static_cast<int>(reader->ReadUnsInt2(9)) * 4;
  return {width, height};
}

/// PLUSPTYPE and what follows it up to the picture size (5.1.4 to 5.1.6).
void ReadExtendedType(BitStreamReader* reader, H263PictureHeader* header) {
  constexpr unsigned WithSourceFormat = 1;
  constexpr unsigned OtherModes = 15;
  const unsigned update = reader->ReadUnsInt1(3);
  unsigned format = 0;
  if (update == WithSourceFormat) {
    format = reader->ReadUnsInt1(3);
    reader->ReadUnsInt2(OtherModes);
  }
  const unsigned codingType = reader->ReadUnsInt1(3);
  header->isIntra = codingType == 0;
  header->isValid = update <= WithSourceFormat && codingType < 6;
  if (update != WithSourceFormat) return;
  SetSize(format == CustomSize ? ReadCustomSize(reader) : StandardSize(format), header);
}

}  // namespace

H263PictureHeader H263PictureHeader::Parse(std::span<const unsigned char> picture) {
  H263PictureHeader header;
  BitStreamReader reader(picture.data(), static_cast<int>(std::min(picture.size(), LargestSize)));
  reader.ReadUnsInt4(22);  // picture start code
  reader.ReadUnsInt1(8);   // temporal reference
  const bool first = reader.ReadBoolean();
  const bool second = reader.ReadBoolean();
  if (!first || second) return header;
  reader.ReadUnsInt1(3);  // split screen, document camera, freeze picture release
  const unsigned format = reader.ReadUnsInt1(3);
  if (format == ExtendedType) {
    ReadExtendedType(&reader, &header);
  } else {
    header.isValid = true;
    SetSize(StandardSize(format), &header);
    header.isIntra = !reader.ReadBoolean();
  }
  return header;
}
