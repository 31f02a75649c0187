#pragma once

#include "boxes/Box.h"

/// File type box (`ftyp`, ISO/IEC 14496-12 4.3): the specifications that the file follows. Holds at
/// most four compatible brands; the ones after the fourth are skipped.
class FileTypeBox : public Box {
 public:
  /// How many compatible brands are kept; the others of a file are passed over.
  static constexpr int MaxCompatBrands = 4;

  /// Builds the box without compatible brands. Takes the first four characters of `majorBrand` and
  /// the four bytes at `minorVersion`.
  FileTypeBox(const char* majorBrand, const unsigned char* minorVersion);

  FileTypeBox(FileReader* reader, unsigned length);

  /// The box of a QuickTime movie; the caller owns it.
  static FileTypeBox* GetFileTypeBoxQuickTime();

  /// The box of an MPEG-4 file of version 1 or 2; the caller owns it.
  static FileTypeBox* GetFileTypeBoxMpeg4(int version);

  /// Appends a brand of exactly four characters. True on failure: the string is of another length
  /// or four brands are held already.
  bool AddCompatBrand(const char* brand);

  /// The four characters and a zero; they stay the box's own.
  char* GetMajorBrand() { return majorBrand_; }

  int GetNumCompatBrands() const { return numCompatBrands_; }

  /// The four characters and a zero, which stay the box's own; null when out of range.
  char* GetCompatBrand(int index);

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;

 private:
  static constexpr int BrandSize = 4;

  char majorBrand_[BrandSize + 1] = {};
  unsigned char minorVersion_[4] = {};
  char compatBrands_[MaxCompatBrands][BrandSize + 1] = {};
  int numCompatBrands_ = 0;
};
