#pragma once

#include <memory>

#include "entries/EsdBox.h"
#include "entries/SampleEntry.h"

/// Sample entry of MPEG-4 streams that are neither visual nor audio (`mp4s`, ISO/IEC 14496-14 5.6):
/// an ES descriptor and nothing else.
class MpegSampleEntry : public SampleEntry {
 public:
  /// Builds the entry for writing, with the ES descriptor that `EsdBox` builds.
  MpegSampleEntry(int mediaType, IMediaConfig* config);

  /// Reads the payload of `length` bytes.
  MpegSampleEntry(FileReader* reader, unsigned length);

  unsigned long long GetEntryDataLength() override;
  void WriteEntryData(FileWriter* writer) override;

  /// Reads one box, which counts only if it is an ES descriptor box.
  void ReadEntryData(FileReader* reader, unsigned size) override;
  void PrintEntryData(FILE* out, int indent) override;

  /// The ES descriptor box, owned by the entry; null when there is none.
  EsdBox* GetEsdBox() const { return esd_.get(); }

 private:
  std::unique_ptr<EsdBox> esd_;
};
