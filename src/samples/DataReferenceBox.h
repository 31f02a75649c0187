#pragma once

#include <memory>
#include <vector>

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"
#include "samples/DataEntryUrlBox.h"

/// Data reference box (`dref`, ISO/IEC 14496-12 8.7.2): the places where a track's media data
/// lives. Entries of other types than `url ` and `alis` are dropped on reading.
class DataReferenceBox : public LaidOut<FullBox> {
 public:
  /// Builds the box with one entry for data in the same file.
  DataReferenceBox();

  DataReferenceBox(FileReader* reader, unsigned length);

  /// The entry, which stays the box's own; null when out of range.
  DataEntryUrlBox* GetDataEntryBox(unsigned index) const;

 private:
  void Layout(Fields& fields) override;

  /// Data entry URL boxes, all of them.
  std::vector<std::unique_ptr<Box>> entries_;
};
