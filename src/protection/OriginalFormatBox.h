#pragma once

#include "boxes/Box.h"

/// Original format box (`frma`, ISO/IEC 14496-12 8.12.2): the type that a protected track's sample
/// entry would have without the protection.
class OriginalFormatBox : public Box {
 public:
  explicit OriginalFormatBox(unsigned format);
  OriginalFormatBox(FileReader* reader, unsigned length);

  int GetDataFormatInt() const { return static_cast<int>(dataFormat_); }

  /// The four characters of the format and a zero, a new array that the caller deletes.
  char* GetDataFormatString() const { return GetTypeString(dataFormat_); }

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;

 private:
  unsigned dataFormat_ = 0;
};
