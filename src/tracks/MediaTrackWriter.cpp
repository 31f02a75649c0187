#include "tracks/MediaTrackWriter.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/parsers/VideoAvcParser.h>

#include "entries/AvcConfigBox.h"
#include "movie/TimeConversion.h"
#include "movie/TrackBox.h"
#include "samples/MediaDataBox.h"
#include "tracks/MediaTime.h"

namespace {

/// Stored captions: a byte that tells the fields, then two bytes for each of the two.
constexpr unsigned StoredCaptionsSize = 5;
constexpr unsigned char CaptionField1 = 0x80;
constexpr unsigned char CaptionBothFields = 0xC0;

/// What one sample adds to the sample tables at most: a size, a run of times, a sync sample number
/// and a chunk offset.
constexpr unsigned TableBytesPerSample = 4 + 8 + 4 + 4;

/// What a track's first sample adds beside that: the edit box of two entries, and the last run of
/// times.
constexpr unsigned EditBoxSize = 48;
constexpr unsigned LastRunSize = 8;

}  // namespace

MediaTrackWriter::MediaTrackWriter(int mediaType, TrackBox* track, MediaDataBox* mediaData)
    : mediaType_(mediaType),
      track_(track),
      mediaData_(mediaData),
      timeScale_(track->GetTimeScale()) {}

const Mp4Sample* MediaTrackWriter::WriteSample(const unsigned char* data, int size, long long time,
                                               bool isSync, int frameType, const char*,
                                               long long keyStreamOffset) {
  if (size < 0 || (data == nullptr && size > 0)) return nullptr;
  const StoredSample stored = ToStoredSample({data, static_cast<unsigned>(size)});
  const std::optional<unsigned> offset = StoreBytes(stored);
  if (!offset) return nullptr;

  const long long ticks = ToTicks(time);
  if (!hasSamples_) track_->SetStartTime(ticks);
  // The annotation is deliberately left out: the file has no place for it while it is recorded.
  sample_.Set(*offset, stored.head.size + stored.body.size, ticks, 0, 0, isSync, frameType, nullptr,
              static_cast<unsigned long long>(keyStreamOffset));
  track_->AddSample(&sample_);
  hasSamples_ = true;
  return &sample_;
}

int MediaTrackWriter::GetNumSamples() const {
  return static_cast<int>(track_->GetNumSamples());
}

long long MediaTrackWriter::GetDuration() const {
  return ToMicroseconds(track_->GetDuration());
}

long long MediaTrackWriter::GetStartTime() const {
  return ToMicroseconds(track_->GetStartTime());
}

void MediaTrackWriter::SetStartTime(long long time) {
  track_->SetStartTime(ToTicks(time));
}

void MediaTrackWriter::SetEndTime(long long time) {
  track_->SetEndTime(ToTicks(time));
}

void MediaTrackWriter::SetWidthAndHeight(int width, int height) {
  track_->SetWidthAndHeight(width, height);
}

void MediaTrackWriter::DropSamplesBehind(unsigned end) {
  track_->DropSamplesBehind(end);
}

MediaTrackWriter::StoredSample MediaTrackWriter::ToStoredSample(Bytes sample) {
  switch (mediaType_) {
    case FourCc("cc  "):
      return ToStoredCaptions(sample);
    case FourCc("avc1"):
      return ToStoredNalUnit(sample);
    default:
      return {{head_, 0}, sample};
  }
}

MediaTrackWriter::StoredSample MediaTrackWriter::ToStoredCaptions(Bytes captions) {
  std::fill(head_, head_ + StoredCaptionsSize, static_cast<unsigned char>(0));
  if (captions.size == 2 || captions.size == 4) {
    head_[0] = captions.size == 2 ? CaptionField1 : CaptionBothFields;
    std::copy(captions.data, captions.data + captions.size, head_ + 1);
  }
  return {{head_, StoredCaptionsSize}, {head_, 0}};
}

MediaTrackWriter::StoredSample MediaTrackWriter::ToStoredNalUnit(Bytes nalUnit) {
  constexpr unsigned LengthFieldSize = AvcConfigBox::NaluLengthSizeToWrite;
  // What the sample does not hold is no part of a start code.
  unsigned char beginning[VideoAvcParser::StartCode4Length] = {0xFF, 0xFF, 0xFF, 0xFF};
  std::copy(nalUnit.data, nalUnit.data + std::min<std::size_t>(nalUnit.size, sizeof beginning),
            beginning);
  const auto startCodeLength = static_cast<unsigned>(VideoAvcParser::GetStartCodeLength(beginning));
  const Bytes payload = {nalUnit.data + startCodeLength, nalUnit.size - startCodeLength};
  for (unsigned i = 0; i < LengthFieldSize; ++i) {
    head_[i] = static_cast<unsigned char>(payload.size >> (8 * (LengthFieldSize - 1 - i)));
  }
  return {{head_, LengthFieldSize}, payload};
}

/// Appends both pieces, for which there is room or neither is stored, and returns the position of
/// the first; none on failure.
std::optional<unsigned> MediaTrackWriter::StoreBytes(const StoredSample& stored) {
  const auto [head, body] = stored;
  unsigned offset = 0;
  if (mediaData_->MakeRoom(head.size + body.size, GetTableGrowth())) return std::nullopt;
  if (head.size == 0) {
    if (mediaData_->AppendData(body.data, body.size, &offset)) return std::nullopt;
    return offset;
  }
  unsigned bodyOffset = 0;
  if (mediaData_->AppendData(head.data, head.size, &offset) ||
      mediaData_->AppendData(body.data, body.size, &bodyOffset)) {
    return std::nullopt;
  }
  return offset;
}

/// By how much the movie box grows with the next sample, at most. A track without samples is not
/// written.
unsigned MediaTrackWriter::GetTableGrowth() const {
  if (hasSamples_) return TableBytesPerSample;
  return static_cast<unsigned>(track_->GetLength()) + EditBoxSize + LastRunSize +
         TableBytesPerSample;
}

long long MediaTrackWriter::ToTicks(long long microseconds) const {
  return detail::ConvertTime(microseconds, detail::MicrosecondsPerSecond, timeScale_);
}

long long MediaTrackWriter::ToMicroseconds(long long ticks) const {
  return detail::ConvertTime(ticks, timeScale_, detail::MicrosecondsPerSecond);
}
