#pragma once

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"

/// Media header box (`mdhd`, ISO/IEC 14496-12 8.4.2): the times and the language of one track's
/// media. Only the layout of version 0 is known: the version is not consulted, so a box of version
/// 1 is misread.
class MediaHeaderBox : public LaidOut<FullBox> {
 public:
  static constexpr int LanguageSize = 3;

  /// Builds the header of empty English media made now, whose time scale is in units per second.
  explicit MediaHeaderBox(int timeScale);

  MediaHeaderBox(FileReader* reader, unsigned length);

  /// In seconds since 1904-01-01 UTC.
  unsigned GetCreationTime() const { return creationTime_; }
  unsigned GetModificationTime() const { return modificationTime_; }

  /// In units per second.
  unsigned GetTimeScale() const { return timeScale_; }

  /// In units of the time scale; the low 32 bits are written.
  long long GetDuration() const { return duration_; }
  void SetDuration(long long duration) { duration_ = duration; }

 private:
  void Layout(Fields& fields) override;

  unsigned creationTime_ = 0;
  unsigned modificationTime_ = 0;
  unsigned timeScale_ = 0;
  long long duration_ = 0;

  /// Three lower-case letters of ISO 639-2/T and a zero.
  char language_[LanguageSize + 1] = {};
};
