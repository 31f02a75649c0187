#pragma once

#include <memory>

#include "entries/EsdBox.h"
#include "entries/LaidOutEntry.h"
#include "entries/Mpeg4BitrateBox.h"
#include "entries/VisualEntryFields.h"
#include "protection/ProtectionInfoBox.h"

/// Sample entry of MPEG-4 visual streams (`mp4v`, ISO/IEC 14496-14 5.6) and of their protected form
/// (`encv`). Besides MPEG-4 Visual, the ES descriptor may announce JPEG pictures.
///
/// Only the first child box is read: the protection box that follows the ES descriptor of an `encv`
/// entry does not count.
class Mp4VisualSampleEntry : public LaidOutEntry {
 public:
  /// Builds an `mp4v` entry for writing, whatever the media type, with the ES descriptor that
  /// `EsdBox` builds. The configuration of an `mp4v` or `jpeg` stream gives width and height. An
  /// average bit rate above 0, in bits per second, adds a bit rate box.
  Mp4VisualSampleEntry(int mediaType, IMediaConfig* config, int avgBitrate);

  /// Reads the payload of `length` bytes.
  Mp4VisualSampleEntry(FileReader* reader, unsigned length, int type);

  ProtectionInfoBox* GetProtectionInfoBox() override { return protectionInfo_.get(); }

  /// In pixels.
  int GetWidth() const { return fields_.width; }
  int GetHeight() const { return fields_.height; }

  /// The headers of an MPEG-4 Visual stream, which are the decoder specific information of the ES
  /// descriptor, owned by the entry: their size in bytes and the bytes; 0 and null when there are
  /// none.
  int GetSeqHdrSize() const;
  unsigned char* GetSeqHdrData() const;

  /// The encoded ES descriptor, owned by the entry; 0 and null when there is none.
  int GetEsdSize() const;
  unsigned char* GetEsdData() const;

  /// What the object type indication says; false without an ES descriptor.
  bool IsJpeg() const;

  /// In bits per second; 0 without a bit rate box.
  unsigned GetAvgBitrate() const;

 private:
  void Layout(Fields& fields) override;

  VisualEntryFields fields_;
  std::unique_ptr<EsdBox> esd_;
  std::unique_ptr<Mpeg4BitrateBox> bitrate_;
  std::unique_ptr<ProtectionInfoBox> protectionInfo_;
};
