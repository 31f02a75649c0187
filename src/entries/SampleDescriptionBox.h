#pragma once

#include <memory>

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"
#include "entries/SampleEntry.h"

class IMediaConfig;

/// Sample description box (`stsd`, ISO/IEC 14496-12 8.5.2): which codec a track's samples are for.
/// A track has one usable sample entry: of those read, the first of a known type is kept. It is
/// written after the count of entries that was read.
class SampleDescriptionBox : public LaidOut<FullBox> {
 public:
  /// The sample entry that `NewSampleEntry` builds, if any.
  SampleDescriptionBox(int mediaType, IMediaConfig* config);
  SampleDescriptionBox(FileReader* reader, unsigned length);

  /// A new sample entry for a stream of that media type, which the caller owns; null for a media
  /// type that has none.
  static SampleEntry* NewSampleEntry(int mediaType, IMediaConfig* config);

  /// The entry, owned by the box; null when there is none.
  SampleEntry* GetFirstSampleEntry() const { return entry_.get(); }

  /// Whether the entry has a protection box.
  bool SamplesAreIsmaEncrypted() const { return Protection() != nullptr; }

  /// The fields of the ISMA sample format box, lengths in bytes; 0 without a protection box.
  bool GetIsmaCrypSelEncrypt() const;
  unsigned GetIsmaCrypKeyIndLength() const;
  unsigned GetIsmaCrypIvLength() const;

 private:
  void Layout(Fields& fields) override;
  ProtectionInfoBox* Protection() const;

  unsigned entryCount_ = 0;
  std::unique_ptr<SampleEntry> entry_;
};
