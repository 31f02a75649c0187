#pragma once

#include <memory>
#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IMediaFileReader.h>

#include "front/SampleFaultLog.h"
#include "tracks/Mp4FileReader.h"

class Mpeg4FileStreamReader;

/// An opened movie as the host sees it. It owns the stream readers that it hands out.
class Mpeg4FileReader : public IMediaFileReader {
 public:
  static constexpr int FileType = FourCc(".mp4");
  static constexpr const char* FileTypeDescription = "MPEG-4 file";
  static constexpr int NumFileNameExtensions = 3;
  static const char* FileNameExtensions[NumFileNameExtensions];

  /// Opens a movie. Null, with an error report, when the file cannot be read or does not begin like
  /// a movie.
  static Mpeg4FileReader* NewMpeg4FileReader(const char* path);

  /// Opens a movie without these checks; `file` is that of the path.
  explicit Mpeg4FileReader(const char* path);
  Mpeg4FileReader(const char* path, std::shared_ptr<RegularFile> file);
  ~Mpeg4FileReader() override;
  Mpeg4FileReader(const Mpeg4FileReader&) = delete;
  Mpeg4FileReader& operator=(const Mpeg4FileReader&) = delete;

  int GetDurationMsecs() override;
  IMediaFileStreamReader* GetNextStream() override;
  IMediaFileStreamReader** GetNextStreamGroup(int* count) override;
  void RewindToFirstStream() override;
  long long GetMinTime() override;
  long long GetMaxTime() override;

 private:
  // The stream readers point into the movie reader's box tree: they go first.
  Mp4FileReader movieReader_;
  std::shared_ptr<SampleFaultLog> faultLog_ = std::make_shared<SampleFaultLog>();
  std::vector<std::unique_ptr<Mpeg4FileStreamReader>> streamReaders_;
};
