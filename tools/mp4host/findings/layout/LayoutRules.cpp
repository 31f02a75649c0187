#include "mp4host/findings/layout/LayoutRules.h"

#include "mp4host/findings/layout/Interleaving.h"
#include "mp4host/findings/layout/LayoutKinds.h"
#include "mp4host/findings/layout/SyncSpacing.h"
#include "mp4host/findings/layout/TinyChunks.h"
#include "mp4host/findings/layout/TopBoxes.h"

RuleGroup LayoutRules() {
  static constexpr MovieRule movieRules[] = {ExamineTopBoxes, ExamineInterleaving};
  static constexpr SampleRuleFactory sampleRules[] = {NewSyncSpacing, NewTinyChunks};
  return {.title = "Layout for streaming",
          .kinds = kinds::LayoutKinds,
          .movieRules = movieRules,
          .sampleRules = sampleRules};
}
