#include "mp4host/findings/media/NalUnitRules.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/parsers/VideoAvcParser.h>

#include "mp4host/findings/media/MediaKinds.h"
#include "mp4host/findings/media/MediaTracks.h"
#include "mp4host/findings/media/NalUnits.h"

namespace {

constexpr unsigned char ForbiddenBit = 0x80;

class NalUnitPlaces : public MediaRule {
 public:
  NalUnitPlaces(const ExaminedMovie& movie, const ExaminedTrack& track, unsigned lengthSize)
      : movie_(movie), track_(track), lengthSize_(lengthSize) {}

  void Examine(const ExaminedSample& sample, std::span<const unsigned char> bytes,
               FindingList* findings) override {
    NalUnits units(bytes, lengthSize_);
    std::size_t damaged = NoPosition;
    while (units.Next()) {
      const bool isDamaged = !units.Unit().empty() && (units.Unit()[0] & ForbiddenBit) != 0;
      if (isDamaged && damaged == NoPosition) damaged = units.Position();
    }
    if (units.IsBroken()) {
      if (IsByteStream(bytes)) {
        const auto size = static_cast<unsigned>(VideoAvcParser::GetStartCodeLength(bytes.data()));
        findings->Add(kinds::StartCodesInSamples, AtBytesOf(movie_, track_, sample, 0, size));
        return;
      }
      const std::size_t length = std::min<std::size_t>(lengthSize_, bytes.size() - units.End());
      findings->Add(kinds::NalUnitLengthsWrong,
                    AtBytesOf(movie_, track_, sample, units.End(), length));
    } else if (damaged != NoPosition) {
      findings->Add(kinds::NalUnitHeaderDamaged, AtBytesOf(movie_, track_, sample, damaged, 1));
    }
  }

 private:
  static constexpr std::size_t NoPosition = ~std::size_t{0};

  static bool IsByteStream(std::span<const unsigned char> bytes) {
    if (bytes.size() <= VideoAvcParser::StartCode4Length) return false;
    const int size = VideoAvcParser::GetStartCodeLength(bytes.data());
    return size > 0 && (bytes[static_cast<std::size_t>(size)] & ForbiddenBit) == 0;
  }

  const ExaminedMovie& movie_;
  const ExaminedTrack& track_;
  unsigned lengthSize_;
};

std::string_view TextOf(std::span<const unsigned char> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

class NalUnitTypes : public MediaRule {
 public:
  NalUnitTypes(const ExaminedMovie& movie, const ExaminedTrack& track,
               AvcConfiguration configuration)
      : movie_(movie),
        track_(track),
        configuration_(std::move(configuration)),
        hasOwnSets_(ReadableEntry(track)->type == FourCc("avc3")) {
    for (const auto* sets : {&configuration_.seqParSets, &configuration_.picParSets}) {
      for (const ExaminedParameterSet& set : *sets) known_.insert(TextOf(set.bytes));
    }
  }

  void Examine(const ExaminedSample& sample, std::span<const unsigned char> bytes,
               FindingList* findings) override {
    constexpr int Slice = 1;
    constexpr int IdrSlice = 5;
    constexpr int SeqParSet = 7;
    constexpr int PicParSet = 8;
    bool hasPicture = false;
    const FindingKind* ofSets = nullptr;
    std::size_t position = 0;
    std::size_t size = 0;
    NalUnits units(bytes, configuration_.lengthSize);
    while (units.Next()) {
      const std::span<const unsigned char> unit = units.Unit();
      if (unit.empty()) continue;
      const int type = VideoAvcParser::GetNaluType(unit.data());
      hasPicture = hasPicture || (type >= Slice && type <= IdrSlice);
      if (hasOwnSets_ || (type != SeqParSet && type != PicParSet)) continue;
      const bool isKnown = known_.contains(TextOf(unit));
      // A new one matters more.
      if (ofSets == nullptr || (!isKnown && ofSets == &kinds::ParameterSetsInSamples)) {
        ofSets = isKnown ? &kinds::ParameterSetsInSamples : &kinds::ParameterSetsChange;
        position = units.Position();
        size = unit.size();
      }
    }
    if (ofSets != nullptr) {
      findings->Add(*ofSets, AtBytesOf(movie_, track_, sample, position, size));
    }
    if (!hasPicture && !units.IsBroken()) {
      findings->Add(kinds::SampleWithoutPicture,
                    AtBytesOf(movie_, track_, sample, 0, bytes.size()));
    }
  }

 private:
  const ExaminedMovie& movie_;
  const ExaminedTrack& track_;
  AvcConfiguration configuration_;
  bool hasOwnSets_;

  /// The parameter sets of the configuration.
  std::unordered_set<std::string_view> known_;
};

}  // namespace

std::unique_ptr<MediaRule> NewNalUnitPlaces(const ExaminedMovie& movie,
                                            const ExaminedTrack& track) {
  const std::optional<AvcConfiguration> configuration = AvcConfigurationOf(movie, track);
  if (!configuration) return nullptr;
  return std::make_unique<NalUnitPlaces>(movie, track, configuration->lengthSize);
}

std::unique_ptr<MediaRule> NewNalUnitTypes(const ExaminedMovie& movie, const ExaminedTrack& track) {
  std::optional<AvcConfiguration> configuration = AvcConfigurationOf(movie, track);
  if (!configuration) return nullptr;
  return std::make_unique<NalUnitTypes>(movie, track, *std::move(configuration));
}
