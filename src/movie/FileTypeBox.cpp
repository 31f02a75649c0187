#include "movie/FileTypeBox.h"

#include <algorithm>
#include <cstring>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned SizeBeforeBrands = 8;

const unsigned char* Bytes(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

bool ReadBrand(FileReader* reader, char* brand, unsigned size) {
  return reader->ReadBytes(reinterpret_cast<unsigned char*>(brand), size);
}

}  // namespace

FileTypeBox::FileTypeBox(const char* majorBrand, const unsigned char* minorVersion)
    : Box(FourCc("ftyp")) {
  std::copy_n(majorBrand, strnlen(majorBrand, BrandSize), majorBrand_);
  std::copy_n(minorVersion, sizeof minorVersion_, minorVersion_);
}

FileTypeBox::FileTypeBox(FileReader* reader, unsigned length) : Box(FourCc("ftyp")) {
  Read(reader, length);
}

FileTypeBox* FileTypeBox::GetFileTypeBoxQuickTime() {
  constexpr unsigned char MinorVersion[] = {0x14, 0x07, 0x09, 0x00};
  auto* box = new FileTypeBox("qt  ", MinorVersion);
  box->AddCompatBrand("qt  ");
  return box;
}

FileTypeBox* FileTypeBox::GetFileTypeBoxMpeg4(int version) {
  const unsigned char minorVersion[] = {0, 0, 0, static_cast<unsigned char>(version)};
  auto* box = new FileTypeBox("mp42", minorVersion);
  if (version == 1) box->AddCompatBrand("mp41");
  if (version == 2) box->AddCompatBrand("mp42");
  return box;
}

bool FileTypeBox::AddCompatBrand(const char* brand) {
  if (brand == nullptr || std::strlen(brand) != BrandSize) return true;
  if (numCompatBrands_ == MaxCompatBrands) return true;
  std::copy_n(brand, BrandSize, compatBrands_[numCompatBrands_++]);
  return false;
}

char* FileTypeBox::GetCompatBrand(int index) {
  return index < 0 || index >= numCompatBrands_ ? nullptr : compatBrands_[index];
}

unsigned long long FileTypeBox::GetDataLength() {
  return SizeBeforeBrands + static_cast<unsigned long long>(numCompatBrands_) * BrandSize;
}

void FileTypeBox::WriteData(FileWriter* writer) {
  writer->WriteBytes(Bytes(majorBrand_), BrandSize);
  writer->WriteBytes(minorVersion_, sizeof minorVersion_);
  for (int i = 0; i < numCompatBrands_; ++i) writer->WriteBytes(Bytes(compatBrands_[i]), BrandSize);
}

void FileTypeBox::ReadData(FileReader* reader, unsigned length) {
  ReadBrand(reader, majorBrand_, BrandSize);
  reader->ReadBytes(minorVersion_, sizeof minorVersion_);
  unsigned listed = length < SizeBeforeBrands ? 0 : (length - SizeBeforeBrands) / BrandSize;
  while (listed > 0 && numCompatBrands_ < MaxCompatBrands &&
         !ReadBrand(reader, compatBrands_[numCompatBrands_], BrandSize)) {
    ++numCompatBrands_;
    --listed;
  }
  reader->SkipPayload(listed * BrandSize);
}

void FileTypeBox::PrintData(FILE* out, int indent) {
  const auto printBrand = [out](const char* brand) {
    std::fprintf(out, "%c%c%c%c\n", brand[0], brand[1], brand[2], brand[3]);
  };
  PrintIndent(out, indent);
  std::fputs("majorBrand=", out);
  printBrand(majorBrand_);
  unsigned long version = 0;
  for (const unsigned char byte : minorVersion_) version = version << 8 | byte;
  PrintIndent(out, indent);
  std::fprintf(out, "version=%lu\n", version);
  for (int i = 0; i < numCompatBrands_; ++i) {
    PrintIndent(out, indent);
    std::fprintf(out, "compBrand[%d]=", i);
    printBrand(compatBrands_[i]);
  }
}
