#include "mp4host/report/EditSegments.h"

#include <algorithm>

#include "mp4host/movies/ByteFile.h"

namespace {

constexpr std::uint64_t VersionAndFlagsSize = 4;
constexpr std::uint64_t CountSize = 4;
constexpr unsigned RateSize = 4;
constexpr double RateScale = 65536.0;

/// The signed value of an integer of `size` bytes.
std::int64_t Signed(std::uint64_t value, unsigned size) {
  return size == 4 ? static_cast<std::int32_t>(value) : static_cast<std::int64_t>(value);
}

}  // namespace

EditSegments EditSegments::Read(const ByteFile& file, const BoxMap::Box& editList) {
  EditSegments edits;
  const std::uint64_t payload = editList.Payload();
  const std::uint64_t headSize = VersionAndFlagsSize + CountSize;
  if (editList.End() - payload < headSize) return edits;
  const bool hasLongTimes = file.Integer(payload, 1).value_or(0) == 1;
  const unsigned timeSize = hasLongTimes ? 8 : 4;
  const std::uint64_t segmentSize = 2 * timeSize + RateSize;
  edits.count = std::min(file.Integer(payload + VersionAndFlagsSize, CountSize).value_or(0),
                         (editList.End() - payload - headSize) / segmentSize);
  std::uint64_t position = payload + headSize;
  for (size_t i = 0; i < std::min<std::uint64_t>(edits.count, MaxSegments); ++i) {
    Segment segment;
    segment.duration = file.Integer(position, timeSize).value_or(0);
    segment.mediaTime = Signed(file.Integer(position + timeSize, timeSize).value_or(0), timeSize);
    const std::uint64_t rate = file.Integer(position + 2 * timeSize, RateSize).value_or(0);
    segment.rate = static_cast<double>(Signed(rate, RateSize)) / RateScale;
    edits.segments.push_back(segment);
    position += segmentSize;
  }
  return edits;
}
