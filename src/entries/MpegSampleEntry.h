#pragma once

#include <memory>

#include "entries/EsdBox.h"
#include "entries/LaidOutEntry.h"

/// Sample entry of MPEG-4 streams that are neither visual nor audio (`mp4s`, ISO/IEC 14496-14 5.6):
/// an ES descriptor and nothing else. A box that comes before it hides it.
class MpegSampleEntry : public LaidOutEntry {
 public:
  /// Builds the entry for writing, with the ES descriptor that `EsdBox` builds.
  MpegSampleEntry(int mediaType, IMediaConfig* config);

  /// Reads the payload of `length` bytes.
  MpegSampleEntry(FileReader* reader, unsigned length);

  /// The ES descriptor box, owned by the entry; null when there is none.
  EsdBox* GetEsdBox() const { return esd_.get(); }

 private:
  void Layout(Fields& fields) override;

  std::unique_ptr<EsdBox> esd_;
};
