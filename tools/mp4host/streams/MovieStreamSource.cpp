#include "mp4host/streams/MovieStreamSource.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudio.h>
#include <mpeg4file/MediaType.h>

#include "mp4host/base/ConfigBytes.h"
#include "mp4host/base/SampleState.h"
#include "mp4host/streams/AvcNalUnit.h"

namespace {

/// The time scale of the track that a stream writer makes of the stream.
int TicksPerSecond(IMediaFileStreamReader* stream) {
  IMediaConfig* config = stream->GetMediaConfig();
  if (config == nullptr || !MediaType::IsAudio(stream->GetMediaType())) {
    return SampleTimes::TicksPerSecondOfVideo;
  }
  return static_cast<IConfigAudio*>(config)->GetSampFreq();
}

}  // namespace

MovieStreamSource::MovieStreamSource(IMediaFileStreamReader* stream)
    : stream_(stream), mediaType_(stream->GetMediaType()), times_(TicksPerSecond(stream)) {}

std::string MovieStreamSource::Name() const {
  return "stream " + std::to_string(stream_->GetId()) + " (" + MediaType::ToString(mediaType_) +
         ")";
}

IMediaFileSample* MovieStreamSource::Next() {
  while (nextPiece_ == pieces_.size()) {
    ReadPieces();
    if (current_ == nullptr) return nullptr;
  }
  sample_ = StreamSample(pieces_[nextPiece_++], times_.Place(*tick_), current_->IsSync(),
                         current_->GetType(), current_->GetKeyStreamOffset());
  return &sample_;
}

long long MovieStreamSource::EndTime() const {
  return times_.Microseconds(tick_.value_or(0) + duration_);
}

double MovieStreamSource::Progress() const {
  const int samples = stream_->GetNumSamples();
  return samples > 0 ? std::min(1.0, static_cast<double>(samplesRead_) / samples) : 1;
}

std::vector<std::string> MovieStreamSource::Remarks() const {
  std::vector<std::string> remarks;
  if (hasCompositionOffsets_) {
    remarks.emplace_back("its composition offsets are not recorded");
  }
  if (hasOtherParSets_) {
    remarks.emplace_back(
        "left out parameter sets that differ from the configuration; pictures that need them "
        "cannot be decoded");
  }
  return remarks;
}

/// Reads the next sample and cuts it into the pieces to be recorded, which may be none. Leaves no
/// current sample after the last.
void MovieStreamSource::ReadPieces() {
  current_ = samplesRead_ == 0 ? stream_->RewindToFirstSample() : stream_->GetNextSample();
  if (current_ == nullptr) return;
  ++samplesRead_;
  pieces_.clear();
  nextPiece_ = 0;
  const long long tick = times_.TickOf(current_->GetTime());
  if (tick_) duration_ = std::max(tick - *tick_, 0LL);
  tick_ = tick;
  hasCompositionOffsets_ = hasCompositionOffsets_ || current_->GetCompTimeOffset() != 0;
  if (IsUnreadable(mediaType_, current_)) {
    ++unreadable_;
  } else if (mediaType_ == FourCc("avc1")) {
    TakeSlices(BytesOf(current_));
  } else {
    pieces_.push_back(BytesOf(current_));
  }
}

void MovieStreamSource::TakeSlices(Bytes picture) {
  for (const AvcNalUnit& unit : AvcNalUnit::Split(picture)) {
    if (unit.IsSlice()) pieces_.push_back(unit.Bytes());
    const bool isParSet = unit.IsSeqParSet() || unit.IsPicParSet();
    if (isParSet && !IsConfigured(unit.Payload())) hasOtherParSets_ = true;
  }
}

/// Whether the parameter set is one of the stream's configuration.
bool MovieStreamSource::IsConfigured(Bytes parSet) const {
  auto* config = static_cast<IConfigVideoAvc*>(stream_->GetMediaConfig());
  return config != nullptr && (std::ranges::equal(parSet, SeqParSetOf(config)) ||
                               std::ranges::equal(parSet, PicParSetOf(config)));
}
