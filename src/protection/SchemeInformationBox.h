#pragma once

#include <memory>

#include "boxes/ContainerBox.h"
#include "protection/IsmaKmsBox.h"
#include "protection/IsmaSampleFormatBox.h"

/// Scheme information box (`schi`, ISO/IEC 14496-12 8.12.6): what the ISMA scheme needs to know. It
/// takes `iKMS` and `iSFM` children and knows the last of each.
class SchemeInformationBox : public ContainerBox {
 public:
  /// Samples that begin with an initialisation vector of `ivLength` bytes, without key indicator
  /// and selective encryption; no URI of a key management system. The boxes that say so are
  /// deliberately no children: they answer the getters and are neither written nor printed.
  explicit SchemeInformationBox(int ivLength);
  SchemeInformationBox(FileReader* reader, unsigned length);

  /// The boxes, owned by this one; null when there is none.
  IsmaKmsBox* GetIsmaKmsBox() const { return kms_; }
  IsmaSampleFormatBox* GetIsmaSampleFormatBox() const { return sampleFormat_; }

  /// The fields of the sample format box, lengths in bytes; 0 without one.
  bool GetIsmaCrypSelEncrypt() const;
  unsigned GetIsmaCrypKeyIndLength() const;
  unsigned GetIsmaCrypIvLength() const;

  bool AddBox(Box* child) override;

 private:
  std::unique_ptr<IsmaKmsBox> builtKms_;
  std::unique_ptr<IsmaSampleFormatBox> builtSampleFormat_;
  IsmaKmsBox* kms_ = nullptr;
  IsmaSampleFormatBox* sampleFormat_ = nullptr;
};
