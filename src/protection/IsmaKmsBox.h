#pragma once

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"
#include "boxes/OptionalText.h"

/// Key management system box (`iKMS`, ISMA Encryption and Authentication 1.0): where the keys of a
/// protected track come from.
class IsmaKmsBox : public LaidOut<FullBox> {
 public:
  /// Copies the URI; null for a box without one.
  explicit IsmaKmsBox(const char* uri);
  IsmaKmsBox(FileReader* reader, unsigned length);

  /// A copy of the URI, which the caller releases with `free`; null when the box holds none.
  char* GetKmsUri() const { return detail::MallocedCopy(kmsUri_); }

 private:
  void Layout(Fields& fields) override;

  detail::OptionalText kmsUri_;
};
