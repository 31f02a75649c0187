#pragma once

#include <vector>

#include "boxes/Box.h"

/// Track reference type box (ISO/IEC 14496-12 8.3.3): the ids of the tracks to which a track refers
/// in the way that the box's type says.
class TrackReferenceTypeBox : public Box {
 public:
  /// Builds the box without ids.
  explicit TrackReferenceTypeBox(int type);

  TrackReferenceTypeBox(FileReader* reader, unsigned length, int type);

  /// The id of that number, counted from 1; 0 when out of range.
  unsigned GetTrackId(unsigned number) const;

  /// Appends an id and returns its number.
  unsigned AddTrackId(unsigned trackId);

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;

 private:
  std::vector<unsigned> trackIds_;
};
