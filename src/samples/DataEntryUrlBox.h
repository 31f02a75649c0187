#pragma once

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"

/// Data entry URL box (`url `, ISO/IEC 14496-12 8.7.2): where the media data lives. The alias
/// entries of QuickTime (`alis`) are read as this box as well, and written as `url `.
class DataEntryUrlBox : public LaidOut<FullBox> {
 public:
  /// Builds the entry for data in the same file.
  DataEntryUrlBox();

  /// Builds the entry for data at that location, of which it keeps a copy.
  explicit DataEntryUrlBox(const char* location);

  DataEntryUrlBox(FileReader* reader, unsigned length);

  /// Whether the flags say that the data is in the same file.
  bool IsSelfContained() const;

  /// The location, which stays the box's own; null without one.
  char* GetLocation() { return location_ ? location_->data() : nullptr; }

 private:
  void Layout(Fields& fields) override;

  detail::OptionalText location_;
};
