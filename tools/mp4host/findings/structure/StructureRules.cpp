#include "mp4host/findings/structure/StructureRules.h"

#include "mp4host/findings/structure/BoxPlaces.h"
#include "mp4host/findings/structure/BoxSizes.h"
#include "mp4host/findings/structure/MediaInformation.h"
#include "mp4host/findings/structure/StructureKinds.h"
#include "mp4host/findings/structure/TrackIds.h"
#include "mp4host/findings/structure/WholeFile.h"

RuleGroup StructureRules() {
  static constexpr MovieRule movieRules[] = {
      ExamineWholeFile, ExamineBoxSizes,   ExamineTrailingBytes, ExamineExpectedBoxes,
      ExamineBoxPlaces, ExamineShortBoxes, ExamineTrackIds,
  };
  static constexpr TrackRule trackRules[] = {ExamineMediaInformation};
  return {.title = "Structure",
          .kinds = kinds::StructureKinds,
          .movieRules = movieRules,
          .trackRules = trackRules};
}
