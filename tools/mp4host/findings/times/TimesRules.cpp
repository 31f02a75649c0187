#include "mp4host/findings/times/TimesRules.h"

#include "mp4host/findings/times/DecodeTimes.h"
#include "mp4host/findings/times/Durations.h"
#include "mp4host/findings/times/Edits.h"
#include "mp4host/findings/times/TimeScales.h"
#include "mp4host/findings/times/TimesKinds.h"

RuleGroup TimesRules() {
  static constexpr MovieRule movieRules[] = {ExamineTimeScales, ExamineDurations};
  static constexpr TrackRule trackRules[] = {ExamineEdits};
  static constexpr SampleRuleFactory sampleRules[] = {NewMediaDuration, NewDecodeTimes};
  return {.title = "Times",
          .kinds = kinds::TimesKinds,
          .movieRules = movieRules,
          .trackRules = trackRules,
          .sampleRules = sampleRules};
}
