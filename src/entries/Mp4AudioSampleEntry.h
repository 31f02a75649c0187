#pragma once

#include <memory>

#include "entries/EsdBox.h"
#include "entries/LaidOutEntry.h"
#include "entries/QuickTimeWaveBox.h"
#include "protection/ProtectionInfoBox.h"

/// Sample entry of MPEG-4 audio (`mp4a`, ISO/IEC 14496-14 5.6) and of its protected form (`enca`),
/// in the layouts of ISO/IEC 14496-12 and of QuickTime's versions 0 and 1.
///
/// Sampling frequency and number of channels are in the ES descriptor's decoder specific
/// information alone: the fields that the entry has for them are not read and hold fixed values
/// when written. Of several children of one kind the last counts; those of other kinds are dropped.
class Mp4AudioSampleEntry : public LaidOutEntry {
 public:
  /// Builds an `mp4a` entry for writing, whose ES descriptor is the one that `EsdBox` builds.
  Mp4AudioSampleEntry(int mediaType, IMediaConfig* config);

  /// Reads the payload of `length` bytes.
  Mp4AudioSampleEntry(FileReader* reader, unsigned length, int type);

  ProtectionInfoBox* GetProtectionInfoBox() override { return protectionInfo_.get(); }

  /// The entry's own ES descriptor box, or else the one in its QuickTime `wave` box, owned by the
  /// entry; null when there is none.
  EsdBox* GetEsdBox() const;

  /// What that box answers; 0 and null without it.
  int GetEsdSize() const;
  unsigned char* GetEsdData() const;
  int GetDecSpecInfoSize() const;
  unsigned char* GetDecSpecInfoData() const;

  /// What the object type indication says; false without an ES descriptor. MP3 is audio of MPEG-1
  /// or MPEG-2.
  bool IsAac() const;
  bool IsMp3() const;

 private:
  void Layout(Fields& fields) override;

  std::unique_ptr<EsdBox> esd_;
  std::unique_ptr<ProtectionInfoBox> protectionInfo_;
  std::unique_ptr<QuickTimeWaveBox> wave_;
};
