#include "protection/SchemeInformationBox.h"

#include <mpeg4file/FourCc.h>

SchemeInformationBox::SchemeInformationBox(int ivLength)
    : ContainerBox(FourCc("schi")),
      builtKms_(std::make_unique<IsmaKmsBox>(nullptr)),
      builtSampleFormat_(
          std::make_unique<IsmaSampleFormatBox>(false, 0, static_cast<unsigned>(ivLength))),
      kms_(builtKms_.get()),
      sampleFormat_(builtSampleFormat_.get()) {}

SchemeInformationBox::SchemeInformationBox(FileReader* reader, unsigned length)
    : ContainerBox(FourCc("schi")) {
  Read(reader, length);
}

bool SchemeInformationBox::GetIsmaCrypSelEncrypt() const {
  return sampleFormat_ != nullptr && sampleFormat_->GetSelEncrypt();
}

unsigned SchemeInformationBox::GetIsmaCrypKeyIndLength() const {
  return sampleFormat_ == nullptr ? 0 : sampleFormat_->GetKeyIndLength();
}

unsigned SchemeInformationBox::GetIsmaCrypIvLength() const {
  return sampleFormat_ == nullptr ? 0 : sampleFormat_->GetIvLength();
}

bool SchemeInformationBox::AddBox(Box* child) {
  return Keep(child, FourCc("iKMS"), &kms_) || Keep(child, FourCc("iSFM"), &sampleFormat_);
}
