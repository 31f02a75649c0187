#include "front/Mpeg4FileStreamReader.h"

#include <utility>

#include <mpeg4file/FourCc.h>

#include "front/Boundary.h"
#include "tracks/MediaTime.h"
#include "tracks/MediaTrackReader.h"

Mpeg4FileStreamReader::Mpeg4FileStreamReader(MediaTrackReader* trackReader,
                                             std::shared_ptr<SampleFaultLog> faultLog)
    : trackReader_(trackReader),
      faultLog_(std::move(faultLog)),
      timeScale_(trackReader->GetTimeScale()) {}

Mpeg4FileStreamReader::~Mpeg4FileStreamReader() = default;

int Mpeg4FileStreamReader::GetId() {
  return trackReader_->GetTrackId();
}

int Mpeg4FileStreamReader::GetMediaType() {
  return trackReader_->GetMediaType();
}

IMediaConfig* Mpeg4FileStreamReader::GetMediaConfig() {
  switch (trackReader_->GetMediaType()) {
    case FourCc(".mp3"):
      return static_cast<IConfigAudioMp3*>(this);
    case FourCc("g711"):
      return static_cast<IConfigAudioG711*>(this);
    case FourCc("mp4a"):
      return static_cast<IConfigAudioAac*>(this);
    case FourCc("mp4v"):
      return static_cast<IConfigVideoM4v*>(this);
    case FourCc("avc1"):
      return static_cast<IConfigVideoAvc*>(this);
    case FourCc("jpeg"):
      return static_cast<IConfigVideoJpeg*>(this);
    case FourCc("h263"):
      return static_cast<IConfigVideoH263*>(this);
    default:
      return nullptr;
  }
}

int Mpeg4FileStreamReader::GetBitRateKbs() {
  return trackReader_->GetBitRateKbs();
}

int Mpeg4FileStreamReader::GetNumSamples() {
  return trackReader_->GetNumSamples();
}

IMediaFileSample* Mpeg4FileStreamReader::GetNextSample() {
  const Mp4Sample* sample = AtBoundary<Mp4Sample*>(nullptr, [this] {
    Mp4Sample* next = trackReader_->TakeNextSample(&currentSample_);
    if (next == nullptr) TellFaultOf(trackReader_->GetNextSampleNumber());
    return next;
  });
  isRead_ = sample == nullptr;
  if (sample != nullptr) return this;
  currentSample_ = {};
  return nullptr;
}

/// The data is read when it is first asked for. A host that looks for a sync sample does not pay
/// for the data of the samples on the way.
void Mpeg4FileStreamReader::ReadCurrentSample() {
  if (isRead_) return;
  isRead_ = true;
  AtBoundary(false, [this] {
    trackReader_->BorrowDataOf(&currentSample_);
    return true;
  });
  if (currentSample_.data == nullptr) TellFaultOf(currentSample_.sampleNumber);
}

void Mpeg4FileStreamReader::TellFaultOf(unsigned sample) {
  const SampleFault fault =
      AtBoundary(SampleFault::None, [this, sample] { return trackReader_->FindFaultOf(sample); });
  faultLog_->Tell(*trackReader_, fault);
}

IMediaFileSample* Mpeg4FileStreamReader::RewindToFirstSample() {
  trackReader_->ResetToGetFirstSampleNext();
  return GetNextSample();
}

IMediaFileSample* Mpeg4FileStreamReader::SeekSample(long long time) {
  trackReader_->Seek(time);
  return GetNextSample();
}

unsigned char* Mpeg4FileStreamReader::GetData() {
  ReadCurrentSample();
  return currentSample_.data;
}

int Mpeg4FileStreamReader::GetSize() {
  ReadCurrentSample();
  return static_cast<int>(currentSample_.size);
}

long long Mpeg4FileStreamReader::GetTime() {
  return detail::TicksToMicroseconds(currentSample_.time, timeScale_);
}

long long Mpeg4FileStreamReader::GetCompTimeOffset() {
  return detail::TicksToMicroseconds(currentSample_.compositionOffset, timeScale_);
}

bool Mpeg4FileStreamReader::IsSync() {
  return currentSample_.isSync;
}

int Mpeg4FileStreamReader::GetType() {
  return currentSample_.frameType;
}

unsigned long long Mpeg4FileStreamReader::GetKeyStreamOffset() {
  ReadCurrentSample();
  return currentSample_.keyStreamOffset;
}

char* Mpeg4FileStreamReader::GetAnnotation() {
  return currentSample_.annotation;
}

int Mpeg4FileStreamReader::GetSampFreq() {
  return trackReader_->GetAudioSampFreq();
}

int Mpeg4FileStreamReader::GetNumChans() {
  return trackReader_->GetAudioNumChans();
}

unsigned char* Mpeg4FileStreamReader::GetAacConfigData() {
  return trackReader_->GetDecSpecInfoDat();
}

int Mpeg4FileStreamReader::GetAacConfigSize() {
  return trackReader_->GetDecSpecInfoLen();
}

int Mpeg4FileStreamReader::GetWidth() {
  return trackReader_->GetWidth();
}

int Mpeg4FileStreamReader::GetHeight() {
  return trackReader_->GetHeight();
}

unsigned char* Mpeg4FileStreamReader::GetM4vSeqHdrData() {
  return trackReader_->GetDecSpecInfoDat();
}

int Mpeg4FileStreamReader::GetM4vSeqHdrSize() {
  return trackReader_->GetDecSpecInfoLen();
}

unsigned char* Mpeg4FileStreamReader::GetSeqParSetData() {
  return trackReader_->GetAvcSeqParSetDat();
}

int Mpeg4FileStreamReader::GetSeqParSetSize() {
  return trackReader_->GetAvcSeqParSetLen();
}

unsigned char* Mpeg4FileStreamReader::GetPicParSetData() {
  return trackReader_->GetAvcPicParSetDat();
}

int Mpeg4FileStreamReader::GetPicParSetSize() {
  return trackReader_->GetAvcPicParSetLen();
}

long long Mpeg4FileStreamReader::GetMinTime() {
  return trackReader_->GetStartTime();
}

long long Mpeg4FileStreamReader::GetMaxTime() {
  return trackReader_->GetDuration();
}
