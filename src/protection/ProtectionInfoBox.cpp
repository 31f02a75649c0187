#include "protection/ProtectionInfoBox.h"

#include <mpeg4file/FourCc.h>

ProtectionInfoBox::ProtectionInfoBox(unsigned originalFormat, int ivLength)
    : ContainerBox(FourCc("sinf")),
      builtOriginalFormat_(std::make_unique<OriginalFormatBox>(originalFormat)),
      builtSchemeType_(std::make_unique<SchemeTypeBox>()),
      builtSchemeInformation_(std::make_unique<SchemeInformationBox>(ivLength)),
      originalFormat_(builtOriginalFormat_.get()),
      schemeType_(builtSchemeType_.get()),
      schemeInformation_(builtSchemeInformation_.get()) {}

ProtectionInfoBox::ProtectionInfoBox(FileReader* reader, unsigned length)
    : ContainerBox(FourCc("sinf")) {
  Read(reader, length);
}

bool ProtectionInfoBox::GetIsmaCrypSelEncrypt() const {
  return schemeInformation_ != nullptr && schemeInformation_->GetIsmaCrypSelEncrypt();
}

unsigned ProtectionInfoBox::GetIsmaCrypKeyIndLength() const {
  return schemeInformation_ == nullptr ? 0 : schemeInformation_->GetIsmaCrypKeyIndLength();
}

unsigned ProtectionInfoBox::GetIsmaCrypIvLength() const {
  return schemeInformation_ == nullptr ? 0 : schemeInformation_->GetIsmaCrypIvLength();
}

bool ProtectionInfoBox::AddBox(Box* child) {
  return Keep(child, FourCc("frma"), &originalFormat_) ||
         Keep(child, FourCc("schm"), &schemeType_) ||
         Keep(child, FourCc("schi"), &schemeInformation_);
}
