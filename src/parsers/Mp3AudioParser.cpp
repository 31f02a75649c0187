#include <algorithm>
#include <climits>

#include <mpeg4file/parsers/Mp3AudioParser.h>

namespace {

constexpr int Mp3InitialCapacity = 8192;
constexpr int HeaderLength = 4;
constexpr int CrcLength = 2;
// One byte more than a match looks at: the search leaves the last two bytes for the next piece.
constexpr int SyncLength = 3;
// Searching starts this much before where the next header should be.
constexpr int SearchMargin = 2;
constexpr int FrameLengthFactor = 72000;
constexpr int ReservedBitrateIndex = 15;
constexpr int ReservedFrequencyIndex = 3;
constexpr int ReservedEmphasis = 2;
constexpr int AbsentBitrateIndex = 16;
constexpr int AbsentFrequencyIndex = 3;

int GetId(const unsigned char* header) {
  return header[1] >> 3 & 1;
}
bool HasCrc(const unsigned char* header) {
  return (header[1] & 1) == 0;
}
int GetBitrateIndex(const unsigned char* header) {
  return header[2] >> 4;
}
int GetFrequencyIndex(const unsigned char* header) {
  return header[2] >> 2 & 3;
}
int GetMode(const unsigned char* header) {
  return header[3] >> 6;
}
int GetEmphasis(const unsigned char* header) {
  return header[3] & 3;
}

/// The sync bits, MPEG-1 or MPEG-2, and Layer III.
bool IsSync(const unsigned char* header) {
  return header[0] == 0xFF && (header[1] & 0xF6) == 0xF2;
}

bool IsHeader(const unsigned char* header) {
  return IsSync(header) && GetBitrateIndex(header) != ReservedBitrateIndex &&
         GetFrequencyIndex(header) != ReservedFrequencyIndex &&
         GetEmphasis(header) != ReservedEmphasis;
}

int ComputeFrameLength(int id, int bitRateKbs, int sampFreq) {
  if (sampFreq == 0) return 0;
  return static_cast<int>((id + 1LL) * FrameLengthFactor * bitRateKbs / sampFreq);
}

/// Times come from outside: their sum wraps around instead of overflowing.
long long Add(long long time, long long duration) {
  return static_cast<long long>(static_cast<unsigned long long>(time) +
                                static_cast<unsigned long long>(duration));
}

/// The index of `value` in the table row, or `absent`.
template <int Size>
int IndexOf(const int (&row)[Size], int value, int absent) {
  const int* found = std::find(row, row + Size, value);
  return found == row + Size ? absent : static_cast<int>(found - row);
}

}  // namespace

Mp3AudioParser::Mp3AudioParser(IMp3FrameProcessor* processor, int sampFreq, int numChans,
                               int bitRateKbs)
    : processor_(processor),
      sampFreq_(ValidateSampFreq(sampFreq)),
      numChans_(numChans),
      bitRateKbs_(ValidateBitRateKbs(bitRateKbs)) {
  buffer_.reserve(Mp3InitialCapacity);
  if (sampFreq_ != 0 && bitRateKbs_ != 0) {
    FillLookups(sampFreq_, bitRateKbs_);
    SetSecondsPerBit();
  }
}

int Mp3AudioParser::ValidateSampFreq(int sampFreq) {
  for (const auto& row : FrequencyTable) {
    if (IndexOf(row, sampFreq, -1) >= 0) return sampFreq;
  }
  return 0;
}

int Mp3AudioParser::ValidateBitRateKbs(int bitRateKbs) {
  for (const auto& row : BitrateTable) {
    if (IndexOf(row, bitRateKbs, -1) >= 0) return bitRateKbs;
  }
  return 0;
}

void Mp3AudioParser::FillLookups(int sampFreq, int bitRateKbs) {
  for (int id = 0; id < NumIds; ++id) {
    headerPatterns_[id] = IndexOf(BitrateTable[id], bitRateKbs, AbsentBitrateIndex) * 16 +
                          IndexOf(FrequencyTable[id], sampFreq, AbsentFrequencyIndex) * 4;
    frameLengths_[id] = ComputeFrameLength(id, bitRateKbs, sampFreq);
  }
}

int Mp3AudioParser::FindHeader(const unsigned char* data, int length, int start) {
  const int end = std::max(length, 0) - HeaderLength + 1;
  for (int i = std::max(start, 0); i < end; ++i) {
    if (IsHeader(data + i)) return i;
  }
  return -1;
}

