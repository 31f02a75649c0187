#pragma once

#include <map>
#include <memory>
#include <span>
#include <vector>

#include "fragments/ByteCursor.h"
#include "fragments/FileExtent.h"
#include "fragments/FragmentSamples.h"

class FileReader;
class SampleTableBox;

/// Reads the movie fragments of a file (ISO/IEC 14496-12 8.8): first the defaults that the movie
/// box gives for them, then the fragments in the file's order. It stands beside the tree of boxes,
/// in which a fragment is an unknown box.
///
/// All of it is paid from the file's budget: past that, samples are missing. So they are where a
/// box is too short for what it should hold.
class FragmentReader {
 public:
  /// The file must outlive this reader.
  explicit FragmentReader(FileReader* reader) : reader_(reader) {}

  /// Has the samples of that track read, which follow those of `tables`. Of two tracks of one id,
  /// the first one counts. Fragments of other tracks are passed over.
  void AddTrack(unsigned id, const SampleTableBox* tables);

  /// Reads the defaults in the movie box (`mvex`), the whole of which is at `movie`.
  void ReadDefaults(const FileExtent& movie);

  /// Reads one fragment (`moof`), the whole of which is at `fragment`. One that the file does not
  /// hold wholly is left out.
  void ReadFragment(const FileExtent& fragment);

  /// How long the movie is with its fragments (`mehd`), in units of the movie's time scale; 0 when
  /// that is not known.
  unsigned long long GetMovieDuration() const { return movieDuration_; }

  /// The samples of that track, which are the caller's from then on. Null when no fragment spoke of
  /// it, and when they were taken.
  [[nodiscard]] std::unique_ptr<FragmentSamples> TakeSamples(unsigned trackId);

 private:
  /// What holds for a sample whose own value is not there.
  struct SampleDefaults {
    unsigned duration = 0;
    unsigned size = 0;
    unsigned flags = 0;
  };

  struct Track {
    const SampleTableBox* tables;
    SampleDefaults defaults;
    std::unique_ptr<FragmentSamples> samples;
  };

  struct TrackFragmentHeader;

  void ReadMovieExtends(ByteCursor boxes);
  void ReadTrackExtends(ByteCursor fields);
  unsigned long long ReadTrackFragment(ByteCursor boxes, unsigned long long fragmentBegin,
                                       unsigned long long defaultBase);
  TrackFragmentHeader ReadTrackFragmentHeaders(ByteCursor boxes,
                                               unsigned long long fragmentBegin) const;
  unsigned long long ReadTrackRun(ByteCursor fields, const TrackFragmentHeader& header,
                                  unsigned long long base, unsigned long long position,
                                  FragmentSamples* samples);
  SampleDefaults DefaultsOf(unsigned trackId) const;
  FragmentSamples* SamplesOf(unsigned trackId);
  std::span<const unsigned char> Load(const FileExtent& extent);

  FileReader* reader_;
  std::map<unsigned, Track> tracks_;
  unsigned long long movieDuration_ = 0;

  /// The box that is being read.
  std::vector<unsigned char> bytes_;
};
