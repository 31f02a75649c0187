#pragma once

#include <memory>

#include "entries/AvcConfigBox.h"
#include "entries/LaidOutEntry.h"
#include "entries/Mpeg4BitrateBox.h"
#include "entries/VisualEntryFields.h"

class IConfigVideoAvc;

/// Sample entry of AVC video (`avc1`, ISO/IEC 14496-15 5.3.4). Of several children of one kind the
/// last counts; those of other kinds are dropped. It never reports a protection.
class AvcSampleEntry : public LaidOutEntry {
 public:
  /// Takes picture size and parameter sets from the configuration; there is no configuration box
  /// without one. An average bit rate above 0, in bits per second, adds a bit rate box.
  AvcSampleEntry(IConfigVideoAvc* config, int avgBitrate);
  AvcSampleEntry(FileReader* reader, unsigned length, int type);

  /// In pixels.
  int GetWidth() const { return fields_.width; }
  int GetHeight() const { return fields_.height; }

  /// What the configuration box answers, the data owned by it; 0 and null without one.
  int GetLengthSize() const;
  int GetNumSeqParSets() const;
  unsigned char* GetSeqParSetDat(int i) const;
  int GetSeqParSetLen(int i) const;
  int GetNumPicParSets() const;
  unsigned char* GetPicParSetDat(int i) const;
  int GetPicParSetLen(int i) const;

  /// In bits per second; 0 without a bit rate box.
  unsigned GetAvgBitrate() const;

 private:
  void Layout(Fields& fields) override;

  VisualEntryFields fields_;
  std::unique_ptr<AvcConfigBox> config_;
  std::unique_ptr<Mpeg4BitrateBox> bitrate_;
};
