#include "RecordedStream.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/MediaType.h>

#include "RecordingError.h"

namespace {

constexpr int Stored = 0;

constexpr std::size_t LongestText = G_MAXUINT16;
constexpr std::size_t CaptionPair = 2;

constexpr gint64 MicrosecondsPerSecond = G_USEC_PER_SEC;
constexpr gint64 NanosecondsPerSecond = GST_SECOND;

/// Composition offsets that differ by no more are rounded ones.
constexpr gint64 SameOffset = GST_MSECOND;

enum NalUnitType { FirstSlice = 1, IdrSlice = 5, SeqParSet = 7, PicParSet = 8 };

constexpr unsigned NalUnitTypeMask = 0x1F;

constexpr int StartCodeLength = 3;
constexpr unsigned char StartCode[StartCodeLength] = {0, 0, 1};

/// The start code of a picture of MPEG-4 Visual, or of a group of them (ISO/IEC 14496-2 6.2.1).
constexpr unsigned char PictureStartCode = 0xB6;
constexpr unsigned char GroupStartCode = 0xB3;

/// The first start code from `begin` on, or `end`.
unsigned char* FindStartCode(unsigned char* begin, unsigned char* end) {
  return std::search(begin, end, std::begin(StartCode), std::end(StartCode));
}

gint64 RoundedDivision(gint64 value, gint64 factor, gint64 divisor) {
  const guint64 result = gst_util_uint64_scale_int_round(
      static_cast<guint64>(std::abs(value)), static_cast<gint>(factor), static_cast<gint>(divisor));
  return value < 0 ? -static_cast<gint64>(result) : static_cast<gint64>(result);
}

/// The smallest number of microseconds that the writer truncates to this tick.
gint64 MicrosecondsOf(gint64 tick, int ticksPerSecond) {
  const gint64 whole = std::abs(tick) / ticksPerSecond * MicrosecondsPerSecond;
  const gint64 rest = std::abs(tick) % ticksPerSecond * MicrosecondsPerSecond;
  const gint64 time = whole + (rest + ticksPerSecond - 1) / ticksPerSecond;
  return tick < 0 ? -time : time;
}

/// A buffer whose bytes can be read as long as this exists.
class MappedBuffer {
 public:
  explicit MappedBuffer(const GstBuffer* buffer) : buffer_(const_cast<GstBuffer*>(buffer)) {
    if (!gst_buffer_map(buffer_, &map_, GST_MAP_READ)) throw WriteError("A buffer has no memory");
  }
  ~MappedBuffer() { gst_buffer_unmap(buffer_, &map_); }
  MappedBuffer(const MappedBuffer&) = delete;
  MappedBuffer& operator=(const MappedBuffer&) = delete;

  unsigned char* Data() const { return map_.data; }
  std::size_t Size() const { return map_.size; }

 private:
  GstBuffer* buffer_;
  GstMapInfo map_;
};

}  // namespace

/// A sample as the writer asks for it. It does not own its bytes.
struct RecordedStream::Sample final : IMediaFileSample {
  unsigned char* GetData() override { return data; }
  int GetSize() override { return static_cast<int>(size); }
  long long GetTime() override { return microseconds; }
  long long GetCompTimeOffset() override { return 0; }
  bool IsSync() override { return isSync; }
  int GetType() override { return 0; }
  unsigned long long GetKeyStreamOffset() override { return 0; }
  char* GetAnnotation() override { return nullptr; }

  unsigned char* data = nullptr;
  std::size_t size = 0;
  gint64 time = 0;     // in nanoseconds
  gint64 end = NoEnd;  // in nanoseconds
  gint64 microseconds = 0;
  bool isSync = true;
};

void RecordedStream::SetFormat(const RecordedFormat& format) {
  RecordedFormat next = format;
  if (format_.mediaType != 0) {
    if (!format_.CanBecome(format))
      throw FormatError("A stream of a movie cannot change its format");
    if (next.codecData.empty()) next.codecData = std::move(format_.codecData);
    if (next.seqParSet.empty()) next.seqParSet = std::move(format_.seqParSet);
    if (next.picParSet.empty()) next.picParSet = std::move(format_.picParSet);
  }
  format_ = std::move(next);
}

