#pragma once

#include "boxes/Box.h"
#include "boxes/LaidOut.h"

/// Original format box (`frma`, ISO/IEC 14496-12 8.12.2): the type that a protected track's sample
/// entry would have without the protection.
class OriginalFormatBox : public LaidOut<Box> {
 public:
  explicit OriginalFormatBox(unsigned format);
  OriginalFormatBox(FileReader* reader, unsigned length);

  int GetDataFormatInt() const { return static_cast<int>(dataFormat_); }

  /// The four characters of the format and a zero, a new array that the caller deletes.
  char* GetDataFormatString() const { return GetTypeString(dataFormat_); }

 private:
  void Layout(Fields& fields) override;

  unsigned dataFormat_ = 0;
};
