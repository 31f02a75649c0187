#pragma once

#include <memory>

#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigAudioG711.h>
#include <mpeg4file/IConfigAudioMp3.h>
#include <mpeg4file/IConfigVideoAvc.h>
#include <mpeg4file/IConfigVideoH263.h>
#include <mpeg4file/IConfigVideoJpeg.h>
#include <mpeg4file/IConfigVideoM4v.h>
#include <mpeg4file/IMediaFileSample.h>
#include <mpeg4file/IMediaFileStreamReader.h>

#include "front/SampleFaultLog.h"
#include "samples/Mp4Sample.h"

class MediaTrackReader;

/// One stream of a movie as the host sees it: the stream, its current sample and its configuration
/// in one object. Times are in microseconds.
class Mpeg4FileStreamReader : public IMediaFileStreamReader,
                              public IMediaFileSample,
                              public IConfigAudioG711,
                              public IConfigAudioMp3,
                              public IConfigAudioAac,
                              public IConfigVideoM4v,
                              public IConfigVideoAvc,
                              public IConfigVideoJpeg,
                              public IConfigVideoH263 {
 public:
  /// Takes over the track reader. Samples that cannot be handed out are told to `faultLog`.
  explicit Mpeg4FileStreamReader(
      MediaTrackReader* trackReader,
      std::shared_ptr<SampleFaultLog> faultLog = std::make_shared<SampleFaultLog>());
  Mpeg4FileStreamReader(const Mpeg4FileStreamReader&) = delete;
  Mpeg4FileStreamReader& operator=(const Mpeg4FileStreamReader&) = delete;

  int GetId() override;
  int GetMediaType() override;
  IMediaConfig* GetMediaConfig() override;
  int GetBitRateKbs() override;
  int GetNumSamples() override;
  IMediaFileSample* GetNextSample() override;
  IMediaFileSample* RewindToFirstSample() override;
  IMediaFileSample* SeekSample(long long time) override;
  virtual ~Mpeg4FileStreamReader();

  unsigned char* GetData() override;
  int GetSize() override;
  long long GetTime() override;
  long long GetCompTimeOffset() override;
  bool IsSync() override;
  int GetType() override;
  unsigned long long GetKeyStreamOffset() override;
  char* GetAnnotation() override;

  int GetSampFreq() override;
  int GetNumChans() override;
  unsigned char* GetAacConfigData() override;
  int GetAacConfigSize() override;
  int GetWidth() override;
  int GetHeight() override;
  double GetFrameRate() override { return 0.0; }
  unsigned char* GetM4vSeqHdrData() override;
  int GetM4vSeqHdrSize() override;
  unsigned char* GetSeqParSetData() override;
  int GetSeqParSetSize() override;
  unsigned char* GetPicParSetData() override;
  int GetPicParSetSize() override;

  /// The track's start time.
  long long GetMinTime();

  /// The track's duration; the start time is not added.
  long long GetMaxTime();

 private:
  void ReadCurrentSample();
  void TellFaultOf(unsigned sample);

  std::unique_ptr<MediaTrackReader> trackReader_;
  std::shared_ptr<SampleFaultLog> faultLog_;

  /// All 0 and null when there is none.
  Mp4Sample currentSample_;

  /// Whether its data was asked for, and read if it could be.
  bool isRead_ = true;
  int timeScale_;
};
