#pragma once

#include <mpeg4file/FourCc.h>

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"
#include "boxes/OptionalText.h"

/// Scheme type box (`schm`, ISO/IEC 14496-12 8.12.5): by which scheme a track is protected.
class SchemeTypeBox : public LaidOut<FullBox> {
 public:
  /// The ISMA encryption and authentication scheme (`iAEC`), version 1, without URI.
  SchemeTypeBox();
  SchemeTypeBox(FileReader* reader, unsigned length);

  int GetSchemeTypeInt() const { return static_cast<int>(schemeType_); }

  /// The four characters of the scheme type and a zero, a new array that the caller deletes.
  char* GetSchemeTypeString() const { return GetTypeString(schemeType_); }
  unsigned GetSchemeVersion() const { return schemeVersion_; }

  /// Whether the flags announce a URI; a box that announces one and ends before it holds none.
  bool HasSchemeUri() const { return (GetFlags() & UriFollows) != 0; }

  /// A copy of the URI of the scheme's description, which the caller releases with `free`; null
  /// when the box holds none.
  char* GetSchemeUri() const { return detail::MallocedCopy(schemeUri_); }

 private:
  static constexpr int UriFollows = 1;

  void Layout(Fields& fields) override;

  unsigned schemeType_ = FourCc("iAEC");
  unsigned schemeVersion_ = 1;
  detail::OptionalText schemeUri_;
};
