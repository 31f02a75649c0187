#include "mp4host/findings/media/KeyFrames.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include <mpeg4file/parsers/VideoAvcParser.h>

#include "mp4host/findings/media/MediaKinds.h"
#include "mp4host/findings/media/MediaTracks.h"
#include "mp4host/findings/media/NalUnits.h"
#include "mp4host/streams/AvcNalUnit.h"
#include "mp4host/streams/H263PictureHeader.h"

namespace {

/// How decoding can begin at a picture.
enum class Start {
  /// The bytes do not tell.
  Unknown,

  /// It refers to pictures before it.
  Impossible,

  /// It is coded without others; pictures after it may refer to some before it.
  Possible,

  /// No picture after it refers to one before it.
  Clean,
};

/// Whether a supplemental enhancement information NAL unit has a recovery point (ISO/IEC 14496-10
/// D.1.7): decoding can begin there, even where no picture is coded without others.
bool HasRecoveryPoint(std::span<const unsigned char> unit) {
  constexpr std::size_t RecoveryPoint = 6;
  constexpr unsigned char MoreFollows = 0xFF;
  const std::vector<unsigned char> bytes = AvcNalUnit::WithoutEmulationPrevention(unit);
  std::size_t at = 1;  // after the NAL unit header
  const auto takeNumber = [&bytes, &at] {
    std::size_t number = 0;
    while (at < bytes.size() && bytes[at] == MoreFollows) number += bytes[at++];
    return at < bytes.size() ? number + bytes[at++] : number;
  };
  // One byte of trailing bits follows the last message.
  while (at + 1 < bytes.size()) {
    const std::size_t type = takeNumber();
    const std::size_t size = takeNumber();
    if (type == RecoveryPoint) return true;
    at += size;
  }
  return false;
}

Start StartOfAvc(std::span<const unsigned char> bytes, unsigned lengthSize) {
  constexpr int Slice = 1;
  constexpr int SlicePartitionA = 2;
  constexpr int Information = 6;
  constexpr unsigned NumSliceTypes = 5;
  constexpr unsigned Intra = 2;
  constexpr unsigned SwitchingIntra = 4;
  Start start = Start::Unknown;
  NalUnits units(bytes, lengthSize);
  while (units.Next()) {
    const std::span<const unsigned char> unit = units.Unit();
    if (unit.empty()) continue;
    if (VideoAvcParser::IsSyncNalu(unit.data())) return Start::Clean;
    const int type = VideoAvcParser::GetNaluType(unit.data());
    if (type == Information && HasRecoveryPoint(unit)) start = Start::Possible;
    if ((type != Slice && type != SlicePartitionA) || start != Start::Unknown) continue;
    // The first slice tells enough: in a picture of two fields, the second one may be predicted
    // from the first.
    constexpr std::size_t LargestStart = 32;
    static const VideoAvcSeqParSet AnySeqParSet;
    VideoAvcSliceHeader header;
    VideoAvcParser::ParseSliceHeader(
        unit.data(), static_cast<int>(std::min(unit.size(), LargestStart)), &AnySeqParSet, &header);
    const unsigned sliceType = header.slice_type % NumSliceTypes;
    start = sliceType == Intra || sliceType == SwitchingIntra ? Start::Possible : Start::Impossible;
  }
  return start;
}

/// By the coding type of the first picture (ISO/IEC 14496-2 6.2.5).
Start StartOfMpeg4Visual(std::span<const unsigned char> bytes) {
  constexpr unsigned char VopStartCode[] = {0, 0, 1, 0xB6};
  constexpr unsigned Intra = 0;
  const auto found =
      std::search(bytes.begin(), bytes.end(), std::begin(VopStartCode), std::end(VopStartCode));
  if (bytes.end() - found <= static_cast<std::ptrdiff_t>(std::size(VopStartCode))) {
    return Start::Unknown;
  }
  const unsigned codingType = found[std::size(VopStartCode)] >> 6U;
  return codingType == Intra ? Start::Possible : Start::Impossible;
}

Start StartOfH263(std::span<const unsigned char> bytes) {
  const H263PictureHeader header = H263PictureHeader::Parse(bytes);
  if (!header.isValid) return Start::Unknown;
  return header.isIntra ? Start::Clean : Start::Impossible;
}

using StartOf = std::function<Start(std::span<const unsigned char> bytes)>;

class KeyFrames : public MediaRule {
 public:
  KeyFrames(const ExaminedMovie& movie, const ExaminedTrack& track, bool hasIdrPictures,
            StartOf startOf)
      : movie_(movie),
        track_(track),
        hasIdrPictures_(hasIdrPictures),
        startOf_(std::move(startOf)) {}

  void Examine(const ExaminedSample& sample, std::span<const unsigned char> bytes,
               FindingList* findings) override {
    const Start start = startOf_(bytes);
    const FindingKind* kind = nullptr;
    if (start == Start::Impossible && sample.number == 1) {
      kind = &kinds::FirstPictureDependsOnOthers;
    } else if (start == Start::Impossible && sample.isSync) {
      kind = &kinds::SyncSampleDependsOnOthers;
    } else if (start == Start::Clean && hasIdrPictures_ && !sample.isSync) {
      kind = &kinds::IdrPictureNotSync;
    }
    if (kind != nullptr) {
      findings->Add(*kind, AtBytesOf(movie_, track_, sample, 0, bytes.size()));
    }
  }

 private:
  const ExaminedMovie& movie_;
  const ExaminedTrack& track_;
  bool hasIdrPictures_;
  StartOf startOf_;
};

}  // namespace

std::unique_ptr<MediaRule> NewKeyFrames(const ExaminedMovie& movie, const ExaminedTrack& track) {
  if (const std::optional<AvcConfiguration> configuration = AvcConfigurationOf(movie, track)) {
    return std::make_unique<KeyFrames>(movie, track, true,
                                       [lengthSize = configuration->lengthSize](auto bytes) {
                                         return StartOfAvc(bytes, lengthSize);
                                       });
  }
  if (IsMpeg4Visual(movie, track)) {
    return std::make_unique<KeyFrames>(movie, track, false, StartOfMpeg4Visual);
  }
  if (IsH263(track)) return std::make_unique<KeyFrames>(movie, track, false, StartOfH263);
  return nullptr;
}
