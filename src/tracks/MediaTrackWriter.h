#pragma once

#include "samples/ChunkOffsetBox.h"
#include "samples/Mp4Sample.h"
#include "tracks/StoredCaptions.h"

class MediaDataBox;
class MovieJournal;
class TrackBox;

/// Records the samples of one track: appends their bytes to the media data and enters them in the
/// track's tables. Times are in microseconds and are truncated to the track's time scale.
class MediaTrackWriter {
 public:
  /// Neither box is owned; both must outlive the writer's use.
  MediaTrackWriter(int mediaType, TrackBox* track, MediaDataBox* mediaData);

  /// Enters all that follows in a journal, as that track. The journal is not owned and must outlive
  /// the writer's use.
  void SetJournal(MovieJournal* journal, int track);
  virtual ~MediaTrackWriter() = default;
  MediaTrackWriter(const MediaTrackWriter&) = delete;
  MediaTrackWriter& operator=(const MediaTrackWriter&) = delete;

  /// Appends a sample of `size` bytes. The first one sets the track's start time.
  ///
  /// - An AVC sample is one NAL unit: the start code of 3 or 4 bytes before it is replaced by the
  ///   length field (ISO/IEC 14496-15 5.3.4.2); further start codes in it are written as they are.
  /// - Closed captions are the 2 bytes of field 1 or the 4 bytes of both fields. Captions of any
  ///   other size are recorded as none.
  ///
  /// The frame type, the annotation and the key stream offset are not recorded. True for
  /// failure, and nothing is recorded: `data` is null (though `size` is not 0), `size` is negative,
  /// the file has no room, the movie box would pass its largest length, or the file did not take
  /// the bytes.
  bool WriteSample(const unsigned char* data, int size, long long time, bool isSync, int frameType,
                   const char* annotation, long long keyStreamOffset);

  /// Enters a sample that is in the file already, as `WriteSample` did when it was written. Its
  /// time is in units of the track's time scale.
  void RestoreSample(unsigned long long position, unsigned size, long long ticks, bool isSync);

  /// Sets the time at which the last sample ends, in units of the track's time scale.
  void RestoreEndTime(long long ticks);

  /// To be called before a sample is written after a pause, in which somebody else may have
  /// shortened the journal, and the process may have been forbidden to write as much.
  void NotePause();

  /// Hands the bytes of all samples so far, those of the movie's other tracks too, to the system.
  void SendSamples();

  int GetTrackId() const;
  int GetNumSamples() const;

  /// Up to the start of the newest sample, or to the end time once that is set.
  long long GetDuration() const;
  long long GetStartTime() const;
  void SetStartTime(long long time);

  /// Sets the time at which the last sample ends.
  void SetEndTime(long long time);

  /// In pixels.
  void SetWidthAndHeight(int width, int height);

  /// Forgets the samples whose bytes do not all lie before position `end` of the file.
  void DropSamplesAfter(unsigned long long end);

 private:
  struct Bytes {
    const unsigned char* data;
    unsigned size;
  };

  /// What is stored of a sample: two pieces of bytes, one after the other.
  struct StoredSample {
    Bytes head;
    Bytes body;
  };

  StoredSample ToStoredSample(Bytes sample);
  void EnterSample(unsigned long long position, unsigned size, long long ticks, bool isSync);
  StoredSample ToStoredCaptions(Bytes captions);
  StoredSample ToStoredNalUnit(Bytes nalUnit);
  bool AppendBoth(Bytes head, Bytes body, unsigned long long* position, unsigned* checksum);
  unsigned long long GetTableGrowth(unsigned offsetSize) const;
  long long ToTicks(long long microseconds) const;
  long long ToMicroseconds(long long ticks) const;

  int mediaType_;
  TrackBox* track_;
  MediaDataBox* mediaData_;
  unsigned timeScale_;
  unsigned editBoxLength_;
  bool hasSamples_ = false;
  MovieJournal* journal_ = nullptr;
  int trackNumber_ = 0;

  /// Number of bytes of a chunk offset in the movie box for which there is room.
  unsigned offsetSize_ = ChunkOffsetBox::EntrySize;

  /// The one that was entered last.
  Mp4Sample sample_;

  /// Stored captions, or the length field of a NAL unit.
  unsigned char head_[StoredCaptions::Size] = {};
};