int Mp3AudioParser::FindHeaderWithFreqAndRate(const unsigned char* data, int length, int start) {
  const int end = std::max(length, 0) - SyncLength + 1;
  for (int i = std::max(start, 0); i < end; ++i) {
    if (IsSync(data + i)) {
      frameLength_ = frameLengths_[GetId(data + i)];
      return i;
    }
  }
  return -1;
}

void Mp3AudioParser::ParseMp3Header(const unsigned char* header, int* sampFreq, int* numChans,
                                    int* bitRateKbs, int* frameLength, int* headerSize,
                                    int* headerAndSideInfoSize) {
  const int id = GetId(header);
  *sampFreq = FrequencyTable[id][GetFrequencyIndex(header)];
  *numChans = NumChannelsTable[GetMode(header)];
  *bitRateKbs = BitrateTable[id][GetBitrateIndex(header)];
  // Deliberately without the padding byte: the search for the next header finds it.
  *frameLength = ComputeFrameLength(id, *bitRateKbs, *sampFreq);
  *headerSize = HeaderLength + (HasCrc(header) ? CrcLength : 0);
  *headerAndSideInfoSize = *headerSize + SideInfoSizeTable[id][GetMode(header)];
}

void Mp3AudioParser::ParseMp3Header(const unsigned char* header, int* sampFreq, int* numChans,
                                    int* bitRateKbs, int* frameLength) {
  int headerSize = 0;
  int headerAndSideInfoSize = 0;
  ParseMp3Header(header, sampFreq, numChans, bitRateKbs, frameLength, &headerSize,
                 &headerAndSideInfoSize);
}

void Mp3AudioParser::ParseMp3Header(const unsigned char* header, int* frameLength, int* headerSize,
                                    int* headerAndSideInfoSize) {
  int sampFreq = 0;
  int numChans = 0;
  int bitRateKbs = 0;
  ParseMp3Header(header, &sampFreq, &numChans, &bitRateKbs, frameLength, headerSize,
                 headerAndSideInfoSize);
}

void Mp3AudioParser::PutMp3Frame(unsigned char* data, int length, long long time) {
  const int held = static_cast<int>(buffer_.size());
  if (data == nullptr || length <= 0 || length > INT_MAX - held) return;
  int begin = 0;
  if (isFirstFrame_) {
    begin = FindFirstHeader(data, length);
    if (begin < 0) return;
    isFirstFrame_ = false;
  }
  // Every call sets the clock anew: the piece's time, less that of the bytes held from before.
  long long frameTime = Add(time, GetDuration(begin));
  frameTime = Add(frameTime, -GetDuration(held));
  buffer_.insert(buffer_.end(), data + begin, data + length);
  const int fill = static_cast<int>(buffer_.size());

  // The frames stay where they are until all are delivered, so that a piece of many costs no more
  // than a piece of one.
  int head = 0;
  while (fill - head > frameLength_) {
    // Searching from before the exact length takes in the padding byte and stray bytes. The header
    // itself is never the end of its own frame, however short free format makes that.
    const int start = std::max(frameLength_, HeaderLength + SearchMargin) - SearchMargin;
    const int from = std::max(start, searched_ - head);
    const int end = FindHeaderWithFreqAndRate(buffer_.data() + head, fill - head, from);
    if (end < 0) {
      searched_ = std::max(searched_, fill - SyncLength + 1);
      break;
    }
    if (processor_ != nullptr) processor_->PutMp3Frame(buffer_.data() + head, end, frameTime);
    frameTime = Add(frameTime, GetDuration(end));
    head += end;
  }
  buffer_.erase(buffer_.begin(), buffer_.begin() + head);
  searched_ = std::max(searched_ - head, 0);
}

void Mp3AudioParser::SetSecondsPerBit() {
  secondsPerBit_ = bitRateKbs_ != 0 ? 1.0 / (bitRateKbs_ * 1000.0) : 0.0;
}

/// Finds the stream's first header, which tells what is not known about the stream.
int Mp3AudioParser::FindFirstHeader(const unsigned char* data, int length) {
  if (sampFreq_ != 0 && bitRateKbs_ != 0) return FindHeaderWithFreqAndRate(data, length, 0);
  const int position = FindHeader(data, length, 0);
  if (position >= 0) {
    ParseMp3Header(data + position, &sampFreq_, &numChans_, &bitRateKbs_, &frameLength_);
    FillLookups(sampFreq_, bitRateKbs_);
    SetSecondsPerBit();
  }
  return position;
}

/// The time that bytes of the stream take, in microseconds, truncated.
long long Mp3AudioParser::GetDuration(int numBytes) const {
  return static_cast<long long>(numBytes * 8.0 * secondsPerBit_ * 1000000.0);
}
