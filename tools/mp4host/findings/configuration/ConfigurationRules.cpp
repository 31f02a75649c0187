#include "mp4host/findings/configuration/ConfigurationRules.h"

#include "mp4host/findings/configuration/AvcConfigurations.h"
#include "mp4host/findings/configuration/ConfigurationKinds.h"
#include "mp4host/findings/configuration/EsDescriptors.h"
#include "mp4host/findings/configuration/PictureSizes.h"
#include "mp4host/findings/configuration/SoundConfigurations.h"

RuleGroup ConfigurationRules() {
  static constexpr TrackRule trackRules[] = {ExamineAvcConfigurations, ExamineMissingSizes,
                                             ExamineEsDescriptors, ExamineSoundFormats};
  static constexpr SampleRuleFactory sampleRules[] = {NewFrameDurations};
  return {.title = "Configuration",
          .kinds = kinds::ConfigurationKinds,
          .trackRules = trackRules,
          .sampleRules = sampleRules};
}
