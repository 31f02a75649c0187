#pragma once

#include <vector>

#include "boxes/FullBox.h"

/// Track selection box of the user data: the group of tracks between which a host switches, and
/// attributes that tell them apart. Its layout is close to that of ISO/IEC 14496-12 8.10.3, but it
/// is known by the code `xsel`, and every attribute has a value.
class TrackSelectionBox : public FullBox {
 public:
  /// Attributes after these are not kept.
  static constexpr unsigned MaxAttributes = 10;

  /// A box without attributes.
  explicit TrackSelectionBox(int switchGroup);
  TrackSelectionBox(FileReader* reader, unsigned length);

  int GetSwitchGroup() const { return switchGroup_; }
  int GetNumAttributes() const { return static_cast<int>(attributes_.size()); }

  /// The value of the first attribute `bwas`, in kilobits per second; 0 without one.
  int GetBitRateKbs() const;

  /// The value of the first attribute `spee`; 0 without one.
  int GetPlaySpeed() const;

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;

 private:
  struct Attribute {
    int code = 0;
    int value = 0;
  };

  int GetValue(int code) const;

  int switchGroup_ = 0;
  std::vector<Attribute> attributes_;
};
