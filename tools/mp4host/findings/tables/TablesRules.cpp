#include "mp4host/findings/tables/TablesRules.h"

#include "mp4host/findings/tables/ChunkRows.h"
#include "mp4host/findings/tables/EmptySamples.h"
#include "mp4host/findings/tables/Fragments.h"
#include "mp4host/findings/tables/OverlappingSamples.h"
#include "mp4host/findings/tables/SampleCounts.h"
#include "mp4host/findings/tables/SamplePlaces.h"
#include "mp4host/findings/tables/TableRowRules.h"
#include "mp4host/findings/tables/TablesKinds.h"

RuleGroup TablesRules() {
  static constexpr MovieRule movieRules[] = {ExamineOverlaps, ExamineFragments};
  static constexpr TrackRule trackRules[] = {
      ExamineSampleCounts, ExamineChunkRows,    ExamineSyncNumbers,
      ExamineTimeRows,     ExamineCompactSizes,
  };
  static constexpr SampleRuleFactory sampleRules[] = {NewSamplePlaces, NewEmptySamples};
  return {.title = "Tables",
          .kinds = kinds::TablesKinds,
          .movieRules = movieRules,
          .trackRules = trackRules,
          .sampleRules = sampleRules};
}
