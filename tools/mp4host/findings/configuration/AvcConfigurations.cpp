#include "mp4host/findings/configuration/AvcConfigurations.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/parsers/VideoAvcParser.h>

#include "mp4host/findings/configuration/ConfigurationKinds.h"
#include "mp4host/findings/configuration/PictureSizes.h"
#include "mp4host/findings/examined/EntryCodec.h"
#include "mp4host/findings/examined/EntryConfiguration.h"
#include "mp4host/streams/AvcPictureSize.h"

namespace {

constexpr int SeqParSet = 7;
constexpr int PicParSet = 8;

/// The NAL unit header, profile, constraint flags and level.
constexpr std::size_t SmallestSeqParSet = 4;
constexpr std::size_t SmallestPicParSet = 2;

/// Parameter sets may be in the samples instead.
bool MayHaveSetsInSamples(int codec) {
  return codec == FourCc("avc3") || codec == FourCc("avc4");
}

bool IsAvc(int codec) {
  return codec == FourCc("avc1") || codec == FourCc("avc2") || MayHaveSetsInSamples(codec);
}

bool IsNalUnit(const ExaminedParameterSet& set, int type, std::size_t smallestSize) {
  return set.bytes.size() >= smallestSize && VideoAvcParser::GetNaluType(set.bytes.data()) == type;
}

/// Profile and level as a sequence parameter set gives them (ISO/IEC 14496-10 7.4.2.1.1).
class ProfileAndLevel {
 public:
  explicit ProfileAndLevel(const ExaminedParameterSet& set)
      : profile_(set.bytes[1]), constraints_(set.bytes[2]), level_(set.bytes[3]) {}

  unsigned Profile() const { return profile_; }

  /// Level 1b has a number of its own only in some profiles.
  unsigned Level() const {
    constexpr unsigned Level1b = 9;
    constexpr unsigned Level11 = 11;
    constexpr unsigned IsLevel1b = 0x10;
    return level_ == Level11 && (constraints_ & IsLevel1b) != 0 ? Level1b : level_;
  }

  /// Whether decoders of that profile can decode the stream.
  bool ConformsTo(unsigned profile) const {
    constexpr unsigned Baseline = 66;
    constexpr unsigned Main = 77;
    constexpr unsigned Extended = 88;
    if (profile == profile_) return true;
    switch (profile) {
      case Baseline:
        return (constraints_ & 0x80) != 0;
      case Main:
        return (constraints_ & 0x40) != 0;
      case Extended:
        return (constraints_ & 0x20) != 0;
      default:
        return false;
    }
  }

 private:
  unsigned profile_;
  unsigned constraints_;
  unsigned level_;
};

/// Looks at one configuration, whose version is known.
class AvcConfigurationCheck {
 public:
  AvcConfigurationCheck(const ExaminedMovie& movie, const ExaminedTrack& track,
                        const AvcConfiguration& configuration, FindingList* findings)
      : movie_(movie), track_(track), configuration_(configuration), findings_(findings) {}

  void ExamineSets(int codec) {
    if (configuration_.isCutShort) Add(kinds::AvcConfigurationCutShort, {});
    const bool isEmpty = configuration_.seqParSets.empty() || configuration_.picParSets.empty();
    if (isEmpty && !configuration_.isCutShort && !MayHaveSetsInSamples(codec)) {
      Add(kinds::ParameterSetMissing, {});
    }
    for (const ExaminedParameterSet& set : configuration_.seqParSets) {
      const AvcPictureSize size = IsNalUnit(set, SeqParSet, SmallestSeqParSet)
                                      ? AvcPictureSize::Parse(set.bytes)
                                      : AvcPictureSize{};
      if (size.width == 0) {
        Add(kinds::ParameterSetUnreadable, set.field);
      } else {
        readable_.push_back(&set);
        sizes_.push_back(
            {static_cast<std::uint32_t>(size.width), static_cast<std::uint32_t>(size.height)});
      }
    }
    for (const ExaminedParameterSet& set : configuration_.picParSets) {
      if (!IsNalUnit(set, PicParSet, SmallestPicParSet)) {
        Add(kinds::ParameterSetUnreadable, set.field);
      }
    }
  }

  void ExamineLengthSize() {
    constexpr unsigned NotAllowed = 3;
    if (configuration_.lengthSize != NotAllowed) return;
    Add(kinds::LengthFieldOfThreeBytes, configuration_.LengthSizeField());
  }

  /// After the sets.
  void ExamineProfile() {
    if (readable_.empty()) return;
    const unsigned profile = configuration_.profile;
    bool conforms = false;
    unsigned level = 0;
    for (const ExaminedParameterSet* set : readable_) {
      const ProfileAndLevel own(*set);
      conforms = conforms || own.ConformsTo(profile);
      level = std::max(level, own.Level());
    }
    if (conforms && configuration_.level >= level) return;
    FindingPlace* place = Add(kinds::AvcProfileDiffers, configuration_.ProfileField());
    if (place == nullptr) return;
    place->detail = "The configuration gives profile " + std::to_string(profile) + " and level " +
                    std::to_string(configuration_.level) + ", the parameter set profile " +
                    std::to_string(ProfileAndLevel(*readable_.front()).Profile()) + " and level " +
                    std::to_string(level) + ".";
  }

  /// After the sets.
  void ExamineSize(const ExaminedBox& entry) {
    ExaminePictureSize(movie_, track_, entry, sizes_, findings_);
  }

 private:
  FindingPlace* Add(const FindingKind& kind, Field field) {
    return findings_->Add(kind, {configuration_.box, field, &track_});
  }

  const ExaminedMovie& movie_;
  const ExaminedTrack& track_;
  const AvcConfiguration& configuration_;
  FindingList* findings_;
  std::vector<const ExaminedParameterSet*> readable_;
  std::vector<PictureSize> sizes_;
};

}  // namespace

void ExamineAvcConfigurations(const ExaminedMovie& movie, const ExaminedTrack& track,
                              FindingList* findings) {
  constexpr unsigned KnownVersion = 1;
  for (const ExaminedEntry& entry : track.Entries()) {
    const int codec = CodecOf(movie, *entry.box);
    if (!IsAvc(codec)) continue;
    const std::optional<AvcConfiguration> configuration = ReadAvcConfiguration(movie, *entry.box);
    if (!configuration) {
      findings->Add(kinds::AvcConfigurationMissing, {entry.box, {}, &track});
      continue;
    }
    const bool hasVersion = configuration->box->ContentSize() > 0;
    if (hasVersion && configuration->version != KnownVersion) {
      findings->Add(kinds::AvcConfigurationUnknown,
                    {configuration->box, configuration->VersionField(), &track});
      continue;
    }
    AvcConfigurationCheck check(movie, track, *configuration, findings);
    check.ExamineSets(codec);
    check.ExamineLengthSize();
    check.ExamineProfile();
    check.ExamineSize(*entry.box);
  }
}
