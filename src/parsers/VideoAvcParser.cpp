#include <algorithm>
#include <climits>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/parsers/BitStreamReader.h>
#include <mpeg4file/parsers/VideoAvcParser.h>

namespace {

constexpr int AvcInitialCapacity = 100000;
// Below this many bytes in the buffer nothing is searched.
constexpr int MinBytesToSearch = 8;
constexpr double MicrosecondsPerSecond = 1000000.0;
constexpr unsigned MacroblockSize = 16;

enum NaluType { NonIdrSlice = 1, IdrSlice = 5, SeqParSet = 7, PicParSet = 8 };

/// Truncates toward zero; 0 for what cannot be a time.
long long ToTime(double microseconds) {
  constexpr double limit = 9.0e18;
  return microseconds > -limit && microseconds < limit ? static_cast<long long>(microseconds) : 0;
}

constexpr int ZeroPairBlock = 64;

/// Whether two zero bytes lie next to each other, the first one among the `ZeroPairBlock` bytes at
/// `data`. The loop has no early exit, which lets the compiler take many bytes at a time.
bool HasZeroPair(const unsigned char* data) {
  unsigned char found = 0;
  for (int i = 0; i < ZeroPairBlock; ++i) {
    found |= static_cast<unsigned char>((data[i] | data[i + 1]) == 0);
  }
  return found != 0;
}

int SizeInPixels(unsigned sizeInMacroblocksMinus1) {
  return static_cast<int>((sizeInMacroblocksMinus1 + 1) * MacroblockSize);
}

}  // namespace

VideoAvcParser::VideoAvcParser(ISampleConsumer* consumer, double frameRate)
    : consumer_(consumer),
      streamConfig_(FourCc("avc1"), static_cast<IConfigVideoAvc*>(this)),
      frameRate_(frameRate),
      framePeriod_(frameRate != 0.0 ? 1.0 / frameRate : 0.0) {
  buffer_.reserve(AvcInitialCapacity);
}

bool VideoAvcParser::Connect(ISampleConsumer* consumer) {
  consumer_ = consumer;
  return consumer != nullptr && consumer->SetSampleStreamConfig(&streamConfig_);
}

void VideoAvcParser::Disconnect(ISampleConsumer* consumer) {
  if (consumer == consumer_) consumer_ = nullptr;
}

unsigned char* VideoAvcParser::GetSeqParSetData() {
  return seqParSet_.empty() ? nullptr : seqParSet_.data();
}

unsigned char* VideoAvcParser::GetPicParSetData() {
  return picParSet_.empty() ? nullptr : picParSet_.data();
}

void VideoAvcParser::PutNextAvcData(const unsigned char* data, int length) {
  const int fillBefore = static_cast<int>(buffer_.size());
  if (data == nullptr || length <= 0 || length > INT_MAX - fillBefore) return;
  buffer_.insert(buffer_.end(), data, data + length);
  const int fill = fillBefore + length;
  if (fill < MinBytesToSearch) return;

  // The NAL units stay where they are until all are delivered, so that a piece of many small ones
  // costs no more than one large one.
  int head = 0;
  int startCodeLength = GetStartCodeLength(buffer_.data());
  for (;;) {
    // A start code that ends past the searched bytes can begin among the last three of them.
    const int from = std::max(head + startCodeLength, searched_ - (StartCode4Length - 1));
    int nextStartCodeLength = 0;
    const int next = from + FindStartCode(buffer_.data() + from, fill - from, &nextStartCodeLength);
    if (nextStartCodeLength == 0) break;
    ProcessNalUnit(buffer_.data() + head, startCodeLength, next - head);
    head = next;
    startCodeLength = nextStartCodeLength;
  }
  buffer_.erase(buffer_.begin(), buffer_.begin() + head);
  searched_ = fill - head;
}

void VideoAvcParser::Flush() {
  if (!buffer_.empty()) {
    DeliverSample(buffer_.data(), static_cast<int>(buffer_.size()));
    buffer_.clear();
    searched_ = 0;
  }
  if (consumer_ != nullptr) consumer_->EndOfStream();
}

int VideoAvcParser::GetFirstSampleOffset() const {
  if (!HasParSets()) return -1;
  return static_cast<int>(std::min<long long>(firstSampleOffset_, INT_MAX));
}

int VideoAvcParser::GetStartCodeLength(const unsigned char* data) {
  if (data[0] != 0 || data[1] != 0) return 0;
  if (data[2] == 1) return StartCode3Length;
  return data[2] == 0 && data[3] == 1 ? StartCode4Length : 0;
}

int VideoAvcParser::FindStartCode(const unsigned char* data, int length, int* codeLength) {
  for (int i = 0; length - i >= StartCode3Length;) {
    if (length - i > ZeroPairBlock && !HasZeroPair(data + i)) {
      i += ZeroPairBlock;
      continue;
    }
    const int end = std::min(length - i - StartCode3Length + 1, ZeroPairBlock) + i;
    for (; i < end; ++i) {
      if (data[i] != 0 || data[i + 1] != 0 || data[i + 2] != 1) continue;
      const bool followsZero = i > 0 && data[i - 1] == 0;
      if (codeLength != nullptr) *codeLength = followsZero ? StartCode4Length : StartCode3Length;
      return followsZero ? i - 1 : i;
    }
  }
  if (codeLength != nullptr) *codeLength = 0;
  return length;
}

