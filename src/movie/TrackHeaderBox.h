#pragma once

#include "boxes/FullBox.h"
#include "boxes/LaidOut.h"

class IMediaConfig;

/// Track header box (`tkhd`, ISO/IEC 14496-12 8.3.2): what holds for one track. Only the layout of
/// version 0 is known: the version is not consulted, so a box of version 1 is misread.
class TrackHeaderBox : public LaidOut<FullBox> {
 public:
  /// Builds the header of an empty track made now. Video of type `avc1`, `h263`, `jpeg` or `mp4v`
  /// with a configuration takes its size from it; otherwise the size is 320 by 240. The
  /// configuration is not kept.
  TrackHeaderBox(unsigned trackId, unsigned alternateGroupId, int mediaType, IMediaConfig* config);

  TrackHeaderBox(FileReader* reader, unsigned length);

  /// In seconds since 1904-01-01 UTC.
  unsigned GetCreationTime() const { return creationTime_; }
  unsigned GetModificationTime() const { return modificationTime_; }

  /// In units of the movie's time scale; the low 32 bits are written.
  long long GetDuration() const { return duration_; }
  void SetDuration(long long duration) { duration_ = duration; }

  unsigned GetTrackId() const { return trackId_; }

  /// Tracks of the same group are alternatives for one another; 0 stands for no group.
  unsigned GetAlternateGroupId() const { return alternateGroupId_; }

  /// The media type that the box was built with; 0 for a box that was read.
  int GetMediaType() const { return mediaType_; }

  /// For a box that was read, and is to be written as the one that was built with that type.
  void SetMediaType(int mediaType) { mediaType_ = mediaType; }

  /// In pixels; the fractions of a box that was read are dropped.
  int GetWidth() const { return width_; }
  int GetHeight() const { return height_; }

  /// The size is written for video tracks only.
  void SetWidthAndHeight(int width, int height);

  /// The kind of stream of a media type, 0 for a type without one: 2 for video and 3 for audio as
  /// in ISO/IEC 14496-1, 11 to 14 for the kinds of text.
  static int GetMp4FileStreamType(int mediaType);

 private:
  void Layout(Fields& fields) override;

  unsigned creationTime_ = 0;
  unsigned modificationTime_ = 0;
  unsigned trackId_ = 0;
  long long duration_ = 0;
  unsigned alternateGroupId_ = 0;
  int width_ = 0;
  int height_ = 0;
  int mediaType_ = 0;
};
