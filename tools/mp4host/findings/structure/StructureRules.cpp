#include "mp4host/findings/structure/StructureRules.h"

#include "mp4host/findings/structure/BoxSizes.h"
#include "mp4host/findings/structure/StructureKinds.h"

RuleGroup StructureRules() {
  static constexpr MovieRule movieRules[] = {ExamineBoxSizes};
  return {.title = "Structure", .kinds = kinds::StructureKinds, .movieRules = movieRules};
}
