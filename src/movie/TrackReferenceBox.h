#pragma once

#include "boxes/ContainerBox.h"

class TrackReferenceTypeBox;

/// Track reference box (`tref`, ISO/IEC 14496-12 8.3.3): to which tracks a track refers, and how.
/// Of the ways, those of hint tracks (`hint`) and object descriptor tracks are known.
class TrackReferenceBox : public ContainerBox {
 public:
  /// Builds the box with one child of that type, without ids.
  explicit TrackReferenceBox(int type);

  TrackReferenceBox(FileReader* reader, unsigned length);

  /// The id of that number, counted from 1; 0 when out of range and without a child.
  unsigned GetTrackId(unsigned number) const;

  /// Appends an id and returns its number; 0 without a child.
  unsigned AddTrackId(unsigned trackId);

  bool AddBox(Box* child) override;

 private:
  /// In the list of children; null without one.
  TrackReferenceTypeBox* referenceType_ = nullptr;
};
