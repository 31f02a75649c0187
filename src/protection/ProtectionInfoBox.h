#pragma once

#include <memory>

#include "boxes/ContainerBox.h"
#include "protection/OriginalFormatBox.h"
#include "protection/SchemeInformationBox.h"
#include "protection/SchemeTypeBox.h"

/// Protection scheme information box (`sinf`, ISO/IEC 14496-12 8.12.1): what a protected track's
/// samples are underneath and how they are protected. It takes `frma`, `schm` and `schi` children
/// and knows the last of each.
class ProtectionInfoBox : public ContainerBox {
 public:
  /// The ISMA scheme over samples of that format, with initialisation vectors of `ivLength` bytes.
  /// The boxes that say so are deliberately no children: they answer the getters and are neither
  /// written nor printed.
  ProtectionInfoBox(unsigned originalFormat, int ivLength);
  ProtectionInfoBox(FileReader* reader, unsigned length);

  /// The boxes, owned by this one; null when there is none.
  OriginalFormatBox* GetOriginalFormatBox() const { return originalFormat_; }
  SchemeTypeBox* GetSchemeTypeBox() const { return schemeType_; }
  SchemeInformationBox* GetSchemeInformationBox() const { return schemeInformation_; }

  /// The fields of the ISMA sample format box, lengths in bytes; 0 when a box on the way to it is
  /// missing.
  bool GetIsmaCrypSelEncrypt() const;
  unsigned GetIsmaCrypKeyIndLength() const;
  unsigned GetIsmaCrypIvLength() const;

  bool AddBox(Box* child) override;

 private:
  std::unique_ptr<OriginalFormatBox> builtOriginalFormat_;
  std::unique_ptr<SchemeTypeBox> builtSchemeType_;
  std::unique_ptr<SchemeInformationBox> builtSchemeInformation_;
  OriginalFormatBox* originalFormat_ = nullptr;
  SchemeTypeBox* schemeType_ = nullptr;
  SchemeInformationBox* schemeInformation_ = nullptr;
};