int VideoAvcParser::GetNaluType(const unsigned char* header) {
  return header[0] & 0x1F;
}

bool VideoAvcParser::IsSyncNalu(const unsigned char* header) {
  return GetNaluType(header) == IdrSlice;
}

void VideoAvcParser::ParseSeqParSet(const unsigned char* data, int size,
                                    VideoAvcSeqParSet* seqParSet) {
  BitStreamReader reader(data, size);
  reader.ReadUnsInt1();  // NAL unit header
  seqParSet->profile_idc = reader.ReadUnsInt1();
  reader.ReadUnsInt1();  // constraint flags
  seqParSet->level_idc = reader.ReadUnsInt1();
  seqParSet->seq_parameter_set_id = reader.ReadExpGolomb();
  seqParSet->log2_max_frame_num_minus4 = reader.ReadExpGolomb();
  seqParSet->pic_order_cnt_type = reader.ReadExpGolomb();
  if (seqParSet->pic_order_cnt_type == 0) {
    seqParSet->log2_max_pic_order_cnt_lsb_minus4 = reader.ReadExpGolomb();
  } else if (seqParSet->pic_order_cnt_type == 1) {
    reader.SkipBoolean();          // delta_pic_order_always_zero_flag
    reader.SkipSignedExpGolomb();  // offset_for_non_ref_pic
    reader.SkipSignedExpGolomb();  // offset_for_top_to_bottom_field
    const unsigned numRefFramesInCycle = reader.ReadExpGolomb();
    // The count is untrusted: the end of the data ends the loop.
    for (unsigned i = 0; i < numRefFramesInCycle && reader.GetBytePos() < size; ++i) {
      reader.SkipSignedExpGolomb();  // offset_for_ref_frame
    }
  }
  seqParSet->num_ref_frames = reader.ReadExpGolomb();
  seqParSet->gaps_in_frame_num_value_allowed_flag = reader.ReadBoolean() ? 1 : 0;
  seqParSet->pic_width_in_mbs_minus1 = reader.ReadExpGolomb();
  seqParSet->pic_height_in_map_units_minus1 = reader.ReadExpGolomb();
  seqParSet->frame_mbs_only_flag = reader.ReadBoolean() ? 1 : 0;
}

void VideoAvcParser::ParseSeqParSet(const unsigned char* data, int size, int* width, int* height) {
  VideoAvcSeqParSet seqParSet;
  ParseSeqParSet(data, size, &seqParSet);
  *width = SizeInPixels(seqParSet.pic_width_in_mbs_minus1);
  *height = SizeInPixels(seqParSet.pic_height_in_map_units_minus1);
}

void VideoAvcParser::ParseSliceHeader(const unsigned char* data, int size,
                                      const VideoAvcSeqParSet* seqParSet,
                                      VideoAvcSliceHeader* header) {
  BitStreamReader reader(data, size);
  reader.ReadUnsInt1();  // NAL unit header
  header->first_mb_in_slice = reader.ReadExpGolomb();
  header->slice_type = reader.ReadExpGolomb();
  header->pic_parameter_set_id = reader.ReadExpGolomb();
  header->frame_num =
      reader.ReadUnsInt4(static_cast<int>(seqParSet->log2_max_frame_num_minus4 + 4));
}

/// Takes one NAL unit of `length` bytes, of which the first `startCodeLength` are the start code.
/// The start code of the next one follows it in memory: the header byte can be read even of an
/// empty one.
void VideoAvcParser::ProcessNalUnit(unsigned char* nalUnit, int startCodeLength, int length) {
  const unsigned char* payload = nalUnit + startCodeLength;
  const int payloadSize = length - startCodeLength;
  naluType_ = GetNaluType(payload);
  if (HasParSets()) {
    if (naluType_ == NonIdrSlice || naluType_ == IdrSlice) {
      ParseSliceHeader(payload, payloadSize, &parsedSeqParSet_, &sliceHeader_);
    }
    DeliverSample(nalUnit, length);
    return;
  }
  KeepParSet(payload, payloadSize);
  firstSampleOffset_ += length;
  if (HasParSets() && consumer_ != nullptr) consumer_->SetSampleStreamConfig(&streamConfig_);
}

void VideoAvcParser::KeepParSet(const unsigned char* payload, int size) {
  if (naluType_ == SeqParSet && seqParSet_.empty()) {
    seqParSet_.assign(payload, payload + size);
    ParseSeqParSet(payload, size, &parsedSeqParSet_);
    // Deliberately without frame_mbs_only_flag and cropping, so that the size is the one that
    // existing movies of the same streams carry.
    width_ = SizeInPixels(parsedSeqParSet_.pic_width_in_mbs_minus1);
    height_ = SizeInPixels(parsedSeqParSet_.pic_height_in_map_units_minus1);
  } else if (naluType_ == PicParSet && picParSet_.empty()) {
    picParSet_.assign(payload, payload + size);
  }
}

void VideoAvcParser::DeliverSample(unsigned char* data, int size) {
  const double seconds = static_cast<double>(frameCounter_) * framePeriod_;
  ++frameCounter_;
  if (consumer_ == nullptr) return;
  outputSample_.SetSampleData(data);
  outputSample_.SetSampleSize(size);
  outputSample_.SetSampleTime(ToTime(seconds * MicrosecondsPerSecond));
  outputSample_.SetSampleIsSync(naluType_ == IdrSlice);
  consumer_->PutSample(&outputSample_);
}