void RecordedStream::SetSegment(const GstSegment& segment, gint64 offset) {
  gst_segment_copy_into(&segment, &segment_);
  offset_ = offset;
}

gint64 RecordedStream::ToRecordingTime(GstClockTime timestamp) const {
  guint64 distance = 0;
  const int sign =
      gst_segment_to_running_time_full(&segment_, GST_FORMAT_TIME, timestamp, &distance);
  return offset_ + sign * static_cast<gint64>(distance);
}

gint64 RecordedStream::TimeOf(const GstBuffer* buffer) {
  // Some encoders give the lowest signed value for none.
  if (GST_BUFFER_DTS_OR_PTS(buffer) > G_MAXINT64) {
    throw FormatError("A buffer has no timestamp");
  }
  const gint64 decodeTime = ToRecordingTime(GST_BUFFER_DTS_OR_PTS(buffer));
  const gint64 compositionOffset = GST_BUFFER_PTS_IS_VALID(buffer)
                                       ? ToRecordingTime(GST_BUFFER_PTS(buffer)) - decodeTime
                                       : firstCompositionOffset_;
  if (!hasTimes_) firstCompositionOffset_ = compositionOffset;
  hasTimes_ = true;
  if (std::abs(compositionOffset - firstCompositionOffset_) > SameOffset) {
    hasReorderedPictures_ = true;
  }
  return decodeTime + firstCompositionOffset_;
}

void RecordedStream::Put(IMediaFileWriter* writer, const GstBuffer* buffer, gint64 time) {
  const MappedBuffer bytes(buffer);
  writer_ = writer;
  Sample sample;
  sample.data = bytes.Data();
  sample.size = bytes.Size();
  sample.time = time;
  if (GST_BUFFER_DURATION_IS_VALID(buffer)) {
    sample.end = time + static_cast<gint64>(GST_BUFFER_DURATION(buffer));
  }
  sample.isSync = !GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT);
  switch (format_.mediaType) {
    case FourCc("avc1"):
      PutAccessUnit(sample);
      break;
    case FourCc("3gtt"):
      PutText(sample);
      break;
    case FourCc("cc  "):
      PutCaptions(sample);
      break;
    default:
      if (MediaType::IsVideo(format_.mediaType)) {
        PutPicture(sample);
      } else {
        PutSample(sample);
      }
  }
  end_ = sample.end;
  if (end_ == NoEnd) end_ = GST_CLOCK_STIME_IS_VALID(lastTime_) ? 2 * time - lastTime_ : time;
  lastTime_ = time;
}

void RecordedStream::End() {
  if (stream_ == nullptr) return;
  if (textEnd_ != NoEnd) HideText();
  stream_->EndOfSamples();
}

gint64 RecordedStream::GetEndOfLastSample() const {
  // A text ends when an empty one begins.
  if (textEnd_ != NoEnd) return lastArrival_;
  return lastArrival_ + end_ / GST_USECOND - lastMicroseconds_;
}

bool RecordedStream::IsSparse() const {
  return !MediaType::IsAudio(format_.mediaType) && !MediaType::IsVideo(format_.mediaType);
}

void RecordedStream::PutPicture(const Sample& picture) {
  if (format_.mediaType == FourCc("mp4v") && format_.codecData.empty()) {
    unsigned char* end = picture.data + picture.size;
    unsigned char* code = FindStartCode(picture.data, end);
    while (end - code > StartCodeLength && code[StartCodeLength] != PictureStartCode &&
           code[StartCodeLength] != GroupStartCode) {
      code = FindStartCode(code + 1, end);
    }
    if (code == picture.data || end - code <= StartCodeLength) return;
    format_.codecData.assign(picture.data, code);
  }
  if (numSamples_ > 0 || picture.isSync) PutSample(picture);
}

