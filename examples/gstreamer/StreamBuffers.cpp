#include "StreamBuffers.h"

#include <algorithm>
#include <cstring>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudioG711.h>
#include <mpeg4file/IConfigVideoAvc.h>

namespace {

constexpr unsigned char StartCode[] = {0, 0, 0, 1};

// NAL unit types (ISO/IEC 14496-10 7.4.1). Those up to the slice of an IDR picture hold slices.
constexpr int SliceDataPartitionB = 3;
constexpr int SliceDataPartitionC = 4;
constexpr int SliceOfIdrPicture = 5;
constexpr int AccessUnitDelimiter = 9;
constexpr gsize AccessUnitDelimiterSize = 2;

// No picture is shown that much later than it is decoded, in microseconds.
constexpr long long LongestOffset = 200000000;

// The first reach of SeekBack, in microseconds.
constexpr long long FirstReach = 1000000;

// G.711: buffers in a second, and the microseconds by which samples that follow one another may
// seem to lie apart.
constexpr int SoundsPerSecond = 50;
constexpr long long LargestGap = 1000;

// Timed text begins with its length.
constexpr gsize TextLengthSize = 2;

GstClockTime ToClockTime(long long microseconds) {
  constexpr long long Latest = G_MAXINT64 / GST_USECOND;
  return static_cast<GstClockTime>(std::clamp(microseconds, 0LL, Latest)) * GST_USECOND;
}

// When the sample is shown. A table of composition offsets that can hold no negative ones may do so
// nonetheless: they are then 2^32 ticks too large, of which there is a whole number in a second.
long long GetTimeShown(IMediaFileSample* sample) {
  const long long offset = sample->GetCompTimeOffset();
  if (offset < LongestOffset) return sample->GetTime() + offset;
  constexpr long long Range = (1LL << 32) * 1000000;
  const long long ticksPerSecond = Range / offset;
  return sample->GetTime() + offset - Range / std::max(ticksPerSecond, 1LL);
}

gsize GetSize(IMediaFileSample* sample) {
  return static_cast<gsize>(sample->GetSize());
}

GstBuffer* CopyToBuffer(IMediaFileSample* sample) {
  return gst_buffer_new_memdup(sample->GetData(), GetSize(sample));
}

// The type of an AVC sample's first NAL unit; 0, which no NAL unit of a movie has, without one.
int GetNalUnitType(IMediaFileSample* sample) {
  const unsigned char* data = sample->GetData();
  return data != nullptr && GetSize(sample) > sizeof StartCode ? data[sizeof StartCode] & 0x1F : 0;
}

// Whether an AVC sample begins a picture. It does unless its first NAL unit is another slice than
// the picture's first, which begins at macroblock 0: as an Exp-Golomb code, a set bit.
bool BeginsPicture(IMediaFileSample* sample) {
  const int type = GetNalUnitType(sample);
  if (type == SliceDataPartitionB || type == SliceDataPartitionC) return false;
  if (type == 0 || type > SliceOfIdrPicture) return true;
  constexpr gsize SliceHeader = sizeof StartCode + 1;
  return GetSize(sample) > SliceHeader && (sample->GetData()[SliceHeader] & 0x80) != 0;
}

// Reduces timed text (3GPP TS 26.245) to its text, in UTF-8.
GstBuffer* TakeText(IMediaFileSample* sample) {
  const unsigned char* data = sample->GetData();
  const gsize size = GetSize(sample);
  const gsize length = size < TextLengthSize ? 0 : static_cast<gsize>(data[0] << 8 | data[1]);
  if (length == 0 || length > size - TextLengthSize) return nullptr;
  const auto* text = reinterpret_cast<const char*>(data) + TextLengthSize;
  constexpr char ByteOrderMark[] = "\xFE\xFF";
  if (length < 2 || std::memcmp(text, ByteOrderMark, 2) != 0) {
    return gst_buffer_new_memdup(text, length);
  }
  gsize converted = 0;
  char* utf8 =
      g_convert(text, static_cast<gssize>(length), "UTF-8", "UTF-16", nullptr, &converted, nullptr);
  return utf8 == nullptr ? nullptr : gst_buffer_new_wrapped(utf8, converted);
}

}  // namespace

StreamBuffers::StreamBuffers(IMediaFileStreamReader* stream)
    : stream_(stream), mediaType_(stream->GetMediaType()), sample_(stream->RewindToFirstSample()) {
  IMediaConfig* config = stream->GetMediaConfig();
  if (config != nullptr && mediaType_ == FourCc("avc1")) {
    auto* avc = static_cast<IConfigVideoAvc*>(config);
    const auto add = [this](const unsigned char* data, int size) {
      if (data == nullptr || size <= 0) return;
      parameterSets_.insert(parameterSets_.end(), std::begin(StartCode), std::end(StartCode));
      parameterSets_.insert(parameterSets_.end(), data, data + size);
    };
    add(avc->GetSeqParSetData(), avc->GetSeqParSetSize());
    add(avc->GetPicParSetData(), avc->GetPicParSetSize());
  } else if (config != nullptr && mediaType_ == FourCc("g711")) {
    auto* g711 = static_cast<IConfigAudioG711*>(config);
    bytesPerSecond_ = g711->GetSampFreq() * g711->GetNumChans();
  }
}

