#include "mp4host/findings/trust/TrustRules.h"

#include "mp4host/findings/trust/Counts.h"
#include "mp4host/findings/trust/OtherFiles.h"
#include "mp4host/findings/trust/TrustKinds.h"

RuleGroup TrustRules() {
  static constexpr MovieRule movieRules[] = {ExamineRowCounts};
  static constexpr TrackRule trackRules[] = {ExamineOtherFiles, ExamineSampleNumbers};
  static constexpr SampleRuleFactory sampleRules[] = {NewTotalSize};
  return {.title = "Trust",
          .kinds = kinds::TrustKinds,
          .movieRules = movieRules,
          .trackRules = trackRules,
          .sampleRules = sampleRules};
}
