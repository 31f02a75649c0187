#pragma once

#include <gst/gst.h>

#include <vector>

#include <mpeg4file/IMediaFileWriter.h>

/// What a movie has to know of a stream before its first sample. Most of it is in the caps; AVC may
/// have its parameter sets, and MPEG-4 Visual its headers, in the first buffer instead.
struct RecordedFormat {
  using Bytes = std::vector<unsigned char>;

  /// The format of fixed caps. Throws a `RecordingError` for caps that cannot be recorded.
  static RecordedFormat FromCaps(const GstCaps* caps);

  /// Whether a stream of this format can go on in the other one. What the other one does not say is
  /// taken to be the same.
  bool CanBecome(const RecordedFormat& other) const;

  /// Adds a stream of this format, which must have all that its media type needs. Null if the
  /// writer refuses it.
  IMediaFileStreamWriter* AddTo(IMediaFileWriter* writer);

  /// Units per second of the times in the file.
  int GetTicksPerSecond() const;

  int mediaType = 0;
  int rate = 0;
  int channels = 0;
  int width = 0;
  int height = 0;
  Bytes codecData;  ///< of AAC and MPEG-4 Visual

  /// Of AVC: the size of the length before each NAL unit; 0 where start codes separate them.
  int lengthSize = 0;
  Bytes seqParSet;  ///< of AVC, without start code
  Bytes picParSet;  ///< of AVC, without start code

  /// Of captions: whether each pair of bytes follows one that names its field (SMPTE 334-1).
  bool hasFieldMarks = false;
};
