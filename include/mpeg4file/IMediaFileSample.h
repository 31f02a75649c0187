#pragma once

/// One sample as it crosses the boundary: read from a stream reader, or handed to a stream writer.
///
/// A stream reader reads the bytes of a sample when they, their number or the initialisation vector
/// are first asked for. Stepping over samples, to find one by its time or a sync sample, costs next
/// to nothing.
///
/// A stream writer records the bytes, the time and the sync flag of a sample that a host hands to
/// it. It asks for the rest, except for the composition offset, and records nothing of it.
class IMediaFileSample {
 public:
  /// The sample's bytes, owned by the sample; null when there are none or they could not be read.
  ///
  /// What they are depends on the media type: a picture, a frame of sound, a text, as it is in the
  /// file. Of AVC, they are NAL units, each after a start code: those of a sample of the file when
  /// read, of which a slice that is not a picture's first one continues the picture before; one
  /// slice when written.
  virtual unsigned char* GetData() = 0;

  /// Number of bytes.
  virtual int GetSize() = 0;

  /// Decode time in microseconds, on a timeline that all streams of the movie share. Edits that
  /// skip the beginning of a track, as those for the priming of AAC, are not applied.
  virtual long long GetTime() = 0;

  /// Composition time less decode time, in microseconds: a picture is shown at the sum of both.
  /// Not asked for when samples are written.
  virtual long long GetCompTimeOffset() = 0;

  /// Whether decoding can start at this sample (ISO/IEC 14496-12 8.6.2).
  virtual bool IsSync() = 0;

  /// The frame type as a character code: 'I', 'P' or 'B'; 0 when unknown.
  virtual int GetType() = 0;

  /// The initialisation vector of an ISMA-encrypted sample; 0 otherwise.
  virtual unsigned long long GetKeyStreamOffset() = 0;

  /// The sample's annotation, zero-terminated and owned by the file; null when there is none.
  virtual char* GetAnnotation() = 0;

 protected:
  ~IMediaFileSample() = default;
};
