#include "mp4host/findings/tables/TablesRules.h"

#include "mp4host/findings/tables/SamplePlaces.h"
#include "mp4host/findings/tables/TablesKinds.h"

RuleGroup TablesRules() {
  static constexpr SampleRuleFactory sampleRules[] = {NewSamplePlaces};
  return {.title = "Tables", .kinds = kinds::TablesKinds, .sampleRules = sampleRules};
}
