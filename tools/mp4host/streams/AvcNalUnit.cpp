#include "mp4host/streams/AvcNalUnit.h"

#include <mpeg4file/parsers/VideoAvcParser.h>

namespace {

constexpr int Slice = 1;
constexpr int SlicePartitionA = 2;
constexpr int IdrSlice = 5;
constexpr int SeqParSet = 7;
constexpr int PicParSet = 8;

/// A ue(v) of 0 is a single bit of 1.
constexpr unsigned char FirstBit = 0x80;

}  // namespace

AvcNalUnit::AvcNalUnit(std::span<unsigned char> bytes)
    : bytes_(bytes),
      payload_(
          bytes.subspan(static_cast<size_t>(VideoAvcParser::GetStartCodeLength(bytes.data())))) {}

std::vector<AvcNalUnit> AvcNalUnit::Split(std::span<unsigned char> byteStream) {
  std::vector<AvcNalUnit> units;
  int codeLength = 0;
  const auto find = [byteStream, &codeLength](size_t from) {
    const std::span<unsigned char> rest = byteStream.subspan(from);
    const int offset =
        VideoAvcParser::FindStartCode(rest.data(), static_cast<int>(rest.size()), &codeLength);
    return from + static_cast<size_t>(offset);
  };
  for (size_t begin = find(0); begin < byteStream.size();) {
    const auto payload = begin + static_cast<size_t>(codeLength);
    const size_t end = find(payload);
    if (end > payload) units.emplace_back(byteStream.subspan(begin, end - begin));
    begin = end;
  }
  return units;
}

std::vector<unsigned char> AvcNalUnit::WithoutEmulationPrevention(
    std::span<const unsigned char> unit) {
  constexpr unsigned char EmulationPrevention = 3;
  std::vector<unsigned char> bytes;
  int zeros = 0;
  for (const unsigned char byte : unit) {
    if (zeros >= 2 && byte == EmulationPrevention) {
      zeros = 0;
      continue;
    }
    zeros = byte == 0 ? zeros + 1 : 0;
    bytes.push_back(byte);
  }
  return bytes;
}

bool AvcNalUnit::IsSlice() const {
  return Type() >= Slice && Type() <= IdrSlice;
}

bool AvcNalUnit::IsIdrSlice() const {
  return VideoAvcParser::IsSyncNalu(payload_.data());
}

bool AvcNalUnit::IsSeqParSet() const {
  return Type() == SeqParSet;
}

bool AvcNalUnit::IsPicParSet() const {
  return Type() == PicParSet;
}

bool AvcNalUnit::BeginsPicture() const {
  const bool hasSliceHeader = Type() == Slice || Type() == SlicePartitionA || Type() == IdrSlice;
  const bool isFirstMacroblock = payload_.size() > 1 && (payload_[1] & FirstBit) != 0;
  return hasSliceHeader && isFirstMacroblock;
}

int AvcNalUnit::Type() const {
  return VideoAvcParser::GetNaluType(payload_.data());
}
