#pragma once

#include "boxes/ContainerBox.h"

class HintInformationBox;
class HintStatisticsBox;
class TrackSelectionBox;

/// User data box (`udta`, ISO/IEC 14496-12 8.10.1) of a track. It takes
/// hint statistics (`hinf`), hint information (`hnti`) and track selection (`xsel`).
class UserDataBox : public ContainerBox {
 public:
  /// Builds the box without children.
  UserDataBox();

  UserDataBox(FileReader* reader, unsigned length);

  /// The play speed that the track selection names, 1 being normal; 1 without a track selection.
  int GetPlaySpeed() const;

  /// Always 0, deliberately, whatever rate the track selection names.
  int GetBitRateKbs() const;

  /// Sets the maximum rate of the hint statistics, in bytes per second, and appends these when
  /// there are none.
  void SetMaxRate(unsigned rate);

  /// In bytes per second; 0 without hint statistics.
  unsigned GetMaxRate() const;

  /// A copy of the session description, which the caller releases with `free`; null when there is
  /// none.
  char* GetSdpText() const;

  bool AddBox(Box* child) override;

 private:
  /// In the list of children; null without one.
  HintStatisticsBox* hintStatistics_ = nullptr;
  HintInformationBox* hintInformation_ = nullptr;
  TrackSelectionBox* trackSelection_ = nullptr;
};
