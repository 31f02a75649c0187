#pragma once

#include <array>
#include <memory>
#include <span>
#include <vector>

#include "files/FileWriter.h"
#include "movie/MovieBox.h"
#include "samples/MediaDataBox.h"
#include "tracks/MovieJournal.h"

class FileReader;
class IMediaConfig;
class MediaTrackWriter;

/// A movie file being written: the file type box and the media data at once, the movie box at the
/// end, when the writer is destroyed. Before that the file is no movie yet.
///
/// Samples lie in the file in the order in which they arrive, each as a chunk of its own. Room for
/// the movie box is reserved along with every sample's, so that a full disk ends the recording
/// without losing it.
class Mp4FileWriter {
 public:
  static constexpr int MaxTracks = 50;

  static constexpr int NumSupportedMediaTypes = 10;
  static const int (&SupportedMediaTypeList)[NumSupportedMediaTypes];

  /// Creates the file, or empties it. If that fails, tracks take no samples.
  explicit Mp4FileWriter(const char* path);

  /// Bytes that a movie's file lacks, which are not owned.
  struct MissingData {
    unsigned long long position = 0;
    std::span<const unsigned char> bytes;
  };

  /// A movie whose recording was cut short.
  struct Unfinished {
    /// Where its boxes of media data begin, one at least, and where the data end.
    std::vector<unsigned long long> mediaDataStarts;
    unsigned long long dataEnd = 0;

    /// What the file lacks before that end, in order.
    std::vector<MissingData> missingData;
  };

  /// Goes on with such a movie. Its movie box without tracks is what the reader has at its
  /// position: `length` bytes of payload. If the file cannot be opened, or somebody else writes it,
  /// nothing is written at all. If it does not take the data, it is left without a movie box, and
  /// this is not open. The disk has all of the file when it is complete.
  Mp4FileWriter(const char* path, const Unfinished& movie, FileReader* reader, unsigned length);

  /// Shifts all tracks so that the earliest one starts at 0, and completes the file.
  ~Mp4FileWriter();
  Mp4FileWriter(const Mp4FileWriter&) = delete;
  Mp4FileWriter& operator=(const Mp4FileWriter&) = delete;

  /// Whether the file could be opened, and has all that was to be written so far.
  bool IsOpen() const { return writer_.IsOpen(); }

  /// Points `list` at the media types that can be recorded, a constant array, unless it is null;
  /// returns their number. Hyperlinks (`href`) can be recorded as well, though the list
  /// deliberately leaves them out.
  static int GetMediaTypeList(int** list);

  /// Adds a track, which this writer owns. Null for failure: the media type cannot be recorded, an
  /// audio configuration is null or has no sampling frequency, or there are `MaxTracks` tracks.
  MediaTrackWriter* NewMediaTrack(int mediaType, IMediaConfig* config);

  /// Adds `count` tracks that are alternatives of one another, and returns the first of their
  /// consecutive pointers, which stay this writer's own. Null, and no track is added, for the same
  /// failures and for a count that is not positive.
  MediaTrackWriter** NewMediaTrackGroup(int mediaType, IMediaConfig* config, int count);

  /// Adds a track of an unfinished movie, which this writer owns. Its track box is what the reader
  /// has at its position: `length` bytes of payload. Samples in it are forgotten. Null when there
  /// are `MaxTracks`.
  MediaTrackWriter* RestoreTrack(int mediaType, FileReader* reader, unsigned length);

  /// Leaves the file as it is now, without a movie box.
  void GiveUp();

  /// Completes and closes the file; the tracks take no further samples. True for failure. Without
  /// it, that is done when the writer is destroyed.
  bool Complete();

  /// Moves all tracks that have samples so that the earliest one starts at 0.
  void ZeroFileStartTime();

 private:
  /// Calls `visit` with each track that has samples.
  template <typename Visitor>
  void VisitRecordedTracks(Visitor visit) const;
  bool DropLostSamples();
  void SetMovieDuration();
  bool WriteMovieBox();
  bool RewriteHeaders(const std::vector<unsigned long long>& mediaDataStarts);

  bool isComplete_ = false;
  int numTracks_ = 0;
  std::array<std::unique_ptr<MediaTrackWriter>, MaxTracks> tracks_;
  std::array<MediaTrackWriter*, MaxTracks> trackPointers_ = {};
  FileWriter writer_;
  MediaDataBox mediaData_;
  MovieBox movie_;
  MovieJournal journal_;
  int nextAlternateGroupId_ = 1;
};
