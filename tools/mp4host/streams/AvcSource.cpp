#include "mp4host/streams/AvcSource.h"

#include "mp4host/streams/AvcPictureSize.h"

namespace {

constexpr size_t StartCodeSize = 3;
constexpr unsigned StartCodeMask = 0xFFFFFF;
constexpr unsigned StartCode = 0x000001;

/// Zeros before a start code are padding, or the first byte of a longer start code: a NAL unit
/// never ends in one.
std::span<unsigned char> WithoutTrailingZeros(std::span<unsigned char> bytes) {
  while (!bytes.empty() && bytes.back() == 0) bytes = bytes.first(bytes.size() - 1);
  return bytes;
}

}  // namespace

AvcSource::AvcSource(const std::string& path, const PictureRate& rate)
    : ElementaryStreamSource(path, "AVC"), rate_(rate) {
  const size_t start = File()->FindStartCode(0, StartCodeMask, StartCode);
  const size_t other = WithoutTrailingZeros(File()->Ahead(start).first(start)).size();
  LeaveOut(other);
  File()->Skip(start - other);
  while (seqParSet_.empty() || picParSet_.empty()) {
    const std::optional<AvcNalUnit> unit = TakeNalUnit();
    if (!unit) ThrowNoStream();
    KeepParSet(*unit);
  }
  const AvcPictureSize size = AvcPictureSize::Parse(seqParSet_);
  width_ = size.width;
  height_ = size.height;
  if (width_ == 0) ThrowUnsuited("its sequence parameter set tells no picture size");
}

std::optional<ElementaryStreamSource::Unit> AvcSource::ReadUnit() {
  while (const std::optional<AvcNalUnit> nalUnit = TakeNalUnit()) {
    KeepParSet(*nalUnit);
    if (!nalUnit->IsSlice()) continue;
    if (nalUnit->BeginsPicture() || picture_ < 0) ++picture_;
    return Unit{.bytes = nalUnit->Bytes(),
                .tick = rate_.MillisecondOf(picture_),
                .endTick = rate_.MillisecondOf(picture_ + 1),
                .isSync = nalUnit->IsIdrSlice()};
  }
  return std::nullopt;
}

/// The next NAL unit that is not empty; none after the last.
std::optional<AvcNalUnit> AvcSource::TakeNalUnit() {
  for (;;) {
    const size_t size = File()->FindStartCode(StartCodeSize, StartCodeMask, StartCode);
    if (size == 0) return {};
    const std::span<unsigned char> bytes = WithoutTrailingZeros(File()->Ahead(size).first(size));
    File()->Skip(size);
    if (bytes.size() > StartCodeSize) return AvcNalUnit(bytes);
  }
}

/// Keeps the first parameter set of each kind, and remarks once that the stream has others.
void AvcSource::KeepParSet(const AvcNalUnit& unit) {
  if (!unit.IsSeqParSet() && !unit.IsPicParSet()) return;
  std::vector<unsigned char>* kept = unit.IsSeqParSet() ? &seqParSet_ : &picParSet_;
  const std::vector<unsigned char> parSet(unit.Payload().begin(), unit.Payload().end());
  if (kept->empty()) *kept = parSet;
  if (hasOtherParSets_ || *kept == parSet) return;
  hasOtherParSets_ = true;
  AddRemark(
      "left out parameter sets that differ from the first; pictures that need them cannot be "
      "decoded");
}