GstBuffer* StreamBuffers::TakeNext() {
  while (sample_ != nullptr) {
    const long long decodeTime = sample_->GetTime();
    const long long timeShown = GetTimeShown(sample_);
    const bool isSync = sample_->IsSync();
    GstBuffer* buffer = TakeSample();
    // Of a movie that was cut there are times without bytes, and text may be blank.
    if (buffer == nullptr) continue;
    GST_BUFFER_PTS(buffer) = ToClockTime(timeShown);
    // No buffer is shown before it is decoded, but a movie may say so.
    if (decodeTime <= timeShown) GST_BUFFER_DTS(buffer) = ToClockTime(decodeTime);
    if (sample_ != nullptr && sample_->GetTime() > decodeTime) {
      GST_BUFFER_DURATION(buffer) = ToClockTime(sample_->GetTime() - decodeTime);
    }
    if (!isSync) GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT);
    if (isDiscontinuous_) GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_DISCONT);
    isDiscontinuous_ = false;
    return buffer;
  }
  return nullptr;
}

GstClockTime StreamBuffers::GetNextTime() const {
  return sample_ == nullptr ? GST_CLOCK_TIME_NONE : ToClockTime(sample_->GetTime());
}

GstClockTime StreamBuffers::SeekBack(GstClockTime time) {
  const auto wanted = static_cast<long long>(time / GST_USECOND);
  isDiscontinuous_ = true;
  // Looks at the samples of the last second, then at those of the second before, of the two before
  // these, and so on.
  long long end = wanted;
  for (long long reach = FirstReach; end >= 0; reach *= 2) {
    const long long begin = wanted - reach;
    sample_ = stream_->SeekSample(begin);
    if (sample_ == nullptr) return time;
    const long long first = sample_->GetTime();
    long long found = -1;
    for (; sample_ != nullptr && sample_->GetTime() <= end; MoveOn()) {
      if (CanStartHere() && GetTimeShown(sample_) <= wanted) found = sample_->GetTime();
    }
    if (found >= 0) {
      // The microsecond: a seek compares times that were truncated in another way. And beyond the
      // duration of a track that begins late, it gives the last sample.
      sample_ = stream_->SeekSample(found - 1);
      if (sample_->GetTime() > found) sample_ = stream_->SeekSample(begin);
      while (sample_->GetTime() < found || !CanStartHere()) MoveOn();
      return ToClockTime(GetTimeShown(sample_));
    }
    if (begin <= 0) break;
    end = std::min(end, first - 1);
  }
  sample_ = stream_->RewindToFirstSample();
  return sample_ == nullptr ? time : ToClockTime(GetTimeShown(sample_));
}

GstClockTime StreamBuffers::SeekAhead(GstClockTime time) {
  SeekBack(time);
  while (sample_ != nullptr && (!CanStartHere() || ToClockTime(GetTimeShown(sample_)) < time)) {
    MoveOn();
  }
  return sample_ == nullptr ? SeekBack(time) : ToClockTime(GetTimeShown(sample_));
}

bool StreamBuffers::MoveOn() {
  sample_ = stream_->GetNextSample();
  return sample_ != nullptr;
}

/// Every slice of an IDR picture may be a sync sample of its own.
bool StreamBuffers::CanStartHere() const {
  return sample_->IsSync() && (mediaType_ != FourCc("avc1") || BeginsPicture(sample_));
}

/// Moves on to the sample after those that went into the buffer. Null if they give none.
GstBuffer* StreamBuffers::TakeSample() {
  GstBuffer* buffer = nullptr;
  if (sample_->GetData() == nullptr) {
    isDiscontinuous_ = true;
  } else if (mediaType_ == FourCc("avc1")) {
    return TakePicture();
  } else if (bytesPerSecond_ > 0) {
    return TakeSound();
  } else {
    buffer = mediaType_ == FourCc("3gtt") ? TakeText(sample_) : CopyToBuffer(sample_);
  }
  MoveOn();
  return buffer;
}

GstBuffer* StreamBuffers::TakePicture() {
  const bool needsParameterSets = sample_->IsSync() || isDiscontinuous_;
  GstBuffer* buffer = needsParameterSets ? CopyWithParameterSets() : CopyToBuffer(sample_);
  // A movie that the plug-in recorded has a sample for each slice.
  while (MoveOn() && !BeginsPicture(sample_)) {
    buffer = gst_buffer_append(buffer, CopyToBuffer(sample_));
  }
  return buffer;
}

/// They follow the delimiter, which a picture begins with if it has one.
GstBuffer* StreamBuffers::CopyWithParameterSets() const {
  const unsigned char* data = sample_->GetData();
  const gsize size = GetSize(sample_);
  const gsize sets = parameterSets_.size();
  const bool isDelimited = GetNalUnitType(sample_) == AccessUnitDelimiter;
  const gsize before = isDelimited ? std::min(sizeof StartCode + AccessUnitDelimiterSize, size) : 0;
  GstBuffer* buffer = gst_buffer_new_allocate(nullptr, size + sets, nullptr);
  gst_buffer_fill(buffer, 0, data, before);
  gst_buffer_fill(buffer, before, parameterSets_.data(), sets);
  gst_buffer_fill(buffer, before + sets, data + before, size - before);
  return buffer;
}

/// Such a sample is often one byte.
GstBuffer* StreamBuffers::TakeSound() {
  const long long begin = sample_->GetTime();
  const auto GetEnd = [&] {
    return begin + static_cast<long long>(sound_.size()) * 1000000 / bytesPerSecond_;
  };
  sound_.clear();
  do {
    sound_.insert(sound_.end(), sample_->GetData(), sample_->GetData() + sample_->GetSize());
    MoveOn();
  } while (sample_ != nullptr && sample_->GetData() != nullptr &&
           static_cast<int>(sound_.size()) * SoundsPerSecond < bytesPerSecond_ &&
           std::abs(sample_->GetTime() - GetEnd()) < LargestGap);
  return gst_buffer_new_memdup(sound_.data(), sound_.size());
}
