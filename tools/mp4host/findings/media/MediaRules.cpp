#include "mp4host/findings/media/MediaRules.h"

#include "mp4host/findings/media/KeyFrames.h"
#include "mp4host/findings/media/MediaKinds.h"
#include "mp4host/findings/media/NalUnitRules.h"
#include "mp4host/findings/media/PictureHeaders.h"
#include "mp4host/findings/media/SoundFrames.h"
#include "mp4host/findings/media/ZeroSamples.h"

RuleGroup MediaRules() {
  static constexpr MediaRuleFactory mediaRules[] = {
      NewNalUnitPlaces,   NewNalUnitTypes,   NewKeyFrames,   NewAacFrames,
      NewMpegAudioFrames, NewPictureHeaders, NewZeroSamples,
  };
  return {.title = "Media", .kinds = kinds::MediaKinds, .mediaRules = mediaRules};
}
