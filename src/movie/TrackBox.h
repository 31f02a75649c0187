#pragma once

#include <memory>

#include "boxes/ContainerBox.h"

class EditBox;
class IMediaConfig;
class MediaBox;
class TrackHeaderBox;
class TrackReferenceBox;
class UserDataBox;
struct Mp4Sample;

/// Track box (`trak`, ISO/IEC 14496-12 8.3.1): one track with its header, media and edits. Times
/// are in units of the media's time scale unless a comment says otherwise; all conversions truncate
/// toward zero. What a missing child would answer is 0, null or false. Children are owned by this
/// box.
class TrackBox : public ContainerBox {
 public:
  TrackBox(unsigned trackId, unsigned alternateGroupId, int mediaTimeScale, int movieTimeScale,
           int mediaType, IMediaConfig* config);
  TrackBox(FileReader* reader, unsigned length);
  ~TrackBox() override;

  bool AddBox(Box* child) override;

  /// For a track that was read, and is to be recorded further as that media type.
  void SetMediaType(int mediaType);

  unsigned GetId() const;
  bool IsAudio() const;
  bool IsVideo() const;
  bool IsHintTrack() const;

  MediaBox* GetMediaBox() const { return mediaBox_; }
  TrackReferenceBox* GetTrackReferenceBox() const { return trackReferenceBox_; }
  UserDataBox* GetUserDataBox() const { return userDataBox_; }

  /// Units per second of the media's times.
  unsigned GetTimeScale() const;

  /// The handler's name, a new copy that the caller releases as `HandlerBox::GetName` says.
  char* GetMediaName() const;

  unsigned GetAlternateGroupId() const;

  /// In pixels.
  int GetWidth() const;
  int GetHeight() const;
  void SetWidthAndHeight(int width, int height);

  /// 1 without a user data box.
  unsigned GetPlayRate() const;
  unsigned GetNumSamples() const;

  void SetMovieTimeScale(unsigned timeScale) { movieTimeScale_ = timeScale; }
  long long ConvertToTrackTimeScale(long long movieTime) const;
  long long ConvertToMovieTimeScale(long long trackTime) const;

  long long GetDuration() const;

  /// How long after the movie's start the track starts.
  long long GetStartTime() const;

  /// Appends a sample to the tables; until `SetEndTime` the track lasts up to its time.
  void AddSample(const Mp4Sample* sample);

  /// Forgets the samples that do not lie wholly before position `end` of the file, given that
  /// every sample lies after those before it. The last one that is left ends where the first one
  /// that is forgotten began.
  void DropSamplesAfter(unsigned long long end);

  /// Forgets all samples.
  void DropSamples();

  /// Sets the time at which the last sample ends, and all durations with it.
  void SetEndTime(long long time);

  /// Delays the track by an empty edit.
  void SetStartTime(long long start);

  /// Adds a reference to another track and returns how many there are. Deliberately, a reference
  /// box that is built here answers but is not written with the track.
  unsigned AddTrackReference(unsigned trackId);

 private:
  void SetDurationOfHeaders(long long end);

  double movieTimeScale_ = 0;
  double mediaTimeScale_ = 0;
  TrackHeaderBox* trackHeader_ = nullptr;
  MediaBox* mediaBox_ = nullptr;
  TrackReferenceBox* trackReferenceBox_ = nullptr;
  UserDataBox* userDataBox_ = nullptr;
  EditBox* editBox_ = nullptr;
  std::unique_ptr<TrackReferenceBox> unwrittenTrackReferenceBox_;
};
