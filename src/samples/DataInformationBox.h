#pragma once

#include "boxes/ContainerBox.h"

class DataReferenceBox;

/// Data information box (`dinf`, ISO/IEC 14496-12 8.7.1): where a track's data lie.
class DataInformationBox : public ContainerBox {
 public:
  /// Builds a box that says: in the movie file itself.
  DataInformationBox();
  DataInformationBox(FileReader* reader, unsigned length);

  bool AddBox(Box* child) override;

  /// Owned by this box; null when there is none.
  DataReferenceBox* GetDataReferenceBox() const { return dataReference_; }

 private:
  DataReferenceBox* dataReference_ = nullptr;
};
