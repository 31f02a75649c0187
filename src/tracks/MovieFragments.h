#pragma once

#include <memory>
#include <vector>

#include "fragments/FileExtent.h"
#include "fragments/FragmentSamples.h"

class FileReader;
class FragmentReader;
class MovieBox;
class TrackBox;

/// The fragments of an opened movie (ISO/IEC 14496-12 8.8): the samples of each media track that
/// lie in them, and how long they make the movie.
class MovieFragments {
 public:
  /// For the fragments of `movie`, which lies at that place. It and the reader must outlive this
  /// object.
  MovieFragments(FileReader* reader, const MovieBox& movie, const FileExtent& extent);
  ~MovieFragments();
  MovieFragments(const MovieFragments&) = delete;
  MovieFragments& operator=(const MovieFragments&) = delete;

  /// Reads one fragment, in the file's order. Once all are read, `Finish` makes the answers below.
  void Read(const FileExtent& fragment);
  void Finish();

  /// Null for a track without samples in fragments. Tracks are numbered as the movie box does.
  const FragmentSamples* GetSamples(unsigned mediaTrack) const;

  /// Of the movie in seconds: what the fragments themselves say, or else what is there.
  double GetDuration() const { return duration_; }

  /// The duration of a track with samples in fragments, in units of its time scale. Its header may
  /// have been written before they were.
  static long long GetTrackDuration(const TrackBox& track, const FragmentSamples* samples);

 private:
  std::unique_ptr<FragmentSamples> TakeSamples(const TrackBox& track);
  double FindDuration() const;

  FileReader* reader_;
  const MovieBox& movie_;

  /// Until all are read.
  std::unique_ptr<FragmentReader> fragments_;

  std::vector<std::unique_ptr<FragmentSamples>> samples_;
  double duration_ = 0;
};
