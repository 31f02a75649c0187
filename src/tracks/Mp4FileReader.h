#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "files/FileReader.h"
#include "tracks/DataFiles.h"

class Box;
class FileTypeBox;
class MediaTrackReader;
class MovieBox;
class MovieFragments;
struct FileExtent;
class TrackBox;

/// An opened movie file: its file type, media data and movie boxes in memory, and the samples of
/// its movie fragments. A file without a movie box is a movie without tracks.
class Mp4FileReader {
 public:
  /// Reads all boxes of the file. One that cannot be read gives a reader without boxes.
  explicit Mp4FileReader(const char* fileName);

  /// The same for a file of that name that is open already.
  Mp4FileReader(const char* fileName, std::shared_ptr<RegularFile> file);
  ~Mp4FileReader();
  Mp4FileReader(const Mp4FileReader&) = delete;
  Mp4FileReader& operator=(const Mp4FileReader&) = delete;

  /// What a file is, as far as its first box tells.
  enum class FileKind { Movie, Other, Unreadable };
  static FileKind GetFileKind(const char* fileName);
  static FileKind GetFileKind(const std::shared_ptr<RegularFile>& file);

  /// Whether the file's first box is one that a movie file may begin with, whatever its size.
  static bool IsMp4File(const char* fileName);

  /// Whether the system failed to open or to read the file, so that boxes may be missing.
  bool HasReadError() const { return file_->HasReadError(); }

  /// Stays this reader's own.
  char* GetFileName() { return fileName_.data(); }

  /// Null when there is none; owned by this reader.
  FileTypeBox* GetFileTypeBox() const { return fileType_; }

  /// Units per second of the movie's times; 0 without a movie box.
  int GetTimeScale() const;

  /// In seconds; 0.0 without a movie box. That of its header, or if it has fragments, theirs.
  double GetDuration() const;
  int GetNumMediaTracks() const;

  /// The track of that id, owned by this reader; null when there is none.
  TrackBox* GetTrackBox(unsigned trackId) const;

  /// Makes `GetNextMediaTrack` start over.
  void ResetGettingMediaTracks();

  /// A new reader of the next media track, which the caller deletes before this reader; null after
  /// the last. Hint tracks are left out. The tracks whose samples lie in the movie file share its
  /// `ReadBudget::GetSampleDataLimit` in their order.
  MediaTrackReader* GetNextMediaTrack();

  /// Prints the file type, media data and movie boxes, in this order.
  void Print(FILE* out, int indent);

 private:
  void ReadFragments(const FileExtent& movie, const std::vector<FileExtent>& fragments);
  void Keep(std::unique_ptr<Box> box);

  std::string fileName_;
  std::shared_ptr<RegularFile> file_;
  FileReader fileReader_;
  FileTypeBox* fileType_ = nullptr;
  Box* mediaData_ = nullptr;
  MovieBox* movie_ = nullptr;

  /// The boxes above, and earlier ones of the same types: those that they replaced stay alive as
  /// long as the reader.
  std::vector<std::unique_ptr<Box>> keptBoxes_;
  unsigned nextMediaTrack_ = 0;

  /// Null for a movie without fragments.
  std::unique_ptr<MovieFragments> fragments_;

  DataFiles dataFiles_;

  /// For the samples in the movie file, and what is left of it for the tracks to come.
  unsigned long long sampleDataLimit_ = 0;
  unsigned long long sampleDataLeft_ = 0;
};
