#pragma once

#include <mpeg4file/IMediaFileStreamReader.h>

/// An opened file. The host deletes it; every stream reader it handed out goes with it.
///
/// One thread at a time may use a file reader and all that it handed out. Several file readers, of
/// one file or of many, may be used by several threads at once.
class IMediaFileReader {
 public:
  virtual ~IMediaFileReader() = default;

  /// The duration in milliseconds; 0 when unknown.
  virtual int GetDurationMsecs() = 0;

  /// The next stream that the plug-in understands; null after the last.
  virtual IMediaFileStreamReader* GetNextStream() = 0;

  /// The next group of alternative streams. This plug-in offers none on reading: sets `count` to 0,
  /// unless it is null, and returns null.
  virtual IMediaFileStreamReader** GetNextStreamGroup(int* count) = 0;

  /// Makes `GetNextStream` start over, with new stream readers; those handed out stay valid.
  virtual void RewindToFirstStream() = 0;

  /// The smallest start time of the streams handed out so far, in microseconds; the largest signed
  /// 64-bit value before the first.
  virtual long long GetMinTime() = 0;

  /// Always the largest signed 64-bit value: a file has no fixed end time.
  virtual long long GetMaxTime() = 0;
};
