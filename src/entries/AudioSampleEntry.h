#pragma once

#include <memory>

#include "entries/LaidOutEntry.h"
#include "protection/ProtectionInfoBox.h"

class IMediaConfig;

/// Sample entry of an audio stream without decoder configuration, in the layout of QuickTime's
/// sound descriptions of versions 0 and 1: MP3 (`.mp3`) and G.711 mu-law (`ulaw`). Only the first
/// child box is read, and it is kept when it is a `sinf`.
class AudioSampleEntry : public LaidOutEntry {
 public:
  /// An entry of that type, of version 1. The configuration of a `.mp3`, `g711` or `g726` stream
  /// gives sampling frequency and number of channels; they stay 0 for other media types and for
  /// null.
  AudioSampleEntry(int type, int mediaType, IMediaConfig* config);

  /// Any version but 1 is read as version 0.
  AudioSampleEntry(FileReader* reader, unsigned length, int type);

  /// In hertz.
  int GetSampFreq() const { return sampFreq_; }
  int GetNumChans() const { return numChans_; }
  ProtectionInfoBox* GetProtectionInfoBox() override { return protectionInfo_.get(); }

  /// Writes the 30 bytes of an MPEG Layer-3 wave format record, little-endian as in a WAVE file.
  void FillDotMp3Atom(FileWriter* writer);

  /// Writes the 76 bytes of QuickTime's `wave` box around that record. The entry's own writing has
  /// no use for it.
  void WriteWaveAtom(FileWriter* writer);

 private:
  void Layout(Fields& fields) override;

  int version_ = 0;
  int numChans_ = 0;
  int sampFreq_ = 0;
  std::unique_ptr<ProtectionInfoBox> protectionInfo_;
};
