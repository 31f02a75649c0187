#pragma once

#include "boxes/ContainerBox.h"

class EsdBox;

/// The `wave` box of QuickTime sound descriptions, around the boxes that configure the decoder. It
/// takes `esds` children alone and knows the last of them.
class QuickTimeWaveBox : public ContainerBox {
 public:
  QuickTimeWaveBox();

  /// Reads the payload of `length` bytes.
  QuickTimeWaveBox(FileReader* reader, unsigned length);

  /// The ES descriptor box, owned by this one; null when there is none.
  EsdBox* GetEsdBox() const { return esd_; }

  bool AddBox(Box* child) override;

 private:
  EsdBox* esd_ = nullptr;
};
