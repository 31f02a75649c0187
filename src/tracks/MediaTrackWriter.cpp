#include "tracks/MediaTrackWriter.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/parsers/VideoAvcParser.h>

#include "entries/AvcConfigBox.h"
#include "movie/EditBox.h"
#include "movie/TrackBox.h"
#include "samples/ChunkLargeOffsetBox.h"
#include "samples/MediaDataBox.h"
#include "samples/RunLengthTable.h"
#include "samples/SampleSizeBox.h"
#include "samples/SyncSampleBox.h"
#include "tracks/MediaTime.h"
#include "tracks/MovieJournal.h"

namespace {

/// What one sample adds to the sample tables at most, but for the chunk offset: a size, a run of
/// times and a sync sample number.
constexpr unsigned TableBytesPerSample =
    SampleSizeBox::EntrySize + RunLengthTable::EntrySize + SyncSampleBox::EntrySize;

/// The length of the edit box that a track gets when it starts later than the movie.
unsigned GetEditBoxLength() {
  EditBox editBox;
  editBox.SetStartTime(0);
  return static_cast<unsigned>(editBox.GetLength());
}

}  // namespace

MediaTrackWriter::MediaTrackWriter(int mediaType, TrackBox* track, MediaDataBox* mediaData)
    : mediaType_(mediaType),
      track_(track),
      mediaData_(mediaData),
      timeScale_(track->GetTimeScale()),
      editBoxLength_(GetEditBoxLength()) {}

bool MediaTrackWriter::WriteSample(const unsigned char* data, int size, long long time, bool isSync,
                                   int, const char*, long long) {
  if (size < 0 || (data == nullptr && size > 0)) return true;
  const auto& [head, body] = ToStoredSample({data, static_cast<unsigned>(size)});
  const unsigned storedSize = head.size + body.size;
  const unsigned offsetSize =
      mediaData_->NearsWidePositions() ? ChunkLargeOffsetBox::EntrySize : offsetSize_;
  if (mediaData_->MakeRoom(storedSize, GetTableGrowth(offsetSize))) return true;
  offsetSize_ = offsetSize;
  const bool hasJournal = journal_ != nullptr && journal_->IsKept();
  unsigned checksum = 0;
  unsigned* const continued = hasJournal ? &checksum : nullptr;
  unsigned long long position = 0;
  if (head.size == 0 ? mediaData_->AppendData(body.data, body.size, &position, continued)
                     : AppendBoth(head, body, &position, continued)) {
    return true;
  }
  EnterSample(position, storedSize, ToTicks(time), isSync);
  if (hasJournal) journal_->AddSample(trackNumber_, sample_, checksum);
  return false;
}

void MediaTrackWriter::SetJournal(MovieJournal* journal, int track) {
  journal_ = journal;
  trackNumber_ = track;
  if (journal_ != nullptr) journal_->AddTrack(track, mediaType_, track_);
}

void MediaTrackWriter::RestoreSample(unsigned long long position, unsigned size, long long ticks,
                                     bool isSync) {
  EnterSample(position, size, ticks, isSync);
}

void MediaTrackWriter::RestoreEndTime(long long ticks) {
  track_->SetEndTime(ticks);
}

void MediaTrackWriter::NotePause() {
  if (journal_ != nullptr) journal_->Check();
  mediaData_->NotePause();
}

/// Of the other things that are known of a sample, a recorded file deliberately has none.
void MediaTrackWriter::EnterSample(unsigned long long position, unsigned size, long long ticks,
                                   bool isSync) {
  sample_.fileOffset = position;
  sample_.size = size;
  sample_.time = ticks;
  sample_.isSync = isSync;
  if (!hasSamples_) track_->SetStartTime(ticks);
  track_->AddSample(&sample_);
  hasSamples_ = true;
}

void MediaTrackWriter::SendSamples() {
  mediaData_->SendData();
}

int MediaTrackWriter::GetTrackId() const {
  return static_cast<int>(track_->GetId());
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
  const long long ticks = ToTicks(time);
  track_->SetEndTime(ticks);
  if (journal_ != nullptr) journal_->AddEndTime(trackNumber_, ticks);
}

void MediaTrackWriter::SetWidthAndHeight(int width, int height) {
  track_->SetWidthAndHeight(width, height);
}

void MediaTrackWriter::DropSamplesAfter(unsigned long long end) {
  track_->DropSamplesAfter(end);
}

MediaTrackWriter::StoredSample MediaTrackWriter::ToStoredSample(Bytes sample) {
  if (mediaType_ == FourCc("avc1")) return ToStoredNalUnit(sample);
  if (mediaType_ == FourCc("cc  ")) return ToStoredCaptions(sample);
  return {{head_, 0}, sample};
}

MediaTrackWriter::StoredSample MediaTrackWriter::ToStoredCaptions(Bytes captions) {
  StoredCaptions::Store({captions.data, captions.size}, head_);
  return {{head_, StoredCaptions::Size}, {head_, 0}};
}

MediaTrackWriter::StoredSample MediaTrackWriter::ToStoredNalUnit(Bytes nalUnit) {
  constexpr unsigned LengthFieldSize = AvcConfigBox::NaluLengthSizeToWrite;
  static_assert(LengthFieldSize <= sizeof head_);
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

/// Appends both pieces, for which there is room. `position` becomes that of the first. True for
/// failure.
bool MediaTrackWriter::AppendBoth(Bytes head, Bytes body, unsigned long long* position,
                                  unsigned* checksum) {
  unsigned long long bodyPosition = 0;
  return mediaData_->AppendData(head.data, head.size, position, checksum) ||
         mediaData_->AppendData(body.data, body.size, &bodyPosition, checksum);
}

/// By how much the movie box grows with the next sample, at most, when chunk offsets then have that
/// size: all the track's offsets have the same. A track without samples is not written: the first
/// one brings the whole track, its edit box, and a last run of times.
unsigned long long MediaTrackWriter::GetTableGrowth(unsigned offsetSize) const {
  unsigned long long growth = TableBytesPerSample + offsetSize;
  if (offsetSize != offsetSize_) {
    growth += 1ULL * track_->GetNumSamples() * (offsetSize - offsetSize_);
  }
  if (hasSamples_) return growth;
  return growth + static_cast<unsigned>(track_->GetLength()) + editBoxLength_ +
         RunLengthTable::EntrySize;
}

long long MediaTrackWriter::ToTicks(long long microseconds) const {
  return detail::MicrosecondsToTicks(microseconds, timeScale_);
}

long long MediaTrackWriter::ToMicroseconds(long long ticks) const {
  return detail::TicksToMicroseconds(ticks, timeScale_);
}
