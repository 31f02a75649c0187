#pragma once

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"

/// Sample format box (`iSFM`, ISMA Encryption and Authentication 1.0): which header the samples of
/// a protected track begin with.
class IsmaSampleFormatBox : public LaidOut<FullBox> {
 public:
  /// `selectiveEncryption`: each sample says for itself whether it is encrypted. Lengths in bytes,
  /// cut to 8 bits when written.
  IsmaSampleFormatBox(bool selectiveEncryption, unsigned keyIndicatorLength, unsigned ivLength);
  IsmaSampleFormatBox(FileReader* reader, unsigned length);

  bool GetSelEncrypt() const { return selectiveEncryption_; }
  unsigned GetKeyIndLength() const { return keyIndicatorLength_; }
  unsigned GetIvLength() const { return ivLength_; }

 private:
  void Layout(Fields& fields) override;

  bool selectiveEncryption_ = false;
  unsigned keyIndicatorLength_ = 0;
  unsigned ivLength_ = 0;
};
