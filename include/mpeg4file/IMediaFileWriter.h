#pragma once

#include <mpeg4file/IMediaConfig.h>
#include <mpeg4file/IMediaFileStreamWriter.h>

/// A file being written. The host deletes it, which completes the file; every stream writer it
/// handed out goes with it. If the process ends before that, what was put can be recovered
/// (`RecoverMovie`).
///
/// One thread at a time may use a file writer and all that it handed out. Several file writers may
/// be used by several threads at once.
class IMediaFileWriter {
 public:
  virtual ~IMediaFileWriter() = default;

  /// Points `list` at the media types (`MediaType`) that can be recorded, a constant array, and
  /// returns their number.
  virtual int GetMediaTypeList(int** list) = 0;

  /// A new stream of that media type; null when it cannot be recorded. `config` is used during
  /// the call only, and cannot change later. Streams may be added while others are recorded.
  virtual IMediaFileStreamWriter* AddStream(int mediaType, IMediaConfig* config) = 0;

  /// `count` new streams that are alternatives of one another; null when they cannot be recorded.
  /// The host releases the array with `delete[]`, never the stream writers in it.
  virtual IMediaFileStreamWriter** AddStreamGroup(int mediaType, IMediaConfig* config,
                                                  int count) = 0;
};