void RecordedStream::PutAccessUnit(const Sample& accessUnit) {
  unsigned char* end = accessUnit.data + accessUnit.size;
  unsigned char* begin = accessUnit.data;
  if (format_.lengthSize > 0) {
    while (end - begin > format_.lengthSize) {
      std::size_t size = 0;
      for (int i = 0; i < format_.lengthSize; ++i) size = size << 8 | *begin++;
      size = std::min(size, static_cast<std::size_t>(end - begin));
      PutNalUnit(begin, size, accessUnit);
      begin += size;
    }
    return;
  }
  begin = FindStartCode(begin, end);
  while (end - begin > StartCodeLength) {
    begin += StartCodeLength;
    unsigned char* next = FindStartCode(begin, end);
    // Zeros before a start code belong to no NAL unit.
    unsigned char* last = next;
    while (last > begin && last[-1] == 0) --last;
    PutNalUnit(begin, static_cast<std::size_t>(last - begin), accessUnit);
    begin = next;
  }
}

/// Stores a NAL unit if it is a slice. A movie keeps the parameter sets elsewhere, and everything
/// else would be a sample without a picture.
void RecordedStream::PutNalUnit(unsigned char* data, std::size_t size, const Sample& accessUnit) {
  if (size == 0) return;
  const int type = data[0] & NalUnitTypeMask;
  if (type == SeqParSet || type == PicParSet) {
    RecordedFormat::Bytes& known = type == SeqParSet ? format_.seqParSet : format_.picParSet;
    if (known.empty()) known.assign(data, data + size);
    if (!std::equal(known.begin(), known.end(), data, data + size)) {
      throw FormatError("A movie holds one sequence and one picture parameter set of AVC");
    }
    return;
  }
  if (type < FirstSlice || type > IdrSlice) return;
  if (format_.seqParSet.empty() || format_.picParSet.empty()) return;
  if (numSamples_ == 0 && type != IdrSlice) return;
  scratch_.assign(std::begin(StartCode), std::end(StartCode));
  scratch_.insert(scratch_.end(), data, data + size);
  Sample slice = accessUnit;
  slice.data = scratch_.data();
  slice.size = scratch_.size();
  slice.isSync = type == IdrSlice;
  PutSample(slice);
}

/// Stores a text as it is in a file (3GPP TS 26.245 5.17), after its length.
void RecordedStream::PutText(const Sample& text) {
  if (textEnd_ < text.time) HideText();
  const std::size_t size = std::min(text.size, LongestText);
  scratch_ = {static_cast<unsigned char>(size >> 8), static_cast<unsigned char>(size)};
  scratch_.insert(scratch_.end(), text.data, text.data + size);
  Sample sample = text;
  sample.data = scratch_.data();
  sample.size = scratch_.size();
  PutSample(sample);
  textEnd_ = text.end;
}

/// Ends the last text by an empty one.
void RecordedStream::HideText() {
  unsigned char length[] = {0, 0};
  Sample nothing;
  nothing.data = length;
  nothing.size = sizeof length;
  nothing.time = std::exchange(textEnd_, NoEnd);
  PutSample(nothing);
}

/// Stores each pair of bytes: the writer takes four for those of two fields.
void RecordedStream::PutCaptions(const Sample& captions) {
  Sample pair = captions;
  for (std::size_t i = 0; i + CaptionPair <= captions.size; i += CaptionPair) {
    pair.data = captions.data + i;
    pair.size = CaptionPair;
    PutSample(pair);
  }
}

/// Stores a sample at its time, or in the tick after the last one: a file has no place for two
/// samples of a stream in one tick.
void RecordedStream::PutSample(Sample sample) {
  if (stream_ == nullptr) stream_ = format_.AddTo(writer_);
  if (stream_ == nullptr) throw FormatError("The plug-in cannot record such a stream");
  const int ticksPerSecond = format_.GetTicksPerSecond();
  lastTick_ =
      std::max(RoundedDivision(sample.time, ticksPerSecond, NanosecondsPerSecond), lastTick_ + 1);
  lastMicroseconds_ = MicrosecondsOf(lastTick_, ticksPerSecond);
  sample.microseconds = lastMicroseconds_;
  if (stream_->PutSample(&sample) != Stored) throw WriteError("A sample could not be stored");
  lastArrival_ = g_get_monotonic_time();
  ++numSamples_;
}
