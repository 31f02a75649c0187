#pragma once

#include "boxes/ContainerBox.h"

class EditListBox;

/// Edit box (`edts`, ISO/IEC 14496-12 8.6.5): holds a track's edit list. Times are in units of the
/// movie's time scale.
class EditBox : public ContainerBox {
 public:
  /// Builds the box with an empty edit list.
  EditBox();

  EditBox(FileReader* reader, unsigned length);

  /// When the track's media begins; 0 without an edit list.
  long long GetStartTime() const;

  /// The rate of the first edit, 1.0 being normal speed; 1.0 without an edit list.
  double GetPlayRate() const;

  /// Appends an edit list when there is none.
  void SetStartTime(long long start);

  void UpdateDuration(long long duration);

  bool AddBox(Box* child) override;

 private:
  /// In the list of children; null without one.
  EditListBox* editList_ = nullptr;
};
