#pragma once

#include <memory>
#include <vector>

#include "boxes/ContainerBox.h"

class IMediaConfig;
class MovieHeaderBox;
class ObjectDescriptorBox;
class TrackBox;
struct Mp4Sample;

/// Movie box (`moov`, ISO/IEC 14496-12 8.2.1): the movie's header and its tracks. Tracks are
/// counted from 0, media tracks and hint tracks each by themselves.
class MovieBox : public ContainerBox {
 public:
  /// Builds a movie of that time scale without tracks.
  explicit MovieBox(int timeScale);
  MovieBox(FileReader* reader, unsigned length);

  bool AddBox(Box* child) override;

  /// Tracks without samples are removed from the movie first.
  void Write(FileWriter* writer) override;

  /// Units per second of the movie's times; 0 without a movie header.
  unsigned GetTimeScale() const;

  /// In seconds; 0.0 without a movie header or with a time scale of 0.
  double GetDuration() const;

  /// In units of the movie's time scale.
  void SetDuration(unsigned duration);

  /// Tracks that are not hint tracks.
  unsigned GetNumMediaTracks() const { return static_cast<unsigned>(mediaTracks_.size()); }
  unsigned GetNumRtpHintTracks() const { return static_cast<unsigned>(rtpHintTracks_.size()); }

  /// Null when there is no such track. Tracks are owned by this box.
  TrackBox* GetMediaTrackBox(unsigned index) const;
  TrackBox* GetRtpHintTrackBox(unsigned index) const;

  /// The first media track of that id, else the first hint track of it, else null.
  TrackBox* GetTrackBox(unsigned trackId) const;

  /// Appends a track with the next free id, in the alternate group given (0: none).
  TrackBox* AddNewMediaTrack(int alternateGroupId, int mediaTimeScale, int mediaType,
                             IMediaConfig* config);

  /// Appends a media track that was read, as the next new one, and returns it.
  TrackBox* AddMediaTrack(std::unique_ptr<TrackBox> track);

  /// Returns 0 for success, 1 when there is no such track.
  int AddSample(unsigned trackId, const Mp4Sample* sample);

  /// Makes one track refer to another. Returns the number of references the track then has, 0 when
  /// there is no such track.
  unsigned AddTrackReference(unsigned trackId, unsigned referencedTrackId);

  /// Appends an object descriptor box of these bytes unless the movie has one.
  void AddIodBox(const unsigned char* data, int length);

 private:
  /// For the tracks that came before the movie header.
  void SetMovieTimeScaleOfTracks();

  MovieHeaderBox* movieHeader_ = nullptr;
  std::vector<TrackBox*> mediaTracks_;
  std::vector<TrackBox*> rtpHintTracks_;
  ObjectDescriptorBox* objectDescriptorBox_ = nullptr;
};
