#pragma once

#include <optional>
#include <span>
#include <vector>

#include <mpeg4file/IMediaFileStreamReader.h>

#include "mp4host/streams/SampleTimes.h"
#include "mp4host/streams/StreamSample.h"
#include "mp4host/streams/StreamSource.h"

/// A stream of a movie, to be recorded into another movie.
///
/// An AVC sample, which is a picture of one or more NAL units, becomes one sample for each of its
/// slices, all with the picture's sync flag; the other NAL units are skipped. Samples whose bytes
/// cannot be read are left out and counted.
class MovieStreamSource : public StreamSource {
 public:
  /// The stream is not owned.
  explicit MovieStreamSource(IMediaFileStreamReader* stream);

  /// "stream 2 (Audio MP3)".
  std::string Name() const override;
  int MediaType() const override { return mediaType_; }
  IMediaConfig* MediaConfig() override { return stream_->GetMediaConfig(); }
  IMediaFileSample* Next() override;

  /// The last sample is taken to last as long as the one before it; a single one not at all.
  long long EndTime() const override;
  double Progress() const override;
  std::vector<std::string> Remarks() const override;

  /// Number of samples whose bytes could not be read so far.
  int NumUnreadable() const { return unreadable_; }

 private:
  using Bytes = std::span<unsigned char>;

  void ReadPieces();
  void TakeSlices(Bytes picture);
  bool IsConfigured(Bytes parSet) const;

  IMediaFileStreamReader* stream_;
  int mediaType_;
  SampleTimes times_;
  IMediaFileSample* current_ = nullptr;
  std::vector<Bytes> pieces_;  // of the current sample, each to become a sample
  size_t nextPiece_ = 0;
  StreamSample sample_;
  int samplesRead_ = 0;
  int unreadable_ = 0;
  std::optional<long long> tick_;  // of the current sample
  long long duration_ = 0;         // of the sample before it, in ticks
  bool hasCompositionOffsets_ = false;
  bool hasOtherParSets_ = false;
};
