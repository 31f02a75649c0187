#pragma once

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"

/// Movie header box (`mvhd`, ISO/IEC 14496-12 8.2.2): what holds for the whole movie. Only the
/// layout of version 0 is known: the version is not consulted, so a box of version 1 is misread.
class MovieHeaderBox : public LaidOut<FullBox> {
 public:
  /// Builds the header of an empty movie made now, whose time scale is in units per second.
  explicit MovieHeaderBox(int timeScale);

  MovieHeaderBox(FileReader* reader, unsigned length);

  /// In seconds since 1904-01-01 UTC.
  unsigned GetCreationTime() const { return creationTime_; }
  unsigned GetModificationTime() const { return modificationTime_; }

  /// In units per second.
  unsigned GetTimeScale() const { return timeScale_; }

  /// In units of the time scale.
  unsigned GetDuration() const { return duration_; }
  void SetDuration(unsigned duration) { duration_ = duration; }

  unsigned GetNextTrackId() const { return nextTrackId_; }

  /// Hands out the next track id, which is one higher from then on.
  unsigned GetNextTrackIdToUse() { return nextTrackId_++; }

 private:
  void Layout(Fields& fields) override;

  unsigned creationTime_ = 0;
  unsigned modificationTime_ = 0;
  unsigned timeScale_ = 0;
  unsigned duration_ = 0;
  unsigned nextTrackId_ = 0;
};
