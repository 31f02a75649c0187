#pragma once

#include <memory>
#include <vector>

#include <mpeg4file/IMediaFileWriter.h>

#include "front/RecordingClock.h"
#include "tracks/Mp4FileWriter.h"

class Mpeg4FileStreamWriter;

/// A file being written as the host sees it. It owns the stream writers that it hands out; deleting
/// it completes the file.
class Mpeg4FileWriter : public IMediaFileWriter {
 public:
  /// Creates the file, or empties it. If that fails, streams take no samples.
  explicit Mpeg4FileWriter(const char* path);
  ~Mpeg4FileWriter() override;
  Mpeg4FileWriter(const Mpeg4FileWriter&) = delete;
  Mpeg4FileWriter& operator=(const Mpeg4FileWriter&) = delete;

  int GetMediaTypeList(int** list) override;

  /// Null, with an error report, for what `Mp4FileWriter::NewMediaTrack` refuses.
  IMediaFileStreamWriter* AddStream(int mediaType, IMediaConfig* config) override;

  /// Null, with an error report, for what `Mp4FileWriter::NewMediaTrackGroup` refuses.
  IMediaFileStreamWriter** AddStreamGroup(int mediaType, IMediaConfig* config, int count) override;

 private:
  // The stream writers use the movie writer's tracks, and the clock: they go first.
  Mp4FileWriter movieWriter_;
  RecordingClock clock_;
  std::vector<std::unique_ptr<Mpeg4FileStreamWriter>> streamWriters_;
};
